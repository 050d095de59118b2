// The state that the parts of one run share: the tasks read so far, and the tasks whose vectors
// were used.
#ifndef VQVEC_TASKSTORE_EVAL_CONTEXT_HPP
#define VQVEC_TASKSTORE_EVAL_CONTEXT_HPP

#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "dsl/statement.hpp"
#include "dsl/text_pool.hpp"
#include "taskstore/task_dir.hpp"

namespace vqvec {

// Whose positions a run may write.
enum class PositionsOf { all_tasks, first_used_task, no_task };

// What a run can ask of its tasks. What it cannot ask for is read, but not kept.
struct Needs {
  PositionsOf positions = PositionsOf::all_tasks;
  PropertyFilter property = nullptr;  // null: all
};

// The statement must outlive the result.
Needs needs_of(const DslStatement& statement);

// Task texts are kept as views: they come from the statement, which outlives the context, or from
// `texts`.
class EvalContext {
 public:
  explicit EvalContext(Needs needs = {}) : needs_(std::move(needs)) {}
  EvalContext(const EvalContext&) = delete;  // the tasks refer to their context
  EvalContext& operator=(const EvalContext&) = delete;

  // The tasks from which vectors were loaded, in order of first use, without duplicates.
  const std::vector<std::string_view>& used_tasks() const { return used_tasks_; }
  void add_used_task(std::string_view task_text);

  // Frees the key-value data of all tasks, which nobody may read from now on. Their geometries
  // stay.
  void drop_values();

  TextPool texts;

 private:
  friend const TaskDir& resolve_task(EvalContext& context, std::string_view text);

  Positions positions_of_next_task() const;

  const Needs needs_;
  // Ordered, since names can be made that all have the same hash.
  std::map<std::string_view, TaskDir> tasks_;  // by trimmed task text
  std::set<std::string_view> is_used_;
  std::vector<std::string_view> used_tasks_;
  const TaskDir* latest_task_ = nullptr;  // the one read last
};

// The task of the trimmed text, read on first use and never again. The reference is valid as long
// as the context. Fails only as read_task_dir does, and keeps nothing then.
const TaskDir& resolve_task(EvalContext& context, std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_EVAL_CONTEXT_HPP
