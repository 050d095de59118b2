#include "dsl/lexical.hpp"

#include <algorithm>
#include <cctype>

namespace vqvec {
namespace {

// The text between double quotes. A backslash at its end remains one.
std::string resolve_escapes(std::string_view quoted) {
  std::string text;
  for (std::size_t i = 0; i < quoted.size(); ++i) {
    if (quoted[i] == '\\' && i + 1 < quoted.size()) {
      ++i;
    }
    text += quoted[i];
  }
  return text;
}

}  // namespace

std::string_view trim(const char* text) {
  return trim(std::string_view(text));
}

std::string to_lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  });
  return lower;
}

std::string_view unquote_argument(std::string_view text, TextPool& pool) {
  const std::string_view trimmed = trim(text);
  const bool is_quoted = trimmed.size() >= 2 && trimmed.front() == trimmed.back() &&
                         (trimmed.front() == '\'' || trimmed.front() == '"');
  if (!is_quoted) {
    return trimmed;
  }
  const std::string_view inside = trimmed.substr(1, trimmed.size() - 2);
  if (trimmed.front() == '\'' || inside.find('\\') == std::string_view::npos) {
    return inside;
  }
  return pool.keep(resolve_escapes(inside));
}

std::string_view unquote_argument(const char* text, TextPool& pool) {
  return unquote_argument(std::string_view(text), pool);
}

}  // namespace vqvec
