// The smallest operations on statement text: white space, letter case, quotes. Text is bytes, in
// the default locale, without Unicode.
#ifndef VQVEC_DSL_LEXICAL_HPP
#define VQVEC_DSL_LEXICAL_HPP

#include <string>
#include <string_view>

#include "dsl/text_pool.hpp"

namespace vqvec {

// The default locale's isspace: space, \t, \n, \v, \f and \r.
constexpr bool is_space(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// The four bytes that trim removes.
constexpr bool is_trimmed(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The text without spaces, tabs, carriage returns and line feeds at either end. Vertical tabs and
// form feeds remain, although is_space includes them. Inline, since every line and number is
// trimmed.
inline std::string_view trim(std::string_view text) {
  while (!text.empty() && is_trimmed(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && is_trimmed(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}
std::string_view trim(const char* text);
std::string_view trim(std::string&& text) = delete;

// A copy with A-Z replaced by a-z.
std::string to_lower(std::string_view text);

// The trimmed text without one enclosing pair of equal quotes. Inside double quotes a backslash
// escapes the next byte; inside single quotes nothing is escaped. The result is a view of the
// argument, or of the pool if it contained escapes.
std::string_view unquote_argument(std::string_view text, TextPool& pool);
std::string_view unquote_argument(const char* text, TextPool& pool);
std::string_view unquote_argument(std::string&& text, TextPool& pool) = delete;

}  // namespace vqvec

#endif  // VQVEC_DSL_LEXICAL_HPP
