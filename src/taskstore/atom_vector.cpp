#include "taskstore/atom_vector.hpp"

#include <optional>
#include <stdexcept>
#include <string>

#include "dsl/lexical.hpp"
#include "dsl/number.hpp"

namespace vqvec {
namespace {

AtomVector read_values(const ValueTexts& values, std::string_view task_text,
                       std::string_view property) {
  AtomVector vector(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::optional<double> value = values.number(i);
    if (!value) {
      throw_not_finite(values.text(i), std::string(task_text) + ":" + std::string(property) +
                                           " atom " + std::to_string(i + 1));
    }
    vector[i] = *value;
  }
  return vector;
}

}  // namespace

AtomVector load_atom_vector(EvalContext& context, std::string_view task_text,
                            std::string_view property) {
  const TaskDir& task = resolve_task(context, task_text);
  context.add_used_task(task_text);
  const AtomColumn* const column = task.kv.find_column(property);
  AtomVector vector =
      column == nullptr ? AtomVector() : read_values(column->leading(), task_text, property);
  if (vector.empty()) {
    throw std::runtime_error("task '" + std::string(task_text) +
                             "' does not contain atom vector '" + std::string(property) + "'");
  }
  const std::uint64_t count = read_atom_count(task);
  if (count != 0 && count != vector.size()) {
    throw std::runtime_error("task '" + std::string(task_text) + "' vector '" +
                             std::string(property) + "' length " + std::to_string(vector.size()) +
                             " does not match atom_count " + std::to_string(count));
  }
  return vector;
}

double load_task_scalar(EvalContext& context, std::string_view task_text, std::string_view key,
                        std::string_view label) {
  if (trim(key).empty()) {
    throw std::runtime_error(std::string(label) + " scalar key cannot be empty");
  }
  const TaskDir& task = resolve_task(context, task_text);
  const auto value = task.kv.find(key);
  if (!value) {
    throw std::runtime_error("task '" + std::string(task_text) + "' does not contain scalar '" +
                             std::string(key) + "' for " + std::string(label));
  }
  return parse_finite_number(
      *value, std::string(label) + " " + std::string(task_text) + "." + std::string(key));
}

std::uint64_t read_atom_count(const TaskDir& task) {
  for (const std::string_view key : {"atom_count", "geometry.atom_count"}) {
    const auto value = task.kv.find(key);
    const std::uint64_t count = value ? read_count(trim(*value)).value_or(0) : 0;
    if (count != 0) {
      return count;
    }
  }
  return task.atoms.size();
}

}  // namespace vqvec
