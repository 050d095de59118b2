// Texts that a run builds itself: quoted arguments without their escapes, names found on disk.
// Everything else that evaluation handles is a view of the statement; the pool lets built texts be
// views as well, so that no level of nesting copies the text below it.
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
