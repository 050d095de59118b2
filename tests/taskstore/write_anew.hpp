// For tests that read thousands of files, one after the other under the same name.
#ifndef VQVEC_TESTS_TASKSTORE_WRITE_ANEW_HPP
#define VQVEC_TESTS_TASKSTORE_WRITE_ANEW_HPP

#include <filesystem>
#include <string>
#include <string_view>

#include "tests/support/scratch_dir.hpp"

namespace vqvec {

// Removes the earlier file first: where the content of a file is replaced, some file systems wait
// for the disk.
inline std::string write_anew(const ScratchDir& dir, const std::filesystem::path& name,
                              std::string_view bytes) {
  std::filesystem::remove(dir.path() / name);
  return dir.write(name, bytes);
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_TASKSTORE_WRITE_ANEW_HPP
