#include "dsl/expression.hpp"

#include <stdexcept>
#include <string>

#include "dsl/argument_reader.hpp"
#include "dsl/call.hpp"
#include "dsl/lexical.hpp"

namespace vqvec {

ExpressionTree::ExpressionTree(std::string_view text) : root_{text, {}, {}} {
  const std::string_view trimmed = trim(text);
  const FunctionCall call = parse_function_call(trimmed);
  if (call.name.empty()) {
    return;
  }
  // All parentheses and quotes inside balance now, so they do inside every argument as well.
  ArgumentReader reader(call.argument_text, arguments_);
  root_.function = trim(trimmed.substr(0, trimmed.find('(')));
  root_.arguments = reader.read();
  if (reader.deepest() >= max_nesting) {
    throw std::runtime_error("expression is nested more than " + std::to_string(max_nesting) +
                             " parentheses deep");
  }
}

}  // namespace vqvec
