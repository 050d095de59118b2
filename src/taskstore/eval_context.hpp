// What the parts of one run share: the tasks read so far and which of them vectors came from.
#ifndef VQVEC_TASKSTORE_EVAL_CONTEXT_HPP
#define VQVEC_TASKSTORE_EVAL_CONTEXT_HPP

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dsl/text_pool.hpp"
#include "taskstore/task_dir.hpp"

namespace vqvec {

// Task texts are kept as views: they come from the statement, which outlives the context, or are
// kept in `texts`.
class EvalContext {
 public:
  // The tasks from which vectors were loaded, in order of first use, without duplicates.
  const std::vector<std::string_view>& used_tasks() const { return used_tasks_; }
  void add_used_task(std::string_view task_text);

  // The entry of a trimmed task text, made empty on first use. Entries never move.
  TaskDir& task(std::string_view trimmed_text) { return tasks_[trimmed_text]; }

  TextPool texts;

 private:
  std::unordered_map<std::string_view, TaskDir> tasks_;
  std::vector<std::string_view> used_tasks_;
  std::unordered_set<std::string_view> is_used_;
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_EVAL_CONTEXT_HPP
