#include "output/text_file.hpp"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace vqvec {
namespace {

void ensure_parent_directory(const std::string& path) {
  const std::filesystem::path parent = std::filesystem::path(path).parent_path();
  if (parent.empty()) {
    return;
  }
  std::error_code error;
  std::filesystem::create_directories(parent, error);
  if (error) {
    throw std::runtime_error("could not create parent directory for '" + path +
                             "': " + error.message());
  }
}

void put_text(const std::string& path, std::string_view text, std::ios::openmode mode,
              std::string_view purpose) {
  if (path.empty()) {
    return;
  }
  ensure_parent_directory(path);
  std::filebuf file;
  file.pubsetbuf(nullptr, 0);
  if (file.open(path, std::ios::out | std::ios::binary | mode) == nullptr) {
    throw std::runtime_error("could not open file for " + std::string(purpose) + ": " + path);
  }
  const auto size = static_cast<std::streamsize>(text.size());
  if (file.sputn(text.data(), size) != size) {
    throw std::runtime_error("could not write file: " + path);
  }
}

}  // namespace

void append_text_file(const std::string& path, std::string_view text) {
  put_text(path, text, std::ios::app, "appending");
}

void write_text_file(const std::string& path, std::string_view text) {
  put_text(path, text, std::ios::trunc, "writing");
}

}  // namespace vqvec
