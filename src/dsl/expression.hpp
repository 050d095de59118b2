// The call structure of an expression. The rules are those of parse_function_call and
// split_call_arguments, applied to the text, to each argument, to their arguments and so on; the
// tree finds them all in one pass, so that deep nesting costs no more than its length.
#ifndef VQVEC_DSL_EXPRESSION_HPP
#define VQVEC_DSL_EXPRESSION_HPP

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace vqvec {

// One node; all texts are views of the text that the tree was made from.
struct Expression {
  std::string_view text;      // the root's as passed in, an argument's trimmed
  std::string_view function;  // the called function as written; empty when the text is not a call
  std::span<const Expression> arguments;  // empty when the text is not a call
};

class ExpressionTree {
 public:
  // Parentheses deeper than this are refused: the rules for a single argument of mean() and add()
  // look at the whole text below each level.
  static constexpr std::size_t max_nesting = 20'000;

  // The text must outlive the tree. Fails as parse_function_call does (naming the trimmed text) and
  // with "expression is nested more than 20000 parentheses deep".
  explicit ExpressionTree(std::string_view text);
  explicit ExpressionTree(std::string&& text) = delete;

  ExpressionTree(const ExpressionTree&) = delete;
  ExpressionTree& operator=(const ExpressionTree&) = delete;
  ExpressionTree(ExpressionTree&&) = default;
  ExpressionTree& operator=(ExpressionTree&&) = default;
  ~ExpressionTree() = default;

  const Expression& root() const { return root_; }

 private:
  std::vector<Expression> arguments_;  // each call's together; the spans point here
  Expression root_;
};

}  // namespace vqvec

#endif  // VQVEC_DSL_EXPRESSION_HPP
