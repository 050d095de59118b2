#include "eval/pending_call.hpp"

#include <utility>

#include "eval/scalar_expression.hpp"
#include "eval/vector_expression.hpp"

namespace vqvec {
namespace {

class Ready final : public PendingCall {
 public:
  explicit Ready(Value value) : value_(std::move(value)) {}

  std::optional<Operand> next_operand() override { return std::nullopt; }
  void take(Value /*value*/) override {}  // uncounted: it asks for no operand
  Value result() override { return std::move(value_); }

 private:
  Value value_;
};

class FixedOperands final : public PendingCall {
 public:
  FixedOperands(std::vector<Operand> operands, Combine combine)
      : operands_(std::move(operands)), combine_(std::move(combine)) {}

  std::optional<Operand> next_operand() override {
    return values_.size() < operands_.size() ? std::optional(operands_[values_.size()])
                                             : std::nullopt;
  }
  void take(Value value) override { values_.push_back(std::move(value)); }
  Value result() override { return combine_(values_); }

 private:
  std::vector<Operand> operands_;
  Combine combine_;
  std::vector<Value> values_;
};

PendingCallPtr begin(const Operand& operand, EvalContext& context) {
  return operand.kind == ValueKind::vector ? begin_vector_expression(*operand.expression, context)
                                           : begin_scalar_expression(*operand.expression, context);
}

}  // namespace

PendingCallPtr ready(Value value) {
  return std::make_unique<Ready>(std::move(value));
}

PendingCallPtr when_evaluated(std::vector<Operand> operands, Combine combine) {
  return std::make_unique<FixedOperands>(std::move(operands), std::move(combine));
}

Value evaluate(const Operand& root, EvalContext& context) {
  std::vector<PendingCallPtr> waiting;
  PendingCallPtr call = begin(root, context);
  for (;;) {
    if (const auto operand = call->next_operand()) {
      waiting.push_back(std::move(call));
      call = begin(*operand, context);
      continue;
    }
    Value value = call->result();
    if (waiting.empty()) {
      return value;
    }
    call = std::move(waiting.back());
    waiting.pop_back();
    call->take(std::move(value));
  }
}

}  // namespace vqvec
