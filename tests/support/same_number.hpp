// Comparing numbers exactly: 0.0 is not -0.0, but any NaN equals any other, since the compiler
// chooses which of two operands' NaNs survives.
#ifndef VQVEC_TESTS_SUPPORT_SAME_NUMBER_HPP
#define VQVEC_TESTS_SUPPORT_SAME_NUMBER_HPP

#include <cmath>
#include <optional>

namespace vqvec {

// Where a number may be missing, the other must be missing, too.
inline bool is_same_number(std::optional<double> one, std::optional<double> other) {
  if (!one || !other) {
    return !one && !other;
  }
  if (std::isnan(*one) || std::isnan(*other)) {
    return std::isnan(*one) && std::isnan(*other);
  }
  return *one == *other && std::signbit(*one) == std::signbit(*other);
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_SAME_NUMBER_HPP
