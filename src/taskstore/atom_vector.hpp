// Per-atom vectors, and what is read from the data of one task: vectors, scalars, the atom count.
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

// The values of atoms.1.<property>, atoms.2.<property>, ... up to the first missing key, and enters
// the task text into the list of used tasks. Fails when there is no first atom, when a value is not
// a finite number, and when the task's atom count is known and another.
AtomVector load_atom_vector(EvalContext& context, std::string_view task_text,
                            std::string_view property);

// A scalar that a caller of that label (for messages, such as "wmean()") needs from a task. The key
// is looked up as given. The task does not count as used.
double load_task_scalar(EvalContext& context, std::string_view task_text, std::string_view key,
                        std::string_view label);

// From the first of the keys `atom_count` and `geometry.atom_count` that gives a number other than
// 0, or else the size of the geometry. 0: not known.
std::uint64_t read_atom_count(const TaskDir& task);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_ATOM_VECTOR_HPP
