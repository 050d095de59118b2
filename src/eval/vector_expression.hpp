// Vector expressions: a reference to one task's vector, or a function of other expressions.
#ifndef VQVEC_EVAL_VECTOR_EXPRESSION_HPP
#define VQVEC_EVAL_VECTOR_EXPRESSION_HPP

#include <string_view>

#include "dsl/expression.hpp"
#include "taskstore/atom_vector.hpp"

namespace vqvec {

// Arguments are evaluated in the order that each function defines; the first failure ends the
// evaluation. The text must outlive the context, which keeps task texts as views of it.
AtomVector evaluate_vector_expression(std::string_view text, EvalContext& context);

// The same for an expression that has been parsed, such as an argument.
AtomVector evaluate_vector_expression(const Expression& expression, EvalContext& context);

}  // namespace vqvec

#endif  // VQVEC_EVAL_VECTOR_EXPRESSION_HPP
