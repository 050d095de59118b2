#include "output/number_format.hpp"

#include <charconv>

namespace vqvec {
namespace {

// The longest: a sign, 309 digits, a point and 10 more.
constexpr std::size_t longest_number = 336;

void append_number(std::string& text, double value, std::chars_format format, int precision) {
  char digits[longest_number];
  const auto end = std::to_chars(digits, digits + sizeof digits, value, format, precision).ptr;
  text.append(digits, end);
}

}  // namespace

std::string format_value15(double value) {
  std::string text;
  append_value15(text, value);
  return text;
}

std::string format_fixed10(double value) {
  std::string text;
  append_fixed10(text, value);
  return text;
}

void append_value15(std::string& text, double value) {
  append_number(text, value, std::chars_format::general, 15);
}

void append_fixed10(std::string& text, double value) {
  append_number(text, value, std::chars_format::fixed, 10);
}

}  // namespace vqvec
