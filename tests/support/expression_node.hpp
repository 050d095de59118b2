// The tree that the program makes of an expression, in the form of the reference.
#ifndef VQVEC_TESTS_SUPPORT_EXPRESSION_NODE_HPP
#define VQVEC_TESTS_SUPPORT_EXPRESSION_NODE_HPP

#include <string>

#include "dsl/expression.hpp"
#include "tests/reference/expression.hpp"

namespace vqvec {

inline reference::Node copy_of(const Expression& expression) {
  reference::Node node = {std::string(expression.text), std::string(expression.function)};
  for (const Expression& argument : expression.arguments) {
    node.arguments.push_back(copy_of(argument));
  }
  return node;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_EXPRESSION_NODE_HPP
