// How nested calls are evaluated: a call under way waits on the heap for its operands instead of
// calling their evaluation, so that the depth of nesting costs no machine stack.
#ifndef VQVEC_EVAL_PENDING_CALL_HPP
#define VQVEC_EVAL_PENDING_CALL_HPP

#include <functional>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "dsl/expression.hpp"
#include "taskstore/atom_vector.hpp"

namespace vqvec {

// What an expression evaluates to, by the place in which it stands.
using Value = std::variant<AtomVector, double>;
enum class ValueKind { vector, scalar };

// An expression to be evaluated next, for the call that waits for it.
struct Operand {
  const Expression* expression;
  ValueKind kind;
};

class PendingCall {
 public:
  PendingCall() = default;
  PendingCall(const PendingCall&) = delete;
  PendingCall& operator=(const PendingCall&) = delete;
  virtual ~PendingCall() = default;

  // What the call waits for; nothing when its result can be asked for.
  virtual std::optional<Operand> next_operand() = 0;
  // Takes the value of the operand named last, of the kind named with it.
  virtual void take(Value value) = 0;
  // Asked for once, at the end.
  virtual Value result() = 0;
};
using PendingCallPtr = std::unique_ptr<PendingCall>;

// A value that waits for nothing.
PendingCallPtr ready(Value value);

// A fixed list of operands, evaluated in that order and then put together.
using Combine = std::function<Value(std::vector<Value>& values)>;
PendingCallPtr when_evaluated(std::vector<Operand> operands, Combine combine);

// Evaluates an expression with all that is nested in it.
Value evaluate(const Operand& root, EvalContext& context);

}  // namespace vqvec

#endif  // VQVEC_EVAL_PENDING_CALL_HPP
