// How a fuzz target says that program and reference disagree.
#ifndef VQVEC_TESTS_FUZZ_REQUIRE_HPP
#define VQVEC_TESTS_FUZZ_REQUIRE_HPP

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

namespace vqvec {

// Stops the process, which the fuzzer and ctest both take for a finding.
inline void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "disagreement: %s\n", what);
    std::abort();
  }
}

inline void require_equal(const std::string& actual, const std::string& expected,
                          const char* what) {
  if (actual != expected) {
    std::fprintf(stderr, "got:      [%s]\nexpected: [%s]\n", actual.c_str(), expected.c_str());
    require(false, what);
  }
}

// What a call throws or returns, as text. Anything that is not a standard exception ends the
// process.
template <typename Call>
std::string outcome_of(Call call) {
  try {
    return "= " + call();
  } catch (const std::exception& failure) {
    return std::string("failed: ") + failure.what();
  }
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_FUZZ_REQUIRE_HPP
