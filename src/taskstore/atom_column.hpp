// The values of one per-atom property of a task, `atoms.N.<property>`, by atom.
#ifndef VQVEC_TASKSTORE_ATOM_COLUMN_HPP
#define VQVEC_TASKSTORE_ATOM_COLUMN_HPP

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "taskstore/text_arena.hpp"
#include "taskstore/value_text.hpp"

namespace vqvec {

// Atoms count from 1; any number can stand for one, in any order. Files mostly list them as 1, 2,
// 3, ..., so that a value's place in memory follows from its atom.
class AtomColumn {
 public:
  // A later value for the same atom replaces the earlier one. Stores the text in the arena, which
  // must outlive the column.
  void assign(std::uint64_t atom, std::string_view value, TextArena& arena);

  // Nothing when the atom has no value. The view is valid until the next assignment.
  std::optional<std::string_view> find(std::uint64_t atom) const {
    if (!stray_.empty()) {
      settle();
    }
    return atom - 1 < leading_.size() ? leading_[atom - 1].text() : find_stray(atom);
  }

  // How many of the atoms 1, 2, 3, ... have values, as far as their order has told already.
  std::size_t leading_size() const { return leading_.size(); }

  using Entry = std::pair<std::uint64_t, std::string_view>;

  // All atoms that have a value, in their order.
  std::vector<Entry> entries() const;

 private:
  using Stray = std::pair<std::uint64_t, ValueText>;

  void settle() const;
  std::optional<std::string_view> find_stray(std::uint64_t atom) const;

  // Values of atoms 1, 2, 3, ... without a gap, and the assignments that left one when they came,
  // in the order in which they came. The first look-up behind these sorts them and moves those that
  // close a gap.
  mutable std::vector<ValueText> leading_;
  mutable std::vector<Stray> stray_;
  mutable bool is_settled_ = true;
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_ATOM_COLUMN_HPP
