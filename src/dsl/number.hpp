// Numbers in statements and key-value files: whatever the standard conversions (strtod, stoull)
// accept.
#ifndef VQVEC_DSL_NUMBER_HPP
#define VQVEC_DSL_NUMBER_HPP

#include <cstdint>
#include <optional>
#include <string_view>

namespace vqvec {

// True when all of the trimmed text has the form of a number, including `inf`, `nan`, hexadecimal
// forms and values out of range.
bool is_number_literal(std::string_view text);

// The value if all of the trimmed text is a finite number, otherwise nothing.
std::optional<double> read_finite_number(std::string_view text);

// The same, but fails with label + " is not a finite number: " + text as passed in.
double parse_finite_number(std::string_view text, std::string_view label);

// This failure alone, for callers that build the label only when it is needed.
[[noreturn]] void throw_not_finite(std::string_view text, std::string_view label);

// The unsigned decimal number at the front of the text, after optional white space and a sign.
// Anything after the digits is ignored, and "-1" is 2^64 - 1, as with stoull. Nothing when there
// are no digits or the number exceeds 64 bits.
std::optional<std::uint64_t> read_count(std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_DSL_NUMBER_HPP
