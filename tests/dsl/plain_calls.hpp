// The rules of calls and their arguments in their plainest form: byte by byte, each level of
// nesting for itself, whatever that costs. What the fast readers say is compared with this.
#ifndef VQVEC_TESTS_DSL_PLAIN_CALLS_HPP
#define VQVEC_TESTS_DSL_PLAIN_CALLS_HPP

#include <cctype>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace vqvec {

struct PlainCall {
  std::string name;
  std::string arguments;

  bool operator==(const PlainCall&) const = default;
};

inline std::string plain_trim(const std::string& text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  const auto is_blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (begin < end && is_blank(text[begin])) {
    ++begin;
  }
  while (end > begin && is_blank(text[end - 1])) {
    --end;
  }
  return text.substr(begin, end - begin);
}

inline PlainCall plain_parse_call(const std::string& text) {
  const std::string s = plain_trim(text);
  if (s.empty() || s.back() != ')') {
    return {};
  }
  const std::size_t open = s.find('(');
  if (open == std::string::npos || open == 0) {
    return {};
  }
  std::string name = plain_trim(s.substr(0, open));
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '_') {
      return {};
    }
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  bool in_single = false;
  bool in_double = false;
  bool escape_next = false;
  long depth = 0;
  for (std::size_t i = open; i < s.size(); ++i) {
    const char c = s[i];
    if (escape_next) {
      escape_next = false;
    } else if ((in_single || in_double) && c == '\\') {
      escape_next = true;
    } else if (c == '\'' && !in_double) {
      in_single = !in_single;
    } else if (c == '"' && !in_single) {
      in_double = !in_double;
    } else if (!in_single && !in_double && c == '(') {
      ++depth;
    } else if (!in_single && !in_double && c == ')') {
      --depth;
      if (depth == 0 && i + 1 < s.size()) {
        return {};
      }
    }
  }
  if (depth != 0 || in_single || in_double) {
    throw std::runtime_error("unbalanced function expression: " + text);
  }
  return {name, s.substr(open + 1, s.size() - open - 2)};
}

inline std::vector<std::string> plain_split_arguments(const std::string& text) {
  std::vector<std::string> pieces;
  std::string piece;
  bool in_single = false;
  bool in_double = false;
  bool escape_next = false;
  long depth = 0;
  for (const char c : text) {
    const bool is_quoted = in_single || in_double;
    if (!escape_next && !is_quoted && c == ',' && depth == 0) {
      pieces.push_back(plain_trim(piece));
      piece.clear();
      continue;
    }
    piece += c;
    if (escape_next) {
      escape_next = false;
    } else if (is_quoted && c == '\\') {
      escape_next = true;
    } else if (c == '\'' && !in_double) {
      in_single = !in_single;
    } else if (c == '"' && !in_single) {
      in_double = !in_double;
    } else if (!is_quoted && c == '(') {
      ++depth;
    } else if (!is_quoted && c == ')' && depth >= 1) {
      --depth;
    }
  }
  if (!plain_trim(piece).empty()) {
    pieces.push_back(plain_trim(piece));
  }
  return pieces;
}

// Texts in which calls, quotes and escapes meet in every way.
inline std::string random_call_text(std::mt19937_64& random) {
  static const std::string bytes = "a,_(')\" \\:";
  static const std::vector<std::string> pieces = {
      "f(",  "g (", "a_1(", "(",   ")",  ")", ")",  ",",  ", ", "a:q", "'a,b'",
      "'('", "\"",  "'",    "\\'", "\\", " ", "\t", "\v", "Z(", ") )"};
  std::string text;
  if (random() % 2 == 0) {
    for (auto length = random() % 14; length > 0; --length) {
      text += bytes[random() % bytes.size()];
    }
  } else {
    for (auto length = random() % 14; length > 0; --length) {
      text += pieces[random() % pieces.size()];
    }
  }
  return text;
}

// Calls within calls, some of them damaged.
inline std::string random_expression(std::mt19937_64& random, int levels) {
  static const std::vector<std::string> leaves = {"a:q", "",       " ",     "'a,b'", "\"\\\")\"",
                                                  "\v",  "'\\')'", "@a.b",  "2",     "'('",
                                                  "a:(", "g(b)c",  "(a,b)", "\\",    "\t a"};
  static const std::vector<std::string> openings = {"f(", "Mean (", " g(", "(", "a:b(", "a_1\t("};
  static const std::string bytes = "a,_(')\" \\:";
  if (levels == 0 || random() % 3 == 0) {
    return leaves[random() % leaves.size()];
  }
  std::string text = openings[random() % openings.size()];
  for (auto arguments = random() % 4; arguments > 0; --arguments) {
    text += random_expression(random, levels - 1) + (arguments > 1 || random() % 4 == 0 ? "," : "");
  }
  text += random() % 4 == 0 ? ") " : ")";
  if (random() % 16 == 0) {
    text[random() % text.size()] = bytes[random() % bytes.size()];
  }
  return text;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_DSL_PLAIN_CALLS_HPP
