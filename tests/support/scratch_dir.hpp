// A directory of a test's own, removed with all its content at the end of the test.
#ifndef VQVEC_TESTS_SUPPORT_SCRATCH_DIR_HPP
#define VQVEC_TESTS_SUPPORT_SCRATCH_DIR_HPP

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vqvec {

class ScratchDir {
 public:
  ScratchDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vqvec-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("cannot make a scratch directory like " + pattern);
    }
    path_ = std::filesystem::canonical(pattern);
  }
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;
  ~ScratchDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }
  std::string path_of(const std::filesystem::path& name) const { return (path_ / name).string(); }

  // Writes a file, with the directories above it; returns its whole path. An earlier file is
  // removed first: where the content of a file is replaced, some file systems wait for the disk.
  std::string write(const std::filesystem::path& name, std::string_view bytes) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::remove(file);
    std::ofstream(file, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    return file.string();
  }

  // The bytes of a file; fails when it can't be opened.
  std::string read(const std::filesystem::path& name) const {
    std::ifstream file(path_ / name, std::ios::binary);
    if (!file) {
      throw std::runtime_error("no file " + (path_ / name).string());
    }
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
  }

 private:
  std::filesystem::path path_;
};

// Makes a directory the working directory until the end of the scope.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const std::filesystem::path& path)
      : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;
  ~WorkingDirectory() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
  }

 private:
  std::filesystem::path before_;
};

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_SCRATCH_DIR_HPP
