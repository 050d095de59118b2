// The smallest operations on statement text: blanks, letter case, quotes. Texts are bytes: nothing
// here knows of Unicode or of a locale other than the default one.
#ifndef VQVEC_DSL_LEXICAL_HPP
#define VQVEC_DSL_LEXICAL_HPP

#include <string>
#include <string_view>

#include "dsl/text_pool.hpp"

namespace vqvec {

// The default locale's isspace: blank, \t, \n, \v, \f and \r.
constexpr bool is_space(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// The four bytes that trim removes.
constexpr bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The text without blanks (is_blank) at either end. Vertical tab and form feed stay, although
// is_space counts them. Inline: it is called for every line and every number that is read.
inline std::string_view trim(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && is_blank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}
std::string_view trim(const char* text);
std::string_view trim(std::string&& text) = delete;

// A copy in which A-Z have become a-z.
std::string to_lower(std::string_view text);

// The trimmed text without one enclosing pair of equal quotes. Inside double quotes a backslash
// takes the next byte literally, inside single quotes nothing is escaped. The result is a view of
// the argument, or of the pool when escapes had to be resolved.
std::string_view unquote_argument(std::string_view text, TextPool& pool);
std::string_view unquote_argument(const char* text, TextPool& pool);
std::string_view unquote_argument(std::string&& text, TextPool& pool) = delete;

}  // namespace vqvec

#endif  // VQVEC_DSL_LEXICAL_HPP
