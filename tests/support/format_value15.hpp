// A printed value as a text of its own.
#ifndef VQVEC_TESTS_SUPPORT_FORMAT_VALUE15_HPP
#define VQVEC_TESTS_SUPPORT_FORMAT_VALUE15_HPP

#include <string>

#include "output/number_format.hpp"

namespace vqvec {

inline std::string format_value15(double value) {
  std::string text;
  append_value15(text, value);
  return text;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_FORMAT_VALUE15_HPP
