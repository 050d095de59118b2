#include "platform/path_text.hpp"

#include <algorithm>

namespace vqvec {

namespace fs = std::filesystem;

fs::path to_path(std::string_view text) {
  return std::u8string(text.begin(), text.end());
}

std::string to_text(const fs::path& path) {
  constexpr auto separator = static_cast<char>(fs::path::preferred_separator);
  const std::u8string bytes = path.u8string();
  std::string text(bytes.begin(), bytes.end());
  std::replace(text.begin(), text.end(), separator, '/');
  return text;
}

bool has_root(std::string_view path_text) {
  constexpr bool has_drives = fs::path::preferred_separator == '\\';
  if constexpr (has_drives) {
    return to_path(path_text).has_root_path();
  } else {
    return path_text.starts_with('/');
  }
}

}  // namespace vqvec
