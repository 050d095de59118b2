// Reading the fields of one line as stream extraction reads them (`stream >> word >> x >> y`).
#ifndef VQVEC_TASKSTORE_FIELD_READER_HPP
#define VQVEC_TASKSTORE_FIELD_READER_HPP

#include <optional>
#include <string_view>

namespace vqvec {

class FieldReader {
 public:
  explicit FieldReader(std::string_view line) : rest_(line) {}

  // The bytes before the next white space; empty at the end of the line.
  std::string_view read_word();

  // A decimal number. It ends at the first byte that cannot continue it; the rest is left for the
  // next field: "1-2" is two numbers, "1D5" is 1 and then "D5". Like a stream, it gives nothing for
  // an incomplete number ("1e"), hexadecimal forms, inf, nan and on overflow, and consumes the
  // bytes that a stream would consume.
  std::optional<double> read_number();

  // Passes over a number, in half the time of reading it. False, with the same bytes consumed,
  // where read_number() gives nothing.
  bool skip_number();

  // The bytes not read yet.
  std::string_view rest() const { return rest_; }

 private:
  void skip_space();

  std::string_view rest_;
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_FIELD_READER_HPP
