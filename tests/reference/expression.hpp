// The calls of an expression, found by the rules of a single call at one level after the other.
#ifndef VQVEC_TESTS_REFERENCE_EXPRESSION_HPP
#define VQVEC_TESTS_REFERENCE_EXPRESSION_HPP

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/reference/lexing.hpp"

namespace vqvec::reference {

struct Node {
  std::string text;
  std::string function = {};  // lower-cased; empty: not a call
  std::vector<Node> arguments = {};

  bool operator==(const Node&) const = default;
};

inline std::string describe(const Node& node) {
  std::string text = "[" + node.text + "]";
  if (!node.function.empty()) {
    text += " calls [" + node.function + "] with {";
    for (const Node& argument : node.arguments) {
      text += describe(argument) + " ";
    }
    text += "}";
  }
  return text;
}

// For the messages of failed comparisons.
inline void PrintTo(const Node& node, std::ostream* stream) {
  *stream << describe(node);
}

// The greatest number of parentheses open at one place outside quotes; a ')' too many is ignored.
inline std::size_t deepest_nesting(const std::string& text) {
  char quote = '\0';
  bool escape_next = false;
  std::size_t depth = 0;
  std::size_t deepest = 0;
  for (const char c : text) {
    if (escape_next) {
      escape_next = false;
    } else if (quote != '\0') {
      escape_next = c == '\\';
      quote = c == quote ? '\0' : quote;
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '(') {
      deepest = std::max(deepest, ++depth);
    } else if (c == ')' && depth > 0) {
      --depth;
    }
  }
  return deepest;
}

// Arguments are inside the parentheses of their call.
inline void require_allowed_depth(const std::string& arguments) {
  if (1 + deepest_nesting(arguments) > 1000) {
    throw std::runtime_error("expression is nested more than 1000 parentheses deep");
  }
}

inline Node parse_expression(const std::string& text) {
  const Call call = parse_function_call(trim(text));
  Node node = {text};
  if (!call.name.empty()) {
    require_allowed_depth(call.argument_text);
    node.function = call.name;
    for (const std::string& argument : split_call_arguments(call.argument_text)) {
      node.arguments.push_back(parse_expression(argument));
    }
  }
  return node;
}

}  // namespace vqvec::reference

#endif  // VQVEC_TESTS_REFERENCE_EXPRESSION_HPP
