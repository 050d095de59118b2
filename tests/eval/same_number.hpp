// Comparing numbers exactly: 0.0 is not -0.0, and a NaN equals any other.
#ifndef VQVEC_TESTS_EVAL_SAME_NUMBER_HPP
#define VQVEC_TESTS_EVAL_SAME_NUMBER_HPP

#include <gmock/gmock.h>

#include <cmath>
#include <tuple>

#include "taskstore/atom_vector.hpp"

namespace vqvec {

inline bool is_same_number(double one, double other) {
  if (std::isnan(one) || std::isnan(other)) {
    return std::isnan(one) && std::isnan(other);
  }
  return one == other && std::signbit(one) == std::signbit(other);
}

MATCHER(SameNumber, "") {
  return is_same_number(std::get<0>(arg), std::get<1>(arg));
}

// For EXPECT_THAT(vector, exactly({...})).
inline auto exactly(const AtomVector& expected) {
  return testing::Pointwise(SameNumber(), expected);
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_EVAL_SAME_NUMBER_HPP
