// A small tree of task directories with the working directory among them.
#ifndef VQVEC_TESTS_EVAL_TASK_TREE_HPP
#define VQVEC_TESTS_EVAL_TASK_TREE_HPP

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/scratch_dir.hpp"

namespace vqvec {

// The lines `atoms.N.<property>=value` of a result file.
inline std::string atom_lines(const std::string& property, const std::vector<std::string>& values) {
  std::string lines;
  for (const std::string& value : values) {
    lines += "atoms." + std::to_string(1 + static_cast<std::size_t>(&value - values.data())) + "." +
             property + "=" + value + "\n";
  }
  return lines;
}

// All names are relative to the parent of the working directory, so a plain name is a sibling of
// the working directory.
class TaskTree {
 public:
  explicit TaskTree(const std::string& working_directory = "here")
      : here_(add_directory(working_directory)) {}

  const ScratchDir& root() const { return root_; }

  std::filesystem::path add_directory(const std::filesystem::path& name) const {
    std::filesystem::create_directories(root_.path() / name);
    return root_.path() / name;
  }

  void add_task(const std::filesystem::path& name, std::string_view result_lines) const {
    root_.write(name / ".vorq.result.kv", result_lines);
  }

  void add_link(const std::filesystem::path& name, const std::filesystem::path& target) const {
    std::filesystem::create_symlink(target, root_.path() / name);
  }

 private:
  ScratchDir root_;
  WorkingDirectory here_;
};

}  // namespace vqvec

#endif  // VQVEC_TESTS_EVAL_TASK_TREE_HPP
