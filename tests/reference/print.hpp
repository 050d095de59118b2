// Numbers as printf prints them.
#ifndef VQVEC_TESTS_REFERENCE_PRINT_HPP
#define VQVEC_TESTS_REFERENCE_PRINT_HPP

#include <cstdio>
#include <string>

namespace vqvec::reference {

inline std::string print(const char* format, double value) {
  char text[400];  // the longest that %.10f gives has 321 bytes
  const int size = std::snprintf(text, sizeof text, format, value);
  return {text, static_cast<std::size_t>(size)};
}

}  // namespace vqvec::reference

#endif  // VQVEC_TESTS_REFERENCE_PRINT_HPP
