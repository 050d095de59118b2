// Reading the fields of one line as stream extraction reads them (`stream >> word >> x >> y`).
#ifndef VQVEC_TASKSTORE_FIELD_READER_HPP
#define VQVEC_TASKSTORE_FIELD_READER_HPP

#include <optional>
#include <string_view>

namespace vqvec {

class FieldReader {
 public:
  explicit FieldReader(std::string_view line) : rest_(line) {}

  // The bytes up to the next white space; empty at the end of the line.
  std::string_view read_word();

  // A decimal number. It ends where the next byte cannot continue it, and what follows is left to
  // the next field: "1-2" is two numbers, "1D5" is 1 and then "D5". Nothing, as with a stream, for
  // a number that breaks off ("1e"), for hexadecimal forms, inf and nan, and on overflow; what a
  // stream would have taken until then is gone.
  std::optional<double> read_number();

 private:
  void skip_space();

  std::string_view rest_;
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_FIELD_READER_HPP
