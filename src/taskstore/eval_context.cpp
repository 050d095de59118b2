#include "taskstore/eval_context.hpp"

#include "dsl/lexical.hpp"

namespace vqvec {

void EvalContext::add_used_task(std::string_view task_text) {
  if (is_used_.contains(task_text)) {
    return;
  }
  used_tasks_.push_back(task_text);  // first, so that no task is missing if memory runs out now
  is_used_.insert(task_text);
}

void EvalContext::drop_values() {
  for (auto& [name, task] : tasks_) {
    task.kv = KvMap();
  }
}

const TaskDir& resolve_task(EvalContext& context, std::string_view text) {
  const std::string_view name = trim(text);
  const auto known = context.tasks_.find(name);
  return known != context.tasks_.end()
             ? known->second
             : context.tasks_.emplace(name, read_task_dir(name, context.positions_)).first->second;
}

}  // namespace vqvec
