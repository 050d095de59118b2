#include "eval/vector_expression.hpp"

#include <cmath>
#include <exception>
#include <optional>
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

// A call whose function is known and has the right number of arguments. An argument is evaluated
// where it is named, so each function evaluates its arguments in the order of its lines.
struct Call {
  const Expression& expression;
  EvalContext& context;

  std::string label() const { return expression.function + "()"; }
  std::size_t argument_count() const { return expression.arguments.size(); }
  const Expression& argument(std::size_t index) const { return expression.arguments[index]; }

  AtomVector vector(std::size_t index) const {
    return evaluate_vector_expression(argument(index), context);
  }
  double scalar(std::size_t index) const {
    return evaluate_scalar_expression(argument(index), context);
  }
  std::vector<AtomVecRef> glob(std::size_t index) const {
    return expand_task_glob(argument(index).text, context.texts);
  }
  std::string_view unquoted(std::size_t index) const {
    return unquote_argument(argument(index).text, context.texts);
  }
};

AtomVector load(const AtomVecRef& ref, EvalContext& context) {
  return load_atom_vector(context, ref.task, ref.property);
}

// mean and add

struct Sum {
  AtomVector total;
  std::size_t count;  // of the vectors added up, at least 1
};

void add_next(Sum& sum, AtomVector next, const Call& call) {
  if (sum.count++ == 0) {
    sum.total = std::move(next);
    return;
  }
  require_equal_lengths(sum.total, next, call.label());
  add_to(sum.total, next);
}

Sum sum_of_tasks(const Call& call) {
  Sum sum{};
  for (const AtomVecRef& ref : call.glob(0)) {
    add_next(sum, load(ref, call.context), call);
  }
  return sum;
}

Sum sum_of_arguments(const Call& call) {
  Sum sum{};
  for (std::size_t i = 0; i < call.argument_count(); ++i) {
    add_next(sum, call.vector(i), call);
  }
  return sum;
}

// Nothing when the argument is not a glob and cannot be loaded as a reference. What the attempt
// added to the list of used tasks remains there.
std::optional<Sum> try_sum_of_tasks(const Call& call) {
  try {
    return sum_of_tasks(call);
  } catch (const std::exception&) {
    if (has_wildcard(call.unquoted(0))) {
      throw;  // a glob is never anything else
    }
    return std::nullopt;
  }
}

// A single argument is first taken as a glob or a reference; if that fails, for whatever reason, it
// is evaluated like one of several.
Sum sum_vectors(const Call& call) {
  if (call.argument_count() == 1) {
    if (std::optional<Sum> sum = try_sum_of_tasks(call)) {
      return *std::move(sum);
    }
  }
  return sum_of_arguments(call);
}

AtomVector call_add(const Call& call) {
  return sum_vectors(call).total;
}

AtomVector call_mean(const Call& call) {
  Sum sum = sum_vectors(call);
  divide_by(sum.total, static_cast<double>(sum.count));
  return std::move(sum.total);
}

// first

AtomVector call_first(const Call& call) {
  return load(call.glob(0).front(), call.context);
}

// wmean and wsum, with their other names

struct Weight {
  std::optional<double> common;    // of all tasks
  std::string_view task_key = {};  // otherwise: the key of each task's own weight
};

// The key of each task's own weight, if the weight is written as one: `key` or `@key`.
std::optional<std::string_view> weight_key(std::string_view weight_text) {
  const bool has_mark = weight_text.starts_with('@');
  const std::string_view key = weight_text.substr(has_mark ? 1 : 0);
  const std::string_view not_in_a_key = has_mark ? "." : " \t\r\n():,+*/";
  return key.find_first_of(not_in_a_key) == std::string_view::npos ? std::optional(key)
                                                                   : std::nullopt;
}

// The text without its quotes is an expression of its own, at the depth of the argument.
double evaluate_weight(const Call& call, std::string_view text) {
  const Expression& argument = call.argument(1);
  const bool is_quoted = text.data() != argument.text.data();
  return is_quoted
             ? evaluate_scalar_expression(parse_expression(text, argument.depth), call.context)
             : call.scalar(1);
}

// An expression has the same value for every task, so it is evaluated once: nested weights would
// otherwise cost the number of tasks to the power of the depth.
Weight read_weight(const Call& call) {
  const std::string_view text = call.unquoted(1);
  if (text.empty()) {
    throw std::runtime_error(call.label() + " cannot use an empty weight expression");
  }
  if (is_number_literal(text)) {
    return {parse_finite_number(text, call.label() + " scalar literal")};
  }
  if (const std::optional<std::string_view> key = weight_key(text)) {
    return {std::nullopt, *key};
  }
  return {evaluate_weight(call, text)};
}

double weight_of_task(const Weight& weight, std::string_view task, const Call& call) {
  const double value = weight.common
                           ? *weight.common
                           : load_task_scalar(call.context, task, weight.task_key, call.label());
  if (!std::isfinite(value)) {
    throw std::runtime_error(call.label() + " got a non-finite weight for task '" +
                             std::string(task) + "'");
  }
  return value;
}

struct WeightedSum {
  AtomVector total;
  double weight;  // of all tasks together
};

WeightedSum sum_weighted(const Call& call) {
  const std::vector<AtomVecRef> refs = call.glob(0);
  const Weight weight = read_weight(call);
  WeightedSum sum{};
  for (const AtomVecRef& ref : refs) {
    const double factor = weight_of_task(weight, ref.task, call);
    const AtomVector vector = load(ref, call.context);
    if (&ref == &refs.front()) {
      sum.total.assign(vector.size(), 0.0);
    }
    require_equal_lengths(sum.total, vector, call.label());
    add_weighted_to(sum.total, vector, factor);
    sum.weight += factor;
  }
  return sum;
}

AtomVector call_wsum(const Call& call) {
  return sum_weighted(call).total;
}

AtomVector call_wmean(const Call& call) {
  WeightedSum sum = sum_weighted(call);
  if (sum.weight == 0.0 || !std::isfinite(sum.weight)) {
    throw std::runtime_error(call.label() + " cannot normalize zero/non-finite total weight");
  }
  divide_by(sum.total, sum.weight);
  return std::move(sum.total);
}

// Functions of one or two vectors and scalars

AtomVector call_sub(const Call& call) {
  AtomVector first = call.vector(0);
  const AtomVector second = call.vector(1);
  require_equal_lengths(first, second, "sub()");
  subtract_from(first, second);
  return first;
}

AtomVector call_scale(const Call& call) {
  AtomVector vector = call.vector(0);
  multiply_by(vector, call.scalar(1));
  return vector;
}

AtomVector call_neg(const Call& call) {
  AtomVector vector = call.vector(0);
  flip_signs(vector);
  return vector;
}

AtomVector call_abs(const Call& call) {
  AtomVector vector = call.vector(0);
  clear_signs(vector);
  return vector;
}

AtomVector call_clip(const Call& call) {
  AtomVector vector = call.vector(0);
  const double min = call.scalar(1);
  const double max = call.scalar(2);
  clip(vector, min, max);
  return vector;
}

AtomVector call_renorm(const Call& call) {
  const double target = call.scalar(1);  // before the vector, so its failures come first
  return renormalize_to_sum(call.vector(0), target);
}

// The language's functions

struct Function {
  std::string_view name;
  std::size_t argument_count;  // one_or_more, or exactly this many
  std::string_view expects;    // completes "name() expects ..."
  AtomVector (*evaluate)(const Call& call);
};

constexpr std::size_t one_or_more = 0;
constexpr std::string_view glob_and_weight = "a vector glob and a weight key/expression";

constexpr Function functions[] = {
    {"mean", one_or_more, "at least one vector argument", call_mean},
    {"add", one_or_more, "at least one vector argument", call_add},
    {"first", 1, "one vector reference argument", call_first},
    {"first_glob", 1, "one vector reference argument", call_first},
    {"wmean", 2, glob_and_weight, call_wmean},
    {"weighted_mean", 2, glob_and_weight, call_wmean},
    {"wavg", 2, glob_and_weight, call_wmean},
    {"wsum", 2, glob_and_weight, call_wsum},
    {"weighted_sum", 2, glob_and_weight, call_wsum},
    {"sub", 2, "exactly two vector arguments", call_sub},
    {"scale", 2, "a vector and a scalar", call_scale},
    {"mul", 2, "a vector and a scalar", call_scale},
    {"neg", 1, "one vector argument", call_neg},
    {"abs", 1, "one vector argument", call_abs},
    {"clip", 3, "a vector, min and max", call_clip},
    {"renorm", 2, "a vector and a target sum", call_renorm},
    {"renormalize", 2, "a vector and a target sum", call_renorm},
};

const Function& find_function(std::string_view name) {
  for (const Function& function : functions) {
    if (function.name == name) {
      return function;
    }
  }
  throw std::runtime_error("unsupported atom vector function: " + std::string(name));
}

void require_argument_count(const Function& function, const Call& call) {
  const std::size_t count = call.argument_count();
  const bool is_right =
      function.argument_count == one_or_more ? count > 0 : count == function.argument_count;
  if (!is_right) {
    throw std::runtime_error(call.label() + " expects " + std::string(function.expects));
  }
}

AtomVector evaluate_reference(std::string_view text, EvalContext& context) {
  return load(parse_atom_vec_ref(unquote_argument(text, context.texts)), context);
}

}  // namespace

AtomVector evaluate_vector_expression(std::string_view text, EvalContext& context) {
  return evaluate_vector_expression(parse_expression(text), context);
}

AtomVector evaluate_vector_expression(const Expression& expression, EvalContext& context) {
  if (expression.function.empty()) {
    return evaluate_reference(expression.text, context);
  }
  const Function& function = find_function(expression.function);
  const Call call{expression, context};
  require_argument_count(function, call);
  return function.evaluate(call);
}

}  // namespace vqvec
