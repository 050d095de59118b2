// Messages are compared whole.
#ifndef VQVEC_TESTS_SUPPORT_FAILURE_HPP
#define VQVEC_TESTS_SUPPORT_FAILURE_HPP

#include <exception>
#include <string>

namespace vqvec {

// The message of the exception that the call throws, or "(no failure)".
template <typename Call>
std::string failure_of(Call call) {
  try {
    call();
  } catch (const std::exception& failure) {
    return failure.what();
  }
  return "(no failure)";
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_FAILURE_HPP
