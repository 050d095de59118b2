// The directory of a task and the data in its files.
#ifndef VQVEC_TASKSTORE_TASK_DIR_HPP
#define VQVEC_TASKSTORE_TASK_DIR_HPP

#include <string>
#include <string_view>

#include "taskstore/geometry_file.hpp"
#include "taskstore/kv_map.hpp"

namespace vqvec {

struct TaskDir {
  std::string_view name;  // the task text, trimmed
  std::string base;       // prefix of the name: the working directory's parent, the working
                          // directory, or nothing
  KvMap kv;               // the four key-value files, merged
  Geometry atoms;         // in file order; empty: no usable geometry file

  // The directory as a path; it need not exist. Joined on demand, since a name can be as long as
  // the statement, in thousands of tasks.
  std::string dir() const;
};

// Finds and reads the task of a trimmed task text and keeps a view of the text. A name found
// nowhere gives a task without data: only the consumer of the data can say what is missing. Fails
// only if the file system fails while a directory is being listed.
TaskDir read_task_dir(std::string_view name, Positions positions, const PropertyFilter& keeps);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_TASK_DIR_HPP
