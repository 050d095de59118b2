#include "platform/path_text.hpp"

#include <algorithm>

namespace vqvec {

namespace fs = std::filesystem;

namespace {

constexpr bool has_drives = fs::path::preferred_separator == '\\';

}  // namespace

fs::path to_path(std::string_view text) {
  if constexpr (has_drives) {
    return std::u8string(text.begin(), text.end());
  } else {
    return text;
  }
}

std::string to_text(const fs::path& path) {
  if constexpr (has_drives) {
    const std::u8string bytes = path.u8string();
    std::string text(bytes.begin(), bytes.end());
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
  } else {
    return path.string();
  }
}

bool has_root(std::string_view path_text) {
  if constexpr (has_drives) {
    return to_path(path_text).has_root_path();
  } else {
    return path_text.starts_with('/');
  }
}

}  // namespace vqvec
