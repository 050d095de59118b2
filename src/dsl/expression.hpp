// The call structure of an expression, found in one pass over its text: parse_function_call applied
// to the text, to the arguments of its call, to their arguments and so on.
#ifndef VQVEC_DSL_EXPRESSION_HPP
#define VQVEC_DSL_EXPRESSION_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vqvec {

// All texts are views of the text that was parsed.
struct Expression {
  std::string_view text;      // as passed in; an argument's text is trimmed
  std::string function = {};  // its lower-cased name; empty when the text is not a call
  std::vector<Expression> arguments = {};  // empty when the text is not a call
  std::size_t depth = 0;                   // number of parentheses open around the text
};

// Evaluation is recursive; so many levels need less than 1 MiB of stack.
constexpr std::size_t max_nesting = 1000;

// `depth` is the number of parentheses already open around the text. Fails as parse_function_call
// does (naming the trimmed text) and with "expression is nested more than 1000 parentheses deep".
Expression parse_expression(std::string_view text, std::size_t depth = 0);
Expression parse_expression(const char* text, std::size_t depth = 0);
Expression parse_expression(std::string&& text, std::size_t depth = 0) = delete;

// Splits the text between a call's parentheses at the commas outside quotes and inner parentheses.
// An empty piece is an argument, except after the last comma. Quotes are kept. Fails with the
// nesting message above.
std::vector<Expression> split_call_arguments(std::string_view text, std::size_t depth = 1);
std::vector<Expression> split_call_arguments(const char* text, std::size_t depth = 1);
std::vector<Expression> split_call_arguments(std::string&& text, std::size_t depth = 1) = delete;

}  // namespace vqvec

#endif  // VQVEC_DSL_EXPRESSION_HPP
