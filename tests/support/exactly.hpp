// Comparing vectors of numbers exactly.
#ifndef VQVEC_TESTS_SUPPORT_EXACTLY_HPP
#define VQVEC_TESTS_SUPPORT_EXACTLY_HPP

#include <gmock/gmock.h>

#include <tuple>

#include "taskstore/atom_vector.hpp"
#include "tests/support/same_number.hpp"

namespace vqvec {

MATCHER(SameNumber, "") {
  return is_same_number(std::get<0>(arg), std::get<1>(arg));
}

// For EXPECT_THAT(vector, exactly({...})).
inline auto exactly(const AtomVector& expected) {
  return testing::Pointwise(SameNumber(), expected);
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_EXACTLY_HPP
