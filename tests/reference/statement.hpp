// The statement parser's rules once more; the fuzzers compare the program with them.
#ifndef VQVEC_TESTS_REFERENCE_STATEMENT_HPP
#define VQVEC_TESTS_REFERENCE_STATEMENT_HPP

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/reference/lexing.hpp"

namespace vqvec::reference {

struct Statement {
  std::string target;
  std::string expression;
  std::vector<std::string> checks;
  std::string sum_text;
  std::string out_path;
  std::string chg_path;
  std::string format = "extxyz";
  std::string geom_path;
};

// Quotes, escapes and parentheses up to a place in a text.
struct Nesting {
  bool single_quotes = false;
  bool double_quotes = false;
  bool escape_next = false;
  std::size_t depth = 0;

  bool is_outside() const { return !single_quotes && !double_quotes && depth == 0; }

  // Goes past one byte. True when that byte was outside quotes and was no quote.
  bool pass(char c) {
    if (escape_next) {
      escape_next = false;
      return false;
    }
    if ((single_quotes || double_quotes) && c == '\\') {
      escape_next = true;
      return false;
    }
    if (c == '\'' && !double_quotes) {
      single_quotes = !single_quotes;
      return false;
    }
    if (c == '"' && !single_quotes) {
      double_quotes = !double_quotes;
      return false;
    }
    if (single_quotes || double_quotes) {
      return false;
    }
    if (c == '(') {
      ++depth;
    }
    if (c == ')' && depth > 0) {
      --depth;
    }
    return true;
  }
};

inline std::string take_option_value(const std::vector<std::string>& words, std::size_t& index,
                                     const std::string& option_name) {
  if (index + 1 < words.size()) {
    ++index;
    return words[index];
  }
  throw std::runtime_error(option_name + " requires a value");
}

inline void interpret_words(const std::vector<std::string>& words, Statement& statement) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string word = words[i];
    if (word == "--check") {
      statement.checks.push_back(take_option_value(words, i, "--check"));
    } else if (begins_with(word, "--check=")) {
      statement.checks.push_back(word.substr(8));
    } else if (word == "--sum" || word == "--renorm" || word == "--renormalize") {
      statement.sum_text = take_option_value(words, i, word);
    } else if (begins_with(word, "--sum=")) {
      statement.sum_text = word.substr(6);
    } else if (begins_with(word, "--renorm=")) {
      statement.sum_text = word.substr(9);
    } else if (word == "--out" || word == "--extxyz") {
      statement.out_path = take_option_value(words, i, word);
    } else if (begins_with(word, "--out=")) {
      statement.out_path = word.substr(6);
    } else if (begins_with(word, "--extxyz=")) {
      statement.out_path = word.substr(9);
    } else if (word == "--chg") {
      statement.chg_path = take_option_value(words, i, "--chg");
    } else if (begins_with(word, "--chg=")) {
      statement.chg_path = word.substr(6);
    } else if (word == "--format") {
      statement.format = to_lower(take_option_value(words, i, "--format"));
    } else if (begins_with(word, "--format=")) {
      statement.format = to_lower(word.substr(9));
    } else if (word == "--geom") {
      statement.geom_path = take_option_value(words, i, "--geom");
    } else if (begins_with(word, "--geom=")) {
      statement.geom_path = word.substr(7);
    } else {
      throw std::runtime_error("unknown atomvec option: " + word);
    }
  }
}

inline Statement parse_statement(const std::string& text) {
  std::size_t equals = 0;
  Nesting left;
  for (; equals < text.size(); ++equals) {
    if (left.is_outside() && text[equals] == '=') {
      break;
    }
    left.pass(text[equals]);
  }
  if (equals == text.size()) {
    throw std::runtime_error("atomvec syntax requires '<target> = <expr>': " + text);
  }

  Statement statement;
  statement.target = normalize_property_name(text.substr(0, equals));

  const std::string right_side = text.substr(equals + 1);
  statement.expression = trim(right_side);
  std::string option_text;
  Nesting right;
  for (std::size_t i = 0; i < right_side.size(); ++i) {
    if (right.is_outside() && is_white(right_side[i])) {
      std::size_t next = i;
      while (next < right_side.size() && is_white(right_side[next])) {
        ++next;
      }
      if (next + 1 < right_side.size() && right_side[next] == '-' && right_side[next + 1] == '-') {
        statement.expression = trim(right_side.substr(0, i));
        option_text = trim(right_side.substr(next));
        break;
      }
    }
    right.pass(right_side[i]);
  }
  if (statement.expression.empty()) {
    throw std::runtime_error("atomvec expression cannot be empty: " + text);
  }

  interpret_words(split_option_words(option_text), statement);
  if (!statement.out_path.empty() && statement.format != "extxyz") {
    throw std::runtime_error("atomvec currently supports only --format extxyz");
  }
  for (std::string& mode : statement.checks) {
    mode = to_lower(trim(mode));
    if (mode != "same_atoms") {
      throw std::runtime_error("unknown atomvec --check mode: " + mode);
    }
  }
  return statement;
}

}  // namespace vqvec::reference

#endif  // VQVEC_TESTS_REFERENCE_STATEMENT_HPP
