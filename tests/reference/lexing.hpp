// The rules of statement text once more, step by step and without any thought of speed: unit tests
// and fuzzers compare the program's own code with them. Nothing of that code is used here, and no
// two of these functions share a scanner, so that one mistake cannot hide in both.
#ifndef VQVEC_TESTS_REFERENCE_LEXING_HPP
#define VQVEC_TESTS_REFERENCE_LEXING_HPP

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace vqvec::reference {

inline bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

inline bool is_white(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

inline std::string trim(const std::string& text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && is_blank(text[begin])) {
    ++begin;
  }
  while (end > begin && is_blank(text[end - 1])) {
    --end;
  }
  return text.substr(begin, end - begin);
}

inline std::string to_lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c - 'A' + 'a');
    }
  }
  return text;
}

inline bool begins_with(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

inline std::string normalize_property_name(const std::string& text) {
  std::string name = trim(text);
  if (begins_with(name, "atoms[].")) {
    name.erase(0, 8);
  }
  if (begins_with(name, "atoms.")) {
    name.erase(0, 6);
  }
  while (!name.empty() && name.front() == '.') {
    name.erase(0, 1);
  }
  while (!name.empty() && name.back() == '.') {
    name.pop_back();
  }
  if (name.empty()) {
    throw std::runtime_error("atomvec target property cannot be empty");
  }
  for (const char c : name) {
    if (c == '=' || c == '\n' || c == '\r' || is_white(c)) {
      throw std::runtime_error("atomvec property contains an unsafe character: " + name);
    }
  }
  return name;
}

struct Ref {
  std::string task;
  std::string property;
};

inline Ref parse_atom_vec_ref(const std::string& text) {
  const std::string s = trim(text);
  if (s.empty()) {
    throw std::runtime_error("empty atom vector reference");
  }
  const auto mark = s.find(".atoms[].");
  if (mark != std::string::npos) {
    return {trim(s.substr(0, mark)), normalize_property_name(s.substr(mark + 9))};
  }
  const auto colon = s.find(':');
  if (colon == std::string::npos) {
    throw std::runtime_error("atom vector reference must use task:prop or task.atoms[].prop: " +
                             text);
  }
  return {trim(s.substr(0, colon)), normalize_property_name(s.substr(colon + 1))};
}

struct Call {
  std::string name;  // lower-cased; empty: not a call
  std::string argument_text;

  bool operator==(const Call&) const = default;
};

inline Call parse_function_call(const std::string& text) {
  const std::string s = trim(text);
  if (s.empty() || s.back() != ')') {
    return {};
  }
  const auto p = s.find('(');
  if (p == std::string::npos || p == 0) {
    return {};
  }
  const std::string raw_name = trim(s.substr(0, p));
  for (const char c : raw_name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '_') {
      return {};
    }
  }
  bool single_quotes = false;
  bool double_quotes = false;
  bool escape_next = false;
  long depth = 0;
  for (std::size_t i = p; i < s.size(); ++i) {
    const char c = s[i];
    if (escape_next) {
      escape_next = false;
      continue;
    }
    if ((single_quotes || double_quotes) && c == '\\') {
      escape_next = true;
      continue;
    }
    if (c == '\'' && !double_quotes) {
      single_quotes = !single_quotes;
      continue;
    }
    if (c == '"' && !single_quotes) {
      double_quotes = !double_quotes;
      continue;
    }
    if (single_quotes || double_quotes) {
      continue;
    }
    if (c == '(') {
      ++depth;
    } else if (c == ')') {
      --depth;
      if (depth == 0 && i != s.size() - 1) {
        return {};
      }
    }
  }
  if (depth != 0 || single_quotes || double_quotes) {
    throw std::runtime_error("unbalanced function expression: " + text);
  }
  return {to_lower(raw_name), s.substr(p + 1, s.size() - p - 2)};
}

inline std::vector<std::string> split_call_arguments(const std::string& text) {
  std::vector<std::string> pieces;
  std::string piece;
  char inside = 0;  // the quote byte that opened the section
  bool escaped = false;
  int open = 0;
  for (const char c : text) {
    const bool was_escaped = escaped;
    escaped = false;
    if (was_escaped) {
      piece += c;
    } else if (inside != 0) {
      piece += c;
      escaped = c == '\\';
      inside = c == inside ? '\0' : inside;
    } else if (c == ',' && open == 0) {
      pieces.push_back(trim(piece));
      piece.clear();
    } else {
      piece += c;
      inside = c == '\'' || c == '"' ? c : '\0';
      open += c == '(' ? 1 : 0;
      open -= c == ')' && open >= 1 ? 1 : 0;
    }
  }
  piece = trim(piece);
  if (!piece.empty()) {
    pieces.push_back(piece);
  }
  return pieces;
}

inline std::string unquote_argument(const std::string& text) {
  const std::string s = trim(text);
  if (s.size() < 2 || s.front() != s.back() || (s.front() != '\'' && s.front() != '"')) {
    return s;
  }
  const std::string inside = s.substr(1, s.size() - 2);
  if (s.front() == '\'') {
    return inside;
  }
  std::string plain;
  std::size_t i = 0;
  while (i < inside.size()) {
    if (inside[i] == '\\' && i + 1 != inside.size()) {
      plain += inside[i + 1];
      i += 2;
    } else {
      plain += inside[i];
      i += 1;
    }
  }
  return plain;
}

inline std::vector<std::string> split_option_words(const std::string& text) {
  enum class In { nothing, single_quotes, double_quotes };
  std::vector<std::string> words;
  std::string word;
  bool started = false;
  In in = In::nothing;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool has_next = i + 1 < text.size();
    if (in == In::single_quotes) {
      if (c == '\'') {
        in = In::nothing;
      } else {
        word += c;
      }
      continue;
    }
    if (in == In::double_quotes) {
      if (c == '\\' && has_next && (text[i + 1] == '"' || text[i + 1] == '\\')) {
        word += text[++i];
      } else if (c == '"') {
        in = In::nothing;
      } else {
        word += c;
      }
      continue;
    }
    if (is_white(c)) {
      if (started || !word.empty()) {
        words.push_back(word);
      }
      word.clear();
      started = false;
    } else if (c == '\'') {
      in = In::single_quotes;
      started = true;
    } else if (c == '"') {
      in = In::double_quotes;
      started = true;
    } else if (c == '\\' && has_next &&
               (is_white(text[i + 1]) || text[i + 1] == '"' || text[i + 1] == '\'' ||
                text[i + 1] == '\\')) {
      word += text[++i];
    } else {
      word += c;
      started = true;
    }
  }
  if (started || !word.empty()) {
    words.push_back(word);
  }
  return words;
}

// Plain backtracking, from a place in the pattern and one in the name. Its time grows without
// bounds with the number of stars, so `steps` says how many calls it may make. If it is below 0
// afterwards, the search was given up and the answer means nothing.
inline bool wildcard_match(const std::string& pattern, std::size_t p, const std::string& name,
                           std::size_t n, long& steps) {
  if (--steps < 0) {
    return false;
  }
  for (; p < pattern.size(); ++p, ++n) {
    if (pattern[p] == '*') {
      while (p < pattern.size() && pattern[p] == '*') {
        ++p;
      }
      for (; n <= name.size(); ++n) {
        if (wildcard_match(pattern, p, name, n, steps)) {
          return true;
        }
        if (steps < 0) {
          return false;
        }
      }
      return false;
    }
    if (n == name.size() || (pattern[p] != '?' && pattern[p] != name[n])) {
      return false;
    }
  }
  return n == name.size();
}

}  // namespace vqvec::reference

#endif  // VQVEC_TESTS_REFERENCE_LEXING_HPP
