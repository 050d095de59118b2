// Reading ordinary decimal numbers, as nearly all numbers in files are. Inline: a call for each of
// them costs a tenth of the time of a run on large files.
#ifndef VQVEC_DSL_PLAIN_DECIMAL_HPP
#define VQVEC_DSL_PLAIN_DECIMAL_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "dsl/eight_digits.hpp"

namespace vqvec {

// An ordinary number: an optional '-', digits, and optionally a point and more digits.
struct PlainDecimal {
  std::uint64_t digits;  // as one integer, without the point
  std::size_t decimals;  // how many of them stand after the point
  bool is_negative;
};

// A number and where its digits end. With too many digits, the number wraps around.
struct Digits {
  std::uint64_t number;
  const char* end;
};

// Continues a number with the digits from `next` on, one at a time: fastest if they are few.
inline Digits read_few_digits(std::uint64_t number, const char* next, const char* end) {
  for (; next != end && *next >= '0' && *next <= '9'; ++next) {
    number = number * 10 + static_cast<std::uint64_t>(*next - '0');
  }
  return {number, next};
}

// Continues a number with the digits from `next` on.
inline Digits read_digits(std::uint64_t number, const char* next, const char* end) {
  while (end - next >= std::ptrdiff_t{eight_digits::count}) {
    const std::uint64_t bytes = eight_digits::load(next);
    if (!eight_digits::are_digits(bytes)) {
      break;
    }
    number = number * eight_digits::limit + eight_digits::to_number(bytes);
    next += eight_digits::count;
  }
  return read_few_digits(number, next, end);
}

// Removes an ordinary number from the front of the text. Nothing, and the text as it was, when
// there is none, or one of more than 19 digits. The caller checks what follows.
inline std::optional<PlainDecimal> take_plain_decimal(std::string_view& text) {
  constexpr std::ptrdiff_t most_digits = 19;  // of a 64-bit integer
  const char* const end = text.data() + text.size();
  const bool is_negative = text.starts_with('-');
  const char* const first = text.data() + (is_negative ? 1 : 0);
  const Digits whole = read_few_digits(0, first, end);
  const bool has_point = whole.end != end && *whole.end == '.';
  // All digits form one integer, without the point.
  const Digits all = has_point ? read_digits(whole.number, whole.end + 1, end) : whole;
  const std::ptrdiff_t decimals = has_point ? all.end - whole.end - 1 : 0;
  const std::ptrdiff_t count = whole.end - first + decimals;
  if (count == 0 || count > most_digits) {
    return std::nullopt;
  }
  text.remove_prefix(static_cast<std::size_t>(all.end - text.data()));
  return PlainDecimal{all.number, static_cast<std::size_t>(decimals), is_negative};
}

// The nearest double. Nothing when the digits are too many to compute it with a single rounding.
inline std::optional<double> to_double(const PlainDecimal& decimal) {
  static constexpr std::uint64_t largest_exact = std::uint64_t{1} << 53U;  // in a double
  static constexpr double powers_of_ten[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,
                                             1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13,
                                             1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
  if (decimal.digits > largest_exact) {
    return std::nullopt;
  }
  // Both operands are exact, so the division rounds once, as strtod does.
  const double magnitude = static_cast<double>(decimal.digits) / powers_of_ten[decimal.decimals];
  return decimal.is_negative ? -magnitude : magnitude;
}

}  // namespace vqvec

#endif  // VQVEC_DSL_PLAIN_DECIMAL_HPP
