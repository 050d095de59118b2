// The data of a task: unique keys, each with a value that stays text until a consumer parses it.
// Behaves like an ordered map; per-atom keys, of which there may be millions, are stored as one
// column per property.
#ifndef VQVEC_TASKSTORE_KV_MAP_HPP
#define VQVEC_TASKSTORE_KV_MAP_HPP

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "taskstore/text_arena.hpp"
#include "taskstore/value_texts.hpp"

namespace vqvec {

// A per-atom key, `atoms.N.<property>`. N is any 64-bit number from 1, without leading zeros; the
// property may be empty.
struct AtomKey {
  std::uint64_t atom;
  std::string_view property;
};

// Nothing for a key of any other form.
std::optional<AtomKey> parse_atom_key(std::string_view key);

// True for a property whose values are kept. A map without such a rule keeps all.
using PropertyFilter = std::function<bool(std::string_view property)>;

// The values of one property, by atom. Any 64-bit number from 1 is accepted, in any order; files
// usually list the atoms as 1, 2, 3, ...
class AtomColumn {
 public:
  // A later value of the same atom replaces the earlier one. The text is stored in the arena, which
  // must be the same in every call, and outlive the column.
  void assign(std::uint64_t atom, std::string_view value, TextArena& arena) {
    const std::uint64_t index = atom - 1;
    if (index < leading_.size()) {
      leading_.replace(static_cast<std::size_t>(index), value, arena);
    } else if (index > leading_.size()) {
      beyond_gap_[atom].assign(value, arena);
    } else {
      leading_.push_back(value, arena);
      if (!beyond_gap_.empty()) {
        close_gap(arena);
      }
    }
  }

  // Nothing when the atom has no value.
  std::optional<std::string> find(std::uint64_t atom) const;

  // The values before the first gap: those of atoms 1, 2, 3, ...
  const ValueTexts& leading() const { return leading_; }

 private:
  friend class KvPairs;

  void close_gap(TextArena& arena);

  ValueTexts leading_;
  std::map<std::uint64_t, ValueText> beyond_gap_;
};

// A guess at the key of the next value of a column, since files list atoms in order. Comparing the
// front of a line with it is cheaper than splitting the line and parsing the key: without it, a run
// on files with three properties per atom takes 1.7 times as many instructions, and one on a long
// history 2.5 times.
class ExpectedAtomKey {
 public:
  // Expects the key of the atom after `key`.
  void expect_after(const AtomKey& key);

  // Expects the key of the atom after the expected one.
  void advance();

  // Empty until something is expected; otherwise always the key of atom().
  const std::string& text() const { return text_; }
  std::uint64_t atom() const { return atom_; }

 private:
  std::string text_;
  std::size_t last_digit_ = 0;  // of the atom, in the text
  std::uint64_t atom_ = 0;
};

class KvMap {
 public:
  KvMap() = default;

  // Keeps no values of other properties, as if their keys were not assigned. The filter must
  // outlive the map.
  explicit KvMap(const PropertyFilter& keeps) : keeps_(keeps ? &keeps : nullptr) {}

  // A later value of the same key replaces the earlier one.
  void assign(std::string_view key, std::string_view value);

  // Does the same for a line `key=value` if its key is the one that is likely to come next, without
  // looking for the '='. Otherwise does nothing, and returns false.
  bool assign_expected(std::string_view line);

  // Nothing when the key is not there.
  std::optional<std::string> find(std::string_view key) const;

  // The column of the keys `atoms.N.<property>`; null when there is no such key.
  const AtomColumn* find_column(std::string_view property) const;

 private:
  friend class KvPairs;  // lists all pairs in the order of their keys, for the tests

  struct Column {
    AtomColumn values;  // none, unless they are kept
    ExpectedAtomKey expected_key;
    std::size_t next = 0;  // the column that was assigned to after this one the last time
    bool is_kept = true;
  };

  void assign_atom(const AtomKey& key, std::string_view value);
  void assign_value(Column& column, std::uint64_t atom, std::string_view value);
  void assign_scalar(std::string_view key, std::string_view value);
  std::size_t find_or_add_column(std::string_view property);

  const PropertyFilter* keeps_ = nullptr;
  TextArena texts_;
  std::map<std::string, std::string, std::less<>> scalars_;       // keys of any other form
  std::vector<Column> columns_;                                   // in order of appearance
  std::map<std::string, std::size_t, std::less<>> column_index_;  // by property
  std::size_t latest_ = 0;                                        // the column last assigned to
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_KV_MAP_HPP
