#include "dsl/number.hpp"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>

#include "dsl/lexical.hpp"
#include "dsl/plain_decimal.hpp"

namespace vqvec {
namespace {

// The arithmetic here and in the output relies on 64-bit doubles that are rounded after each
// operation.
static_assert(std::numeric_limits<double>::is_iec559 && sizeof(double) == sizeof(std::uint64_t));
static_assert(FLT_EVAL_METHOD == 0);

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
  std::string_view rest = text;
  if (const auto plain = take_plain_decimal(rest); plain && rest.empty()) {
    if (const auto value = to_double(*plain)) {
      return value;
    }
  }
#ifdef __cpp_lib_to_chars
  double value = 0.0;
  const char* const end = text.data() + text.size();
  const auto [next, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc() && next == end) {
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

std::optional<std::uint64_t> read_count(std::string_view text) {
  try {
    return std::stoull(std::string(text));
  } catch (const std::logic_error&) {  // invalid_argument or out_of_range
    return std::nullopt;
  }
}

}  // namespace vqvec
