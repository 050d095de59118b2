#include "eval/scalar_expression.hpp"

#include <stdexcept>
#include <string>

#include "dsl/lexical.hpp"
#include "dsl/number.hpp"
#include "eval/vector_expression.hpp"
#include "eval/vector_functions.hpp"

namespace vqvec {
namespace {

// `@key` of the working directory's own task, or `@task.key`; the key begins after the first dot.
double read_task_key(std::string_view expression, EvalContext& context) {
  const std::string_view rest = expression.substr(1);
  const auto dot = rest.find('.');
  const bool names_task = dot != std::string_view::npos;
  const std::string_view task_text = names_task ? rest.substr(0, dot) : ".";
  const std::string_view key = names_task ? rest.substr(dot + 1) : rest;
  const auto value = resolve_task(context, task_text).kv.find(key);
  if (!value) {
    throw std::runtime_error("task '" + std::string(task_text) + "' does not contain scalar '" +
                             std::string(key) + "'");
  }
  return parse_finite_number(*value, expression);
}

double sum_of_argument(const Expression& call, EvalContext& context) {
  if (call.arguments.size() != 1) {
    throw std::runtime_error("sum() expects one vector argument");
  }
  return sum_of(evaluate_vector_expression(call.arguments.front(), context));
}

}  // namespace

double evaluate_scalar_expression(std::string_view text, EvalContext& context) {
  return evaluate_scalar_expression(parse_expression(text), context);
}

double evaluate_scalar_expression(const Expression& expression, EvalContext& context) {
  const std::string_view text = trim(expression.text);
  if (text.empty()) {
    throw std::runtime_error("empty scalar expression");
  }
  if (is_number_literal(text)) {
    return parse_finite_number(text, "scalar literal");
  }
  if (text.starts_with('@')) {
    return read_task_key(text, context);
  }
  if (expression.function == "sum") {
    return sum_of_argument(expression, context);
  }
  throw std::runtime_error("unsupported scalar expression: " + std::string(expression.text));
}

}  // namespace vqvec
