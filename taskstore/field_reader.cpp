#include "taskstore/field_reader.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

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

// How many bytes at the front of the text a stream would gather for one number. They need not make
// a number.
std::size_t number_length(std::string_view text) {
  bool has_digit = false;
  bool has_point = false;
  bool has_exponent = false;
  std::size_t i = !text.empty() && is_sign(text[0]) ? 1 : 0;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (is_digit(c)) {
      has_digit = true;
    } else if (c == '.' && !has_point && !has_exponent) {
      has_point = true;
    } else if ((c == 'e' || c == 'E') && has_digit && !has_exponent) {
      has_exponent = true;
      if (i + 1 < text.size() && is_sign(text[i + 1])) {
        ++i;
      }
    } else {
      break;
    }
  }
  return i;
}

}  // namespace

std::string_view FieldReader::read_word() {
  skip_space();
  const auto end = std::find_if(rest_.begin(), rest_.end(), is_space);
  const std::string_view word(rest_.begin(), end);
  rest_.remove_prefix(word.size());
  return word;
}

std::optional<double> FieldReader::read_number() {
  skip_space();
  if (const auto plain = read_plain_number()) {
    return plain;
  }
  const std::string_view number = rest_.substr(0, number_length(rest_));
  rest_.remove_prefix(number.size());
  return read_finite_number(number);
}

// A number that white space or the end of the line follows reads the same either way; from_chars
// needs no second look at it.
std::optional<double> FieldReader::read_plain_number() {
  double value = 0.0;
  const auto [end, error] = std::from_chars(rest_.begin(), rest_.end(), value);
  if (error != std::errc() || !std::isfinite(value) || (end != rest_.end() && !is_space(*end))) {
    return std::nullopt;
  }
  rest_.remove_prefix(static_cast<std::size_t>(end - rest_.begin()));
  return value;
}

void FieldReader::skip_space() {
  const auto first = std::find_if_not(rest_.begin(), rest_.end(), is_space);
  rest_.remove_prefix(static_cast<std::size_t>(first - rest_.begin()));
}

}  // namespace vqvec
