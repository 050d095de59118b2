// Checks that all tasks whose vectors were used describe the same atoms.
#ifndef VQVEC_OUTPUT_SAME_ATOMS_CHECK_HPP
#define VQVEC_OUTPUT_SAME_ATOMS_CHECK_HPP

#include <cstddef>

#include "taskstore/eval_context.hpp"

namespace vqvec {

// Compares the atom count of each used task with the length of the result, and each task after the
// first with the first: atom counts, and symbols where both have a geometry. An atom count of 0
// means "unknown" and is not compared. Fails at the first difference.
void check_same_atoms(EvalContext& context, std::size_t result_length);

}  // namespace vqvec

#endif  // VQVEC_OUTPUT_SAME_ATOMS_CHECK_HPP
