// Numbers as the statement and the key-value files write them. What counts as a number is what the
// standard conversions accept (strtod, stoull), and only if it is all of the text, by length.
#ifndef VQVEC_DSL_NUMBER_HPP
#define VQVEC_DSL_NUMBER_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vqvec {

// True when the trimmed text has the form of a number: also `inf`, `nan`, hexadecimal forms, and
// values out of range.
bool is_number_literal(std::string_view text);

// The number that the trimmed text is; nothing for any other text and for values that are not
// finite.
std::optional<double> read_finite_number(std::string_view text);

// As above, but fails with label + " is not a finite number: " + text as passed in.
double parse_finite_number(std::string_view text, std::string_view label);

// A number of everyday form at the front of the text: an optional '-', digits, possibly a point and
// more digits. Nothing when it has so many digits that reading it takes more than one rounding;
// what stands behind it is for the caller to judge.
struct PlainDecimal {
  double value;
  std::size_t length;  // of its text
};
std::optional<PlainDecimal> read_plain_decimal(std::string_view text);

// The unsigned decimal number that the text begins with, behind optional white space and a sign.
// Whatever follows the digits is ignored, and "-1" is 2^64 - 1, as with stoull. Nothing when there
// are no digits or the number does not fit into 64 bits.
std::optional<std::uint64_t> read_count(std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_DSL_NUMBER_HPP
