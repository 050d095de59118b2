// Per-atom vectors, and reading vectors, scalars and the atom count of one task.
#ifndef VQVEC_TASKSTORE_ATOM_VECTOR_HPP
#define VQVEC_TASKSTORE_ATOM_VECTOR_HPP

#include <cstdint>
#include <string_view>
#include <vector>

#include "taskstore/eval_context.hpp"
#include "taskstore/task_dir.hpp"

namespace vqvec {

// One number per atom; element k holds atom k + 1.
using AtomVector = std::vector<double>;

// The values of atoms.1.<property>, atoms.2.<property>, ... up to the first missing key. Adds the
// task text to the list of used tasks. Fails if there is no first atom, if a value is not a finite
// number, or if the task's atom count is known and differs.
AtomVector load_atom_vector(EvalContext& context, std::string_view task_text,
                            std::string_view property);

// A scalar of a task. The label names the caller in messages, for example "wmean()". The key is
// looked up as given. The task is not added to the list of used tasks.
double load_task_scalar(EvalContext& context, std::string_view task_text, std::string_view key,
                        std::string_view label);

// The first of the keys `atom_count` and `geometry.atom_count` whose value is a number other than
// 0; otherwise the size of the geometry. 0: unknown.
std::uint64_t read_atom_count(const TaskDir& task);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_ATOM_VECTOR_HPP
