// The state that the parts of one run share: the tasks read so far, and the tasks whose vectors
// were used.
#ifndef VQVEC_TASKSTORE_EVAL_CONTEXT_HPP
#define VQVEC_TASKSTORE_EVAL_CONTEXT_HPP

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dsl/text_pool.hpp"
#include "taskstore/task_dir.hpp"

namespace vqvec {

// Task texts are kept as views: they come from the statement, which outlives the context, or from
// `texts`.
class EvalContext {
 public:
  explicit EvalContext(Positions positions = Positions::kept) : positions_(positions) {}

  // The tasks from which vectors were loaded, in order of first use, without duplicates.
  const std::vector<std::string_view>& used_tasks() const { return used_tasks_; }
  void add_used_task(std::string_view task_text);

  // Frees the key-value data of all tasks, which nobody may read from now on. Their geometries
  // stay.
  void drop_values();

  TextPool texts;

 private:
  friend const TaskDir& resolve_task(EvalContext& context, std::string_view text);

  Positions positions_;                        // in the geometries of all tasks
  std::unordered_map<std::string_view, TaskDir> tasks_;  // by trimmed task text
  std::vector<std::string_view> used_tasks_;
  std::unordered_set<std::string_view> is_used_;
};

// The task of the trimmed text, read on first use and never again. The reference is valid as long
// as the context. Fails only as read_task_dir does, and keeps nothing then.
const TaskDir& resolve_task(EvalContext& context, std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_EVAL_CONTEXT_HPP
