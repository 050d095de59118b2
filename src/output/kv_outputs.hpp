// The texts of the key-value files that a run writes: the values and the snapshot.
#ifndef VQVEC_OUTPUT_KV_OUTPUTS_HPP
#define VQVEC_OUTPUT_KV_OUTPUTS_HPP

#include <cstddef>
#include <string>
#include <string_view>

#include "taskstore/atom_vector.hpp"

namespace vqvec {

// One line `atoms.N.<target>=<value>` per atom, N from 1; empty for an empty vector.
std::string values_text(std::string_view target, const AtomVector& result);

// States that the run finished, its number of values, and the task it belongs to according to the
// environment (VORQUIL_TASKNAME, VORQUIL_INPUTNAME, VORQUIL_STRUCID, byte for byte).
std::string snapshot_text(std::size_t atom_count);

}  // namespace vqvec

#endif  // VQVEC_OUTPUT_KV_OUTPUTS_HPP
