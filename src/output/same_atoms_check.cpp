#include "output/same_atoms_check.hpp"

#include <stdexcept>
#include <string>

#include "taskstore/atom_vector.hpp"

namespace vqvec {
namespace {

[[noreturn]] void fail(const std::string& what) {
  throw std::runtime_error("same_atoms failed: " + what);
}

std::string quoted(std::string_view name) {
  std::string text = "'";
  text += name;
  text += '\'';
  return text;
}

void require_result_length(std::string_view task_text, const TaskDir& task,
                           std::size_t result_length) {
  const std::uint64_t count = read_atom_count(task);
  if (count != 0 && count != result_length) {
    fail("task " + quoted(task_text) + " has atom_count " + std::to_string(count) +
         " but output vector length is " + std::to_string(result_length));
  }
}

void require_equal_counts(const TaskDir& reference, const TaskDir& task) {
  const std::uint64_t expected = read_atom_count(reference);
  const std::uint64_t count = read_atom_count(task);
  if (count != 0 && expected != 0 && expected != count) {  // coverage-exclude: equal by now
    fail(quoted(reference.name) + " atom_count " + std::to_string(expected) +
         " != " + quoted(task.name) + " atom_count " + std::to_string(count));
  }
}

void require_equal_symbols(const TaskDir& reference, const TaskDir& task) {
  if (reference.atoms.empty() || task.atoms.empty() || task.atoms.shares_symbols(reference.atoms)) {
    return;
  }
  if (reference.atoms.size() != task.atoms.size()) {
    fail("geometry size mismatch between " + quoted(reference.name) + " and " + quoted(task.name));
  }
  for (std::size_t i = 0; i < task.atoms.size(); ++i) {
    const std::string_view expected = reference.atoms.symbol(i);
    const std::string_view symbol = task.atoms.symbol(i);
    if (expected != symbol) {
      fail("atom " + std::to_string(i + 1) + " symbol mismatch between " + quoted(reference.name) +
           " (" + std::string(expected) + ") and " + quoted(task.name) + " (" +
           std::string(symbol) + ")");
    }
  }
}

}  // namespace

void check_same_atoms(EvalContext& context, std::size_t result_length) {
  const TaskDir* reference = nullptr;
  for (const std::string_view task_text : context.used_tasks()) {
    const TaskDir& task = resolve_task(context, task_text);
    require_result_length(task_text, task, result_length);
    if (reference == nullptr) {
      reference = &task;
      continue;
    }
    require_equal_counts(*reference, task);
    require_equal_symbols(*reference, task);
  }
}

}  // namespace vqvec
