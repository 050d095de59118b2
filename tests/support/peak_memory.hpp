// How much memory the process has needed.
#ifndef VQVEC_TESTS_SUPPORT_PEAK_MEMORY_HPP
#define VQVEC_TESTS_SUPPORT_PEAK_MEMORY_HPP

#include <sys/resource.h>

namespace vqvec {

// The most so far, so that a difference is a lower bound of what has been needed in between.
inline long peak_kilobytes() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_PEAK_MEMORY_HPP
