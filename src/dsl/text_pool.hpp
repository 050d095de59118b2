// Owns the texts that a run builds: quoted arguments without their escapes, names found on disk.
// Evaluation handles all texts as views, of the statement or of this pool, so that no level of
// nesting copies the text inside it.
#ifndef VQVEC_DSL_TEXT_POOL_HPP
#define VQVEC_DSL_TEXT_POOL_HPP

#include <deque>
#include <string>
#include <string_view>
#include <utility>

namespace vqvec {

class TextPool {
 public:
  // Keeps the text; the view stays valid as long as the pool.
  std::string_view keep(std::string text) { return texts_.emplace_back(std::move(text)); }

 private:
  std::deque<std::string> texts_;  // never moves its elements
};

}  // namespace vqvec

#endif  // VQVEC_DSL_TEXT_POOL_HPP
