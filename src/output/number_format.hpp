// Printing numbers in output files.
#ifndef VQVEC_OUTPUT_NUMBER_FORMAT_HPP
#define VQVEC_OUTPUT_NUMBER_FORMAT_HPP

#include <string>

namespace vqvec {

// As printf's %.15g: up to 15 significant digits, for every per-atom value.
std::string format_value15(double value);

// As printf's %.10f: 10 digits after the point, for coordinates.
std::string format_fixed10(double value);

// The same, appended to a text.
void append_value15(std::string& text, double value);
void append_fixed10(std::string& text, double value);

}  // namespace vqvec

#endif  // VQVEC_OUTPUT_NUMBER_FORMAT_HPP
