// The check that all tasks whose vectors went into a result describe the same atoms.
#ifndef VQVEC_OUTPUT_SAME_ATOMS_CHECK_HPP
#define VQVEC_OUTPUT_SAME_ATOMS_CHECK_HPP

#include <cstddef>

#include "taskstore/eval_context.hpp"

namespace vqvec {

// Compares each used task's atom count with the result's length, and each later task with the first
// one: atom counts, and the symbols where both have a geometry. An atom count of 0 means "not
// known" and fails nothing. The first difference is the message.
void check_same_atoms(EvalContext& context, std::size_t result_length);

}  // namespace vqvec

#endif  // VQVEC_OUTPUT_SAME_ATOMS_CHECK_HPP
