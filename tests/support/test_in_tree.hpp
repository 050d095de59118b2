// Suites whose tests only read a directory tree.
#ifndef VQVEC_TESTS_SUPPORT_TEST_IN_TREE_HPP
#define VQVEC_TESTS_SUPPORT_TEST_IN_TREE_HPP

#include <gtest/gtest.h>

#include <optional>

namespace vqvec {

// The tree is made before the first test of the suite and removed after the last. Doing so for each
// row of a large table would take longer than everything else.
template <typename Tree, typename Case>
class TestInTree : public testing::TestWithParam<Case> {
 public:
  static void SetUpTestSuite() { tree_.emplace(); }
  static void TearDownTestSuite() { tree_.reset(); }

 private:
  inline static std::optional<Tree> tree_;
};

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_TEST_IN_TREE_HPP
