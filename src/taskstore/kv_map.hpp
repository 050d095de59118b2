// The data of a task: unique keys, each with a value that stays text until a consumer parses it.
// Seen from outside it is an ordered map; inside, per-atom keys (`atoms.N.<property>`), which come
// by the million, are kept as one column per property and never built or compared as texts.
#ifndef VQVEC_TASKSTORE_KV_MAP_HPP
#define VQVEC_TASKSTORE_KV_MAP_HPP

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "taskstore/atom_column.hpp"
#include "taskstore/atom_key.hpp"
#include "taskstore/text_arena.hpp"

namespace vqvec {

class KvMap {
 public:
  // A later value of the same key replaces the earlier one.
  void assign(std::string_view key, std::string_view value);

  // Nothing when the key is not there. The view is valid until the next assignment.
  std::optional<std::string_view> find(std::string_view key) const;

  // The column of the keys `atoms.N.<property>`; null when there is no such key.
  const AtomColumn* find_column(std::string_view property) const;

  // All pairs in bytewise order of their keys.
  std::vector<std::pair<std::string, std::string>> pairs() const;

 private:
  // A column knows which one was assigned to after it the last time: files list the properties of
  // an atom in the same order for every atom.
  struct Column {
    AtomColumn values;
    ExpectedAtomKey expected_key;
    Column* next = nullptr;
  };

  Column* expected_column() const { return latest_ == nullptr ? nullptr : latest_->next; }
  Column& find_or_add_column(std::string_view property);

  TextArena texts_;
  std::map<std::string, std::string, std::less<>> scalars_;  // keys of any other form
  std::map<std::string, Column, std::less<>> columns_;
  Column* latest_ = nullptr;  // that was assigned to
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_KV_MAP_HPP
