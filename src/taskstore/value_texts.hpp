// The texts of the values of one property.
#ifndef VQVEC_TASKSTORE_VALUE_TEXTS_HPP
#define VQVEC_TASKSTORE_VALUE_TEXTS_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "taskstore/text_arena.hpp"

namespace vqvec {

// A sequence of byte strings. Nearly all of them are ordinary numbers; such a text is kept as an
// integer of eight bytes from which it can be given back. With 10,000 tasks, this takes a third off
// the memory of a run.
class ValueTexts {
 public:
  std::size_t size() const { return values_.size(); }

  // The arena must be the same in every call, and outlive this.
  void push_back(std::string_view text, TextArena& arena);

  // A text that is replaced once is likely to be replaced again, as in a file with a long history.
  // From now on it is kept as it is, which is faster.
  void replace(std::size_t index, std::string_view text, TextArena& arena) {
    std::uint64_t& value = values_[index];
    if (!is_other_text(value)) {
      value = add_other_text();
    }
    other_texts_[place_of(value)].assign(text, arena);
  }

  // The text as it was assigned.
  std::string text(std::size_t index) const;

  // What read_finite_number() gives for the text.
  std::optional<double> number(std::size_t index) const;

 private:
  static constexpr std::uint64_t other_text_mark = std::uint64_t{1} << 63U;
  static bool is_other_text(std::uint64_t value) { return value >= other_text_mark; }
  static std::size_t place_of(std::uint64_t value) {
    return static_cast<std::size_t>(value - other_text_mark);
  }
  std::uint64_t add_other_text();

  std::vector<std::uint64_t> values_;  // each a packed number, or the place of another text
  std::vector<ValueText> other_texts_;
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_VALUE_TEXTS_HPP
