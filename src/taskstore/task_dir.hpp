// Task texts and the directories they stand for.
#ifndef VQVEC_TASKSTORE_TASK_DIR_HPP
#define VQVEC_TASKSTORE_TASK_DIR_HPP

#include <string>
#include <string_view>
#include <vector>

#include "taskstore/geometry_file.hpp"
#include "taskstore/kv_map.hpp"

namespace vqvec {

class EvalContext;

struct TaskDir {
  std::string_view name;        // the task text, trimmed
  std::string base;             // what the name is joined to: the working directory's parent, the
                                // working directory, or nothing
  KvMap kv;                     // the four key-value files, merged
  std::vector<GeomAtom> atoms;  // in file order; empty: no usable geometry file
  bool loaded = false;          // everything above is complete

  // The directory as a path; it need not exist. Joined on demand, since a name can be as long as
  // the statement and stand in thousands of tasks.
  std::string dir() const;
};

// The task of the trimmed text, read on first use and never again. The reference stays valid as
// long as the context. A text that names nothing gives a task without data: only who needs the data
// can say what is missing. Fails only with what the file system says while a directory is listed.
const TaskDir& resolve_task(EvalContext& context, std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_TASK_DIR_HPP
