// The first column of an atom line, as written: any text, nearly always one or two letters.
#ifndef VQVEC_TASKSTORE_SYMBOL_HPP
#define VQVEC_TASKSTORE_SYMBOL_HPP

#include <array>
#include <string_view>

namespace vqvec {

// There is one for every atom of every task, so it takes 8 bytes, is copied as such and compared as
// such. Up to 7 bytes of text stand in it; a longer text stands once in a table that lives as long
// as the program, and the symbol holds its place there.
class Symbol {
 public:
  Symbol() = default;
  Symbol(std::string_view text);  // NOLINT(google-explicit-constructor): a symbol is its text
  Symbol(const char* text) : Symbol(std::string_view(text)) {}

  // Valid as long as the symbol.
  std::string_view text() const;

  bool operator==(const Symbol&) const = default;

 private:
  static constexpr std::size_t longest_inside = 7;
  static constexpr char is_in_table = longest_inside + 1;

  std::array<char, longest_inside> bytes_ = {};  // unused ones are 0
  char size_ = 0;                                // of the text, or is_in_table
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_SYMBOL_HPP
