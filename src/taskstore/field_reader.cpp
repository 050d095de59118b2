#include "taskstore/field_reader.hpp"

#include <algorithm>

#include "dsl/lexical.hpp"
#include "dsl/number.hpp"

namespace vqvec {
namespace {

constexpr bool is_digit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool is_sign(char c) {
  return c == '+' || c == '-';
}

// How many bytes at the front of the text a stream would collect for one number. They may not form
// a number.
std::size_t number_length(std::string_view text) {
  bool has_digit = false;
  bool has_point = false;
  bool has_exponent = false;
  bool may_be_sign = true;  // at the start of the number or of its exponent
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool is_point = c == '.' && !has_point && !has_exponent;
    const bool is_exponent = (c == 'e' || c == 'E') && has_digit && !has_exponent;
    if (!is_digit(c) && !is_point && !is_exponent && !(may_be_sign && is_sign(c))) {
      return i;
    }
    has_digit = has_digit || is_digit(c);
    has_point = has_point || is_point;
    has_exponent = has_exponent || is_exponent;
    may_be_sign = is_exponent;
  }
  return text.size();
}

// The length of an ordinary decimal number at the front of the text; 0 for any other number, such
// as one that is long enough to be out of range.
std::size_t plain_length(std::string_view text) {
  constexpr std::size_t longest = 300;
  const std::size_t end = std::min(text.size(), longest);
  const std::size_t first = text.starts_with('-') ? 1 : 0;
  std::size_t i = first;
  while (i < end && is_digit(text[i])) {
    ++i;
  }
  std::size_t digits = i - first;
  if (i < end && text[i] == '.') {
    const std::size_t decimals = ++i;
    while (i < end && is_digit(text[i])) {
      ++i;
    }
    digits += i - decimals;
  }
  return digits > 0 && i < longest ? i : 0;
}

}  // namespace

std::string_view FieldReader::read_word() {
  skip_space();
  const auto end = std::find_if(rest_.begin(), rest_.end(), is_space);
  const std::string_view word = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
  rest_.remove_prefix(word.size());
  return word;
}

std::optional<double> FieldReader::read_number() {
  skip_space();
  // Most numbers are plain and end at white space.
  if (const auto plain = read_plain_decimal(rest_);
      plain && (plain->length == rest_.size() || is_space(rest_[plain->length]))) {
    rest_.remove_prefix(plain->length);
    return plain->value;
  }
  const std::string_view number = rest_.substr(0, number_length(rest_));
  rest_.remove_prefix(number.size());
  return read_finite_number(number);
}

bool FieldReader::skip_number() {
  skip_space();
  const std::size_t length = plain_length(rest_);
  if (length > 0 && (length == rest_.size() || is_space(rest_[length]))) {
    rest_.remove_prefix(length);
    return true;
  }
  return read_number().has_value();
}

void FieldReader::skip_space() {
  while (!rest_.empty() && is_space(rest_.front())) {
    rest_.remove_prefix(1);
  }
}

}  // namespace vqvec
