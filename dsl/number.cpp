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

// from_chars reads plain decimals several times faster and to the same double. What it declines
// (a leading '+' or white space, hexadecimal forms, values out of range) is left to strtod.
std::optional<double> read_number(std::string_view text) {
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

std::optional<std::uint64_t> read_count(std::string_view text) {
  try {
    return std::stoull(std::string(text));
  } catch (const std::logic_error&) {  // invalid_argument or out_of_range
    return std::nullopt;
  }
}

}  // namespace vqvec
