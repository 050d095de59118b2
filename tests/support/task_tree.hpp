// Directory trees of tasks, with the working directory inside.
#ifndef VQVEC_TESTS_SUPPORT_TASK_TREE_HPP
#define VQVEC_TESTS_SUPPORT_TASK_TREE_HPP

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/scratch_dir.hpp"

namespace vqvec {

// The lines `atoms.N.<property>=value` of a result file.
inline std::string atom_lines(const std::string& property, const std::vector<std::string>& values) {
  std::string lines;
  for (std::size_t i = 0; i < values.size(); ++i) {
    lines += "atoms." + std::to_string(i + 1) + "." + property + "=" + values[i] + "\n";
  }
  return lines;
}

// A tree of a test's own. All names are relative to its root. Unless the working directory is
// placed further down, the root is its parent, and a plain name is its sibling.
class TaskTree {
 public:
  explicit TaskTree(const std::filesystem::path& working_directory = "here")
      : here_(make(working_directory)) {}

  std::filesystem::path path_of(const std::filesystem::path& name) const {
    return root_.path() / name;
  }
  bool has(const std::filesystem::path& name) const {
    return std::filesystem::exists(path_of(name));
  }
  std::string read(const std::filesystem::path& name) const { return root_.read(name); }

  // Makes a directory, with those above it; returns its whole path.
  std::filesystem::path make(const std::filesystem::path& name) const {
    std::filesystem::create_directories(path_of(name));
    return path_of(name);
  }
  std::string write(const std::filesystem::path& name, std::string_view bytes) const {
    return root_.write(name, bytes);
  }
  void add_task(const std::filesystem::path& name, std::string_view result_lines) const {
    write(name / ".vorq.result.kv", result_lines);
  }
  void add_link(const std::filesystem::path& name, const std::filesystem::path& target) const {
    std::filesystem::create_symlink(target, path_of(name));
  }

 private:
  ScratchDir root_;
  WorkingDirectory here_;
};

// A tree with room above the siblings of the working directory, which are in `job`.
class WorkPlace : public TaskTree {
 public:
  WorkPlace() : TaskTree("job/here") {}
};

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_TASK_TREE_HPP
