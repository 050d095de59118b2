#include "taskstore/eval_context.hpp"

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "dsl/lexical.hpp"

namespace vqvec {
namespace {

PositionsOf written_positions(const DslStatement& statement) {
  if (!statement.writes_geometry()) {
    return PositionsOf::no_task;
  }
  return statement.geom_path.empty() ? PositionsOf::first_used_task : PositionsOf::all_tasks;
}

}  // namespace

// Each property is looked up once: there may be thousands of tasks, and a statement of 100 KB.
Needs needs_of(const DslStatement& statement) {
  return {written_positions(statement),
          [&statement,
           known = std::map<std::string, bool, std::less<>>()](std::string_view property) mutable {
            const auto found = known.find(property);
            return found != known.end()
                       ? found->second
                       : known.emplace(property, may_name(statement, property)).first->second;
          }};
}

void EvalContext::add_used_task(std::string_view task_text) {
  used_tasks_.push_back(task_text);  // first, so that no task is missing if memory runs out now
  if (!is_used_.insert(task_text).second) {
    used_tasks_.pop_back();
  }
}

void EvalContext::drop_values() {
  for (auto& [name, task] : tasks_) {
    task.kv = KvMap();
  }
}

// Once a task has been used, no task that is still to be read is the first one.
Positions EvalContext::positions_of_next_task() const {
  const bool can_be_written =
      needs_.positions == PositionsOf::all_tasks ||
      (needs_.positions == PositionsOf::first_used_task && used_tasks_.empty());
  return can_be_written ? Positions::kept : Positions::checked;
}

const TaskDir& resolve_task(EvalContext& context, std::string_view text) {
  const std::string_view name = trim(text);
  const TaskDir* const latest = context.latest_task_;
  if (latest != nullptr && latest->name == name) {  // its weight was asked for, now its vector is
    return *latest;
  }
  const auto place = context.tasks_.lower_bound(name);
  if (place != context.tasks_.end() && place->first == name) {
    return place->second;
  }
  TaskDir task = read_task_dir(name, context.positions_of_next_task(), context.needs_.property);
  if (latest != nullptr) {
    task.atoms.share_symbols(latest->atoms);
  }
  context.latest_task_ = &context.tasks_.emplace_hint(place, name, std::move(task))->second;
  return *context.latest_task_;
}

}  // namespace vqvec
