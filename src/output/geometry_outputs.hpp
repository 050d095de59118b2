// Files that combine the result with a task's geometry: extended XYZ and charge files.
#ifndef VQVEC_OUTPUT_GEOMETRY_OUTPUTS_HPP
#define VQVEC_OUTPUT_GEOMETRY_OUTPUTS_HPP

#include "dsl/statement.hpp"
#include "taskstore/atom_vector.hpp"

namespace vqvec {

// Writes the files that the statement names: first the extended-XYZ file, then the charge file. The
// geometry is that of the task named by --geom, otherwise of the first task used, otherwise of the
// working directory. Fails if there is no geometry, if its size differs from the result's, and as
// write_text_file does. The statement must outlive the context.
void write_geometry_outputs(const DslStatement& statement, const AtomVector& result,
                            EvalContext& context);

}  // namespace vqvec

#endif  // VQVEC_OUTPUT_GEOMETRY_OUTPUTS_HPP
