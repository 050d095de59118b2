#include "taskstore/eval_context.hpp"

namespace vqvec {

void EvalContext::add_used_task(std::string_view task_text) {
  if (is_used_.contains(task_text)) {
    return;
  }
  used_tasks_.push_back(task_text);  // first: should memory run out now, no task may be missing
  is_used_.insert(task_text);
}

}  // namespace vqvec
