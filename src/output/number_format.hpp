// Printing numbers in output files.
#ifndef VQVEC_OUTPUT_NUMBER_FORMAT_HPP
#define VQVEC_OUTPUT_NUMBER_FORMAT_HPP

#include <string>

namespace vqvec {

// Appends the value as printf's %.15g: up to 15 significant digits, for per-atom values.
void append_value15(std::string& text, double value);

// Appends the value as printf's %.10f: 10 digits after the point, for coordinates.
void append_fixed10(std::string& text, double value);

// The same as a text of its own.
std::string format_fixed10(double value);

}  // namespace vqvec

#endif  // VQVEC_OUTPUT_NUMBER_FORMAT_HPP
