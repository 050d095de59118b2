// Paths as text. Statements, messages and files hold paths in UTF-8, with '/' between the names, on
// every system; here they become paths of the system, and text again.
#ifndef VQVEC_PLATFORM_PATH_TEXT_HPP
#define VQVEC_PLATFORM_PATH_TEXT_HPP

#include <filesystem>
#include <string>
#include <string_view>

namespace vqvec {

// Fails only on Windows, for bytes that are not UTF-8. Elsewhere a path may be any bytes.
std::filesystem::path to_path(std::string_view text);
std::string to_text(const std::filesystem::path& path);

// Whether the text names a place of its own, so that no directory is put before it.
bool has_root(std::string_view path_text);

}  // namespace vqvec

#endif  // VQVEC_PLATFORM_PATH_TEXT_HPP
