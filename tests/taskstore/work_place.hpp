// A working directory with neighbours: `job/here` in a directory of the test's own. What stands in
// `job` is a sibling of the working directory, what stands in `job/here` a child.
#ifndef VQVEC_TESTS_TASKSTORE_WORK_PLACE_HPP
#define VQVEC_TESTS_TASKSTORE_WORK_PLACE_HPP

#include <filesystem>
#include <string>
#include <string_view>

#include "tests/support/scratch_dir.hpp"

namespace vqvec {

class WorkPlace {
 public:
  WorkPlace() : here_(make("job/here")) {}

  // All names are relative to the test's own directory.
  std::filesystem::path path_of(const std::filesystem::path& name) const {
    return top_.path() / name;
  }
  std::filesystem::path make(const std::filesystem::path& name) const {
    std::filesystem::create_directories(path_of(name));
    return path_of(name);
  }
  std::string write(const std::filesystem::path& name, std::string_view bytes) const {
    return top_.write(name, bytes);
  }
  std::string read(const std::filesystem::path& name) const { return top_.read(name); }
  bool has(const std::filesystem::path& name) const {
    return std::filesystem::exists(path_of(name));
  }

 private:
  ScratchDir top_;
  WorkingDirectory here_;
};

}  // namespace vqvec

#endif  // VQVEC_TESTS_TASKSTORE_WORK_PLACE_HPP
