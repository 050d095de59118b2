// Vector expressions: a reference to one task's vector, or a function of other expressions.
#ifndef VQVEC_EVAL_VECTOR_EXPRESSION_HPP
#define VQVEC_EVAL_VECTOR_EXPRESSION_HPP

#include <string_view>

#include "eval/pending_call.hpp"

namespace vqvec {

// The text must outlive the context, which keeps task texts as views of it. Arguments are evaluated
// in the order that each function's rules name, and the first failure ends it.
AtomVector evaluate_vector_expression(std::string_view text, EvalContext& context);

// The same for an expression nested in another: begun here, carried on by evaluate().
PendingCallPtr begin_vector_expression(const Expression& expression, EvalContext& context);

}  // namespace vqvec

#endif  // VQVEC_EVAL_VECTOR_EXPRESSION_HPP
