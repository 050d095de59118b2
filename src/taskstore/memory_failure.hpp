// Telling "not there" from "no memory to look".
#ifndef VQVEC_TASKSTORE_MEMORY_FAILURE_HPP
#define VQVEC_TASKSTORE_MEMORY_FAILURE_HPP

#include <new>
#include <system_error>

namespace vqvec {

// A file or directory that can't be asked or opened counts as absent; but not when memory was what
// lacked, or a result could be made of half the data. Throws std::bad_alloc then.
inline void require_memory(const std::error_code& error) {
  if (error == std::errc::not_enough_memory) {
    throw std::bad_alloc();
  }
}

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_MEMORY_FAILURE_HPP
