#include "eval/vector_expression.hpp"

#include <cmath>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

#include "dsl/lexical.hpp"
#include "dsl/number.hpp"
#include "eval/scalar_expression.hpp"
#include "eval/task_glob.hpp"
#include "eval/vector_functions.hpp"

namespace vqvec {
namespace {

// A call whose function is known and whose number of arguments is right.
struct Call {
  std::string name;  // lower-cased
  std::span<const Expression> arguments;
  EvalContext& context;

  std::string label() const { return name + "()"; }
  Operand vector(std::size_t index) const { return {&arguments[index], ValueKind::vector}; }
  Operand scalar(std::size_t index) const { return {&arguments[index], ValueKind::scalar}; }
};

AtomVector take_vector(Value& value) {
  return std::move(std::get<AtomVector>(value));
}

AtomVector load(const AtomVecRef& ref, EvalContext& context) {
  return load_atom_vector(context, ref.task, ref.property);
}

std::vector<AtomVecRef> expand_first_argument(const Call& call) {
  return expand_task_glob(call.arguments[0].text, call.context.texts);
}

// mean and add

enum class Sum { total, mean };

// A sum of vectors that come one at a time.
class RunningSum {
 public:
  RunningSum(Sum kind, std::string label) : kind_(kind), label_(std::move(label)) {}

  std::size_t count() const { return count_; }

  void add(AtomVector next) {
    if (count_++ == 0) {
      total_ = std::move(next);
      return;
    }
    require_equal_lengths(total_, next, label_);
    add_to(total_, next);
  }

  AtomVector result() && {
    if (kind_ == Sum::mean) {
      divide_by(total_, static_cast<double>(count_));
    }
    return std::move(total_);
  }

 private:
  Sum kind_;
  std::string label_;
  std::size_t count_ = 0;
  AtomVector total_;
};

AtomVector sum_glob(Sum kind, const Call& call) {
  RunningSum sum(kind, call.label());
  for (const AtomVecRef& ref : expand_first_argument(call)) {
    sum.add(load(ref, call.context));
  }
  return std::move(sum).result();
}

// A single argument is first taken for a glob or a reference. If that fails, for whatever reason,
// it is evaluated like one of many, unless it holds a wildcard: then it is only ever a glob. What
// the failed attempt has entered into the list of used tasks stays there.
PendingCallPtr try_as_glob(Sum kind, const Call& call) {
  try {
    return ready(sum_glob(kind, call));
  } catch (const std::exception&) {
    if (has_wildcard(unquote_argument(call.arguments[0].text, call.context.texts))) {
      throw;
    }
    return nullptr;
  }
}

class SumOfArguments final : public PendingCall {
 public:
  SumOfArguments(Sum kind, const Call& call)
      : sum_(kind, call.label()), arguments_(call.arguments) {}

  std::optional<Operand> next_operand() override {
    if (sum_.count() == arguments_.size()) {
      return std::nullopt;
    }
    return Operand{&arguments_[sum_.count()], ValueKind::vector};
  }
  void take(Value value) override { sum_.add(take_vector(value)); }
  Value result() override { return std::move(sum_).result(); }

 private:
  RunningSum sum_;
  std::span<const Expression> arguments_;
};

template <Sum kind>
PendingCallPtr begin_sum(const Call& call) {
  PendingCallPtr glob = call.arguments.size() == 1 ? try_as_glob(kind, call) : nullptr;
  return glob != nullptr ? std::move(glob) : std::make_unique<SumOfArguments>(kind, call);
}

// first

PendingCallPtr begin_first(const Call& call) {
  return ready(load(expand_first_argument(call).front(), call.context));
}

// wmean and wsum, with their other names

// The key of each task's own weight, when the weight is written as one: `key` or `@key`.
std::optional<std::string_view> weight_key(std::string_view weight_text) {
  const bool has_mark = weight_text.starts_with('@');
  const std::string_view key = weight_text.substr(has_mark ? 1 : 0);
  const std::string_view not_in_a_key = has_mark ? "." : " \t\r\n():,+*/";
  return key.find_first_of(not_in_a_key) == std::string_view::npos ? std::optional(key)
                                                                   : std::nullopt;
}

class WeightedSum final : public PendingCall {
 public:
  WeightedSum(Sum kind, const Call& call)
      : kind_(kind),
        label_(call.label()),
        context_(call.context),
        refs_(expand_first_argument(call)) {
    const std::string_view text = unquote_argument(call.arguments[1].text, context_.texts);
    if (text.empty()) {
      throw std::runtime_error(label_ + " cannot use an empty weight expression");
    }
    if (is_number_literal(text)) {
      common_weight_ = parse_finite_number(text, label_ + " scalar literal");
    } else if (const auto key = weight_key(text)) {
      task_key_ = *key;
    } else if (text.data() == call.arguments[1].text.data()) {
      weight_expression_ = &call.arguments[1];
    } else {
      weight_expression_ = &unquoted_weight_.emplace(text).root();
    }
  }

  // An expression has the same value for every task, so it is evaluated once: nested, once per task
  // would be without bounds.
  std::optional<Operand> next_operand() override {
    if (weight_expression_ == nullptr || common_weight_) {
      return std::nullopt;
    }
    return Operand{weight_expression_, ValueKind::scalar};
  }

  void take(Value value) override { common_weight_ = std::get<double>(value); }

  Value result() override {
    AtomVector sum;
    double total_weight = 0.0;
    for (const AtomVecRef& ref : refs_) {
      const double weight = weight_of(ref.task);
      const AtomVector vector = load(ref, context_);
      if (&ref == &refs_.front()) {
        sum.assign(vector.size(), 0.0);
      }
      require_equal_lengths(sum, vector, label_);
      add_weighted_to(sum, vector, weight);
      total_weight += weight;
    }
    if (kind_ == Sum::mean) {
      if (total_weight == 0.0 || !std::isfinite(total_weight)) {
        throw std::runtime_error(label_ + " cannot normalize zero/non-finite total weight");
      }
      divide_by(sum, total_weight);
    }
    return sum;
  }

 private:
  double weight_of(std::string_view task) {
    const double weight =
        common_weight_ ? *common_weight_ : load_task_scalar(context_, task, task_key_, label_);
    if (!std::isfinite(weight)) {
      throw std::runtime_error(label_ + " got a non-finite weight for task '" + std::string(task) +
                               "'");
    }
    return weight;
  }

  Sum kind_;
  std::string label_;
  EvalContext& context_;
  std::vector<AtomVecRef> refs_;
  std::string_view task_key_;
  std::optional<double> common_weight_;
  const Expression* weight_expression_ = nullptr;
  std::optional<ExpressionTree> unquoted_weight_;
};

template <Sum kind>
PendingCallPtr begin_weighted(const Call& call) {
  return std::make_unique<WeightedSum>(kind, call);
}

// Functions of one or two vectors and scalars

PendingCallPtr begin_sub(const Call& call) {
  return when_evaluated({call.vector(0), call.vector(1)}, [](std::vector<Value>& values) {
    AtomVector first = take_vector(values[0]);
    const AtomVector second = take_vector(values[1]);
    require_equal_lengths(first, second, "sub()");
    subtract_from(first, second);
    return first;
  });
}

PendingCallPtr begin_scale(const Call& call) {
  return when_evaluated({call.vector(0), call.scalar(1)}, [](std::vector<Value>& values) {
    AtomVector vector = take_vector(values[0]);
    multiply_by(vector, std::get<double>(values[1]));
    return vector;
  });
}

template <void (*change)(AtomVector&)>
PendingCallPtr begin_unary(const Call& call) {
  return when_evaluated({call.vector(0)}, [](std::vector<Value>& values) {
    AtomVector vector = take_vector(values[0]);
    change(vector);
    return vector;
  });
}

PendingCallPtr begin_clip(const Call& call) {
  return when_evaluated({call.vector(0), call.scalar(1), call.scalar(2)},
                        [](std::vector<Value>& values) {
                          AtomVector vector = take_vector(values[0]);
                          clip(vector, std::get<double>(values[1]), std::get<double>(values[2]));
                          return vector;
                        });
}

// The target is evaluated before the vector.
PendingCallPtr begin_renorm(const Call& call) {
  return when_evaluated({call.scalar(1), call.vector(0)}, [](std::vector<Value>& values) {
    return renormalize_to_sum(take_vector(values[1]), std::get<double>(values[0]));
  });
}

// The language's functions

struct Function {
  std::string_view name;
  std::size_t argument_count;  // one_or_more, or exactly this many
  std::string_view expects;    // what a wrong number is told, behind "name() expects "
  PendingCallPtr (*begin)(const Call& call);
};

constexpr std::size_t one_or_more = 0;
constexpr std::string_view glob_and_weight = "a vector glob and a weight key/expression";

constexpr Function functions[] = {
    {"mean", one_or_more, "at least one vector argument", begin_sum<Sum::mean>},
    {"add", one_or_more, "at least one vector argument", begin_sum<Sum::total>},
    {"first", 1, "one vector reference argument", begin_first},
    {"first_glob", 1, "one vector reference argument", begin_first},
    {"wmean", 2, glob_and_weight, begin_weighted<Sum::mean>},
    {"weighted_mean", 2, glob_and_weight, begin_weighted<Sum::mean>},
    {"wavg", 2, glob_and_weight, begin_weighted<Sum::mean>},
    {"wsum", 2, glob_and_weight, begin_weighted<Sum::total>},
    {"weighted_sum", 2, glob_and_weight, begin_weighted<Sum::total>},
    {"sub", 2, "exactly two vector arguments", begin_sub},
    {"scale", 2, "a vector and a scalar", begin_scale},
    {"mul", 2, "a vector and a scalar", begin_scale},
    {"neg", 1, "one vector argument", begin_unary<flip_signs>},
    {"abs", 1, "one vector argument", begin_unary<clear_signs>},
    {"clip", 3, "a vector, min and max", begin_clip},
    {"renorm", 2, "a vector and a target sum", begin_renorm},
    {"renormalize", 2, "a vector and a target sum", begin_renorm},
};

const Function& find_function(std::string_view name) {
  for (const Function& function : functions) {
    if (function.name == name) {
      return function;
    }
  }
  throw std::runtime_error("unsupported atom vector function: " + std::string(name));
}

PendingCallPtr begin_call(const Call& call) {
  const Function& function = find_function(call.name);
  const std::size_t count = call.arguments.size();
  const bool is_right =
      function.argument_count == one_or_more ? count > 0 : count == function.argument_count;
  if (!is_right) {
    throw std::runtime_error(call.label() + " expects " + std::string(function.expects));
  }
  return function.begin(call);
}

}  // namespace

AtomVector evaluate_vector_expression(std::string_view text, EvalContext& context) {
  const ExpressionTree tree(text);
  return std::get<AtomVector>(evaluate({&tree.root(), ValueKind::vector}, context));
}

PendingCallPtr begin_vector_expression(const Expression& expression, EvalContext& context) {
  if (expression.function.empty()) {
    const auto ref = parse_atom_vec_ref(unquote_argument(expression.text, context.texts));
    return ready(load(ref, context));
  }
  return begin_call({to_lower(expression.function), expression.arguments, context});
}

}  // namespace vqvec
