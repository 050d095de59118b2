// Scalar expressions: a number, the sum of a vector, or one key of a task.
#ifndef VQVEC_EVAL_SCALAR_EXPRESSION_HPP
#define VQVEC_EVAL_SCALAR_EXPRESSION_HPP

#include <string_view>

#include "dsl/expression.hpp"
#include "taskstore/eval_context.hpp"

namespace vqvec {

// Literals and task keys are finite; a sum need not be. The text must outlive the context, which
// keeps task texts as views of it.
double evaluate_scalar_expression(std::string_view text, EvalContext& context);

// The same for an expression that has been parsed, such as an argument.
double evaluate_scalar_expression(const Expression& expression, EvalContext& context);

}  // namespace vqvec

#endif  // VQVEC_EVAL_SCALAR_EXPRESSION_HPP
