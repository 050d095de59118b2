#include "dsl/number.hpp"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>

#include "dsl/eight_digits.hpp"
#include "dsl/lexical.hpp"

namespace vqvec {
namespace {

// The arithmetic here and in the output relies on 64-bit doubles that are rounded after each
// operation.
static_assert(std::numeric_limits<double>::is_iec559 && sizeof(double) == sizeof(std::uint64_t));
static_assert(FLT_EVAL_METHOD == 0);

// At namespace scope: a local array would be copied on every call.
constexpr double powers_of_ten[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
                                    1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};

// A number and where its digits end. With too many digits, the number wraps around.
struct Digits {
  std::uint64_t number;
  const char* end;
};

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
  for (; next != end && *next >= '0' && *next <= '9'; ++next) {
    number = number * 10 + static_cast<std::uint64_t>(*next - '0');
  }
  return {number, next};
}

// The first bytes that strtod accepts: white space, signs, digits, a point, inf and nan.
constexpr std::string_view number_beginnings = " \t\n\v\f\r+-.0123456789iInN";

// strtod needs a terminated copy of the text.
std::optional<double> read_with_strtod(std::string_view text) {
  if (text.empty() || number_beginnings.find(text.front()) == std::string_view::npos) {
    return std::nullopt;  // spares the copy of a long expression
  }
  const std::string terminated(text);
  char* end = nullptr;
  const double value = std::strtod(terminated.c_str(), &end);
  if (end != terminated.c_str() + terminated.size()) {
    return std::nullopt;
  }
  return value;
}

// Nearly all numbers are plain decimals, and from_chars reads nearly all others; both are several
// times faster than strtod and give the same double. strtod reads the rest: a leading '+' or white
// space, hexadecimal forms, values out of range. Some libraries have no from_chars for doubles.
std::optional<double> read_number(std::string_view text) {
  const auto plain = read_plain_decimal(text);
  if (plain && plain->length == text.size()) {
    return plain->value;
  }
#ifdef __cpp_lib_to_chars
  double value = 0.0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc() && rest == end) {
    return value;
  }
#endif
  return read_with_strtod(text);
}

}  // namespace

bool is_number_literal(std::string_view text) {
  return read_number(trim(text)).has_value();
}

std::optional<double> read_finite_number(std::string_view text) {
  const std::optional<double> value = read_number(trim(text));
  return value && std::isfinite(*value) ? value : std::nullopt;
}

double parse_finite_number(std::string_view text, std::string_view label) {
  if (const std::optional<double> value = read_finite_number(text)) {
    return *value;
  }
  throw_not_finite(text, label);
}

void throw_not_finite(std::string_view text, std::string_view label) {
  throw std::runtime_error(std::string(label) + " is not a finite number: " + std::string(text));
}

std::optional<PlainDecimal> read_plain_decimal(std::string_view text) {
  constexpr std::ptrdiff_t most_digits = 18;                        // of a 64-bit integer
  constexpr std::uint64_t largest_exact = std::uint64_t{1} << 53U;  // in a double
  const char* const end = text.data() + text.size();
  const bool is_negative = text.starts_with('-');
  const char* const first = text.data() + (is_negative ? 1 : 0);
  const Digits whole = read_digits(0, first, end);
  const bool has_point = whole.end != end && *whole.end == '.';
  // All digits form one integer, without the point.
  const Digits all = has_point ? read_digits(whole.number, whole.end + 1, end) : whole;
  const std::ptrdiff_t decimals = has_point ? all.end - whole.end - 1 : 0;
  const std::ptrdiff_t count = whole.end - first + decimals;
  if (count == 0 || count > most_digits || all.number > largest_exact) {
    return std::nullopt;
  }
  // Both operands are exact, so the division rounds once, as strtod does.
  const double magnitude = static_cast<double>(all.number) / powers_of_ten[decimals];
  return PlainDecimal{is_negative ? -magnitude : magnitude,
                      static_cast<std::size_t>(all.end - text.data())};
}

std::optional<std::uint64_t> read_count(std::string_view text) {
  try {
    return std::stoull(std::string(text));
  } catch (const std::logic_error&) {  // invalid_argument or out_of_range
    return std::nullopt;
  }
}

}  // namespace vqvec
