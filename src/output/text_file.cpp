#include "output/text_file.hpp"

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "platform/file.hpp"
#include "platform/path_text.hpp"

namespace vqvec {
namespace {

void ensure_parent_directory(const std::string& path) {
  const std::filesystem::path parent = to_path(path).parent_path();
  if (parent.empty()) {
    return;
  }
  std::error_code error;
  std::filesystem::create_directories(parent, error);
  if (error == std::errc::file_exists) {  // coverage-exclude: what libc++ says of a file there
    error = std::make_error_code(std::errc::not_a_directory);
  }
  if (error) {
    throw std::runtime_error("could not create parent directory for '" + path +
                             "': " + error.message());
  }
}

void put_text(const std::string& path, std::string_view text, const char* mode,
              std::string_view purpose) {
  if (path.empty()) {
    return;
  }
  ensure_parent_directory(path);
  const File file = open_file(path, mode);
  if (!file) {
    throw std::runtime_error("could not open file for " + std::string(purpose) + ": " + path);
  }
  if (std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) {
    throw std::runtime_error("could not write file: " + path);
  }
}

}  // namespace

void append_text_file(const std::string& path, std::string_view text) {
  put_text(path, text, "ab", "appending");
}

void write_text_file(const std::string& path, std::string_view text) {
  put_text(path, text, "wb", "writing");
}

}  // namespace vqvec
