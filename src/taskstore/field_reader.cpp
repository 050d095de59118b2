#include "taskstore/field_reader.hpp"

#include <algorithm>

#include "dsl/eight_digits.hpp"
#include "dsl/lexical.hpp"
#include "dsl/number.hpp"
#include "dsl/plain_decimal.hpp"

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

// Where the digits that begin at the index end.
std::size_t end_of_digits(std::string_view text, std::size_t i) {
  for (; i + eight_digits::count <= text.size(); i += eight_digits::count) {
    const std::size_t digits = eight_digits::leading(eight_digits::load(text.data() + i));
    if (digits < eight_digits::count) {
      return i + digits;
    }
  }
  while (i < text.size() && is_digit(text[i])) {
    ++i;
  }
  return i;
}

// The length of an ordinary decimal number at the front of the text; 0 for any other number, such
// as one that is long enough to be out of range.
std::size_t plain_length(std::string_view text) {
  constexpr std::size_t longest = 300;
  const std::size_t first = text.starts_with('-') ? 1 : 0;
  const std::size_t whole_end = end_of_digits(text, first);
  const bool has_point = whole_end < text.size() && text[whole_end] == '.';
  const std::size_t end = has_point ? end_of_digits(text, whole_end + 1) : whole_end;
  const bool has_digits = end > first + (has_point ? 1 : 0);
  return has_digits && end < longest ? end : 0;
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
  std::string_view rest = rest_;
  if (const auto plain = take_plain_decimal(rest); plain && (rest.empty() || is_space(rest[0]))) {
    if (const auto value = to_double(*plain)) {
      rest_ = rest;
      return value;
    }
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
