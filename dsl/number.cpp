#include "dsl/number.hpp"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

#include "dsl/lexical.hpp"

namespace vqvec {
namespace {

// Appends the digits at `next` to the integer and moves behind them. Returns how many there are.
std::size_t read_digits(const char*& next, const char* end, std::uint64_t& integer) {
  const char* const first = next;
  for (; next != end && *next >= '0' && *next <= '9'; ++next) {
    integer = 10 * integer + static_cast<std::uint64_t>(*next - '0');
  }
  return static_cast<std::size_t>(next - first);
}

// What strtod can begin with: white space, a sign, a digit, a point, inf or nan.
constexpr std::string_view number_beginnings = " \t\n\v\f\r+-.0123456789iInN";

// The whole text through strtod, which needs a terminated copy.
std::optional<double> read_with_strtod(std::string_view text) {
  if (text.empty() || number_beginnings.find(text.front()) == std::string_view::npos) {
    return std::nullopt;  // without copying a long expression only to learn this
  }
  const std::string terminated(text);
  char* end = nullptr;
  const double value = std::strtod(terminated.c_str(), &end);
  if (end != terminated.c_str() + terminated.size()) {
    return std::nullopt;
  }
  return value;
}

// Nearly all numbers are plain decimals, and nearly all others are read by from_chars, both several
// times faster than by strtod and to the same double. What from_chars declines (a leading '+' or
// white space, hexadecimal forms, values out of range) is left to strtod.
std::optional<double> read_number(std::string_view text) {
  const auto plain = read_plain_decimal(text);
  if (plain && plain->length == text.size()) {
    return plain->value;
  }
  double value = 0.0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc() && rest == end) {
    return value;
  }
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
  throw std::runtime_error(std::string(label) + " is not a finite number: " + std::string(text));
}

std::optional<PlainDecimal> read_plain_decimal(std::string_view text) {
  constexpr std::size_t most_digits = 18;                           // fit into 64 bits
  constexpr std::uint64_t largest_exact = std::uint64_t{1} << 53U;  // in a double
  constexpr double powers_of_ten[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
                                      1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};
  const char* const end = text.data() + text.size();
  const char* next = text.data();
  const bool is_negative = next != end && *next == '-';
  next += is_negative ? 1 : 0;
  std::uint64_t digits = 0;  // as one integer, without the point
  const std::size_t whole_digits = read_digits(next, end, digits);
  std::size_t decimals = 0;
  if (next != end && *next == '.') {
    ++next;
    decimals = read_digits(next, end, digits);
  }
  const std::size_t count = whole_digits + decimals;
  if (count == 0 || count > most_digits || digits > largest_exact) {
    return std::nullopt;
  }
  // Both are exact, so the division rounds once, as reading the text would.
  const double magnitude = static_cast<double>(digits) / powers_of_ten[decimals];
  return PlainDecimal{is_negative ? -magnitude : magnitude,
                      static_cast<std::size_t>(next - text.data())};
}

std::optional<std::uint64_t> read_count(std::string_view text) {
  try {
    return std::stoull(std::string(text));
  } catch (const std::logic_error&) {  // invalid_argument or out_of_range
    return std::nullopt;
  }
}

}  // namespace vqvec
