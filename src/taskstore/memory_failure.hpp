// Telling "not there" from "no memory to look".
#ifndef VQVEC_TASKSTORE_MEMORY_FAILURE_HPP
#define VQVEC_TASKSTORE_MEMORY_FAILURE_HPP

#include <new>
#include <system_error>

namespace vqvec {

// A file or directory that cannot be examined or opened is treated as absent, unless memory ran
// out: a result from half the data would look valid. Throws std::bad_alloc in that case.
inline void throw_if_out_of_memory(const std::error_code& error) {
  if (error == std::errc::not_enough_memory) {
    throw std::bad_alloc();
  }
}

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_MEMORY_FAILURE_HPP
