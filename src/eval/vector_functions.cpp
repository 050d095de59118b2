#include "eval/vector_functions.hpp"

#include <cmath>
#include <numeric>
#include <stdexcept>
#include <string>

namespace vqvec {

void require_equal_lengths(const AtomVector& accumulated, const AtomVector& next,
                           std::string_view label) {
  if (accumulated.size() != next.size()) {
    throw std::runtime_error(std::string(label) + " requires equal vector lengths: " +
                             std::to_string(accumulated.size()) + " vs " +
                             std::to_string(next.size()));
  }
}

void add_to(AtomVector& sum, const AtomVector& next) {
  for (std::size_t i = 0; i < sum.size(); ++i) {
    sum[i] += next[i];
  }
}

void add_weighted_to(AtomVector& sum, const AtomVector& next, double weight) {
  for (std::size_t i = 0; i < sum.size(); ++i) {
    sum[i] = next[i] * weight + sum[i];
  }
}

void subtract_from(AtomVector& first, const AtomVector& second) {
  for (std::size_t i = 0; i < first.size(); ++i) {
    first[i] -= second[i];
  }
}

void multiply_by(AtomVector& vector, double factor) {
  for (double& element : vector) {
    element *= factor;
  }
}

void divide_by(AtomVector& vector, double divisor) {
  for (double& element : vector) {
    element /= divisor;
  }
}

void flip_signs(AtomVector& vector) {
  for (double& element : vector) {
    element = -element;
  }
}

void clear_signs(AtomVector& vector) {
  for (double& element : vector) {
    element = std::fabs(element);
  }
}

void clip(AtomVector& vector, double min, double max) {
  if (min > max) {
    throw std::runtime_error("clip() min cannot be greater than max");
  }
  for (double& element : vector) {
    const double limited = max > element ? element : max;  // in this order, NaN gives max
    element = limited > min ? limited : min;
  }
}

double sum_of(const AtomVector& vector) {
  return std::accumulate(vector.begin(), vector.end(), 0.0);
}

AtomVector renormalize_to_sum(AtomVector vector, double target) {
  if (vector.empty()) {
    throw std::runtime_error("renorm() cannot operate on an empty vector");
  }
  const double delta = (target - sum_of(vector)) / static_cast<double>(vector.size());
  for (double& element : vector) {
    element += delta;
  }
  return vector;
}

}  // namespace vqvec
