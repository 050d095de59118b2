// The arithmetic of per-atom vectors, independent of texts and tasks.
#ifndef VQVEC_EVAL_VECTOR_FUNCTIONS_HPP
#define VQVEC_EVAL_VECTOR_FUNCTIONS_HPP

#include <string_view>

#include "taskstore/atom_vector.hpp"

namespace vqvec {

// Fails with label + " requires equal vector lengths: " + accumulated + " vs " + next.
void require_equal_lengths(const AtomVector& accumulated, const AtomVector& next,
                           std::string_view label);

// Element by element, in place; the lengths must be equal.
void add_to(AtomVector& sum, const AtomVector& next);
void add_weighted_to(AtomVector& sum, const AtomVector& next, double weight);
void subtract_from(AtomVector& first, const AtomVector& second);

void multiply_by(AtomVector& vector, double factor);
void divide_by(AtomVector& vector,
               double divisor);  // not a product with the reciprocal, whose digits differ
void flip_signs(AtomVector& vector);
void clear_signs(AtomVector& vector);

// Limits each element to [min, max]; a NaN becomes max. Fails with "clip() min cannot be greater
// than max".
void clip(AtomVector& vector, double min, double max);

// From the first element to the last, in one double.
double sum_of(const AtomVector& vector);

// Shifts all elements by the same amount so that they add up to the target. Fails with "renorm()
// cannot operate on an empty vector".
AtomVector renormalize_to_sum(AtomVector vector, double target);

}  // namespace vqvec

#endif  // VQVEC_EVAL_VECTOR_FUNCTIONS_HPP
