#include "taskstore/atom_column.hpp"

#include <algorithm>

namespace vqvec {

void AtomColumn::assign(std::uint64_t atom, std::string_view value, TextArena& arena) {
  if (atom - 1 < leading_.size()) {
    leading_[atom - 1].assign(value, arena);
  } else if (atom - 1 == leading_.size()) {
    leading_.emplace_back().assign(value, arena);  // a stray of this atom is older and now hidden
  } else {
    stray_.emplace_back(atom, ValueText()).second.assign(value, arena);
    is_settled_ = false;
  }
}

std::vector<AtomColumn::Entry> AtomColumn::entries() const {
  settle();
  std::vector<Entry> all;
  for (const ValueText& value : leading_) {
    all.emplace_back(all.size() + 1, value.text());
  }
  for (const auto& [atom, value] : stray_) {
    all.emplace_back(atom, value.text());
  }
  return all;
}

// Afterwards the strays are sorted, unique, and all behind a gap.
void AtomColumn::settle() const {
  if (is_settled_ && (stray_.empty() || stray_.front().first > leading_.size() + 1)) {
    return;
  }
  const auto atom_of = [](const Stray& stray) { return stray.first; };
  std::ranges::stable_sort(stray_, {}, atom_of);
  std::vector<Stray> still_stray;
  for (std::size_t i = 0; i < stray_.size(); ++i) {
    const auto& [atom, value] = stray_[i];
    const bool is_replaced = i + 1 < stray_.size() && stray_[i + 1].first == atom;
    if (is_replaced || atom <= leading_.size()) {
      continue;
    }
    if (atom == leading_.size() + 1) {
      leading_.push_back(value);
    } else {
      still_stray.push_back(stray_[i]);
    }
  }
  stray_ = std::move(still_stray);
  is_settled_ = true;
}

std::optional<std::string_view> AtomColumn::find_stray(std::uint64_t atom) const {
  const auto found = std::ranges::lower_bound(stray_, atom, {}, &Stray::first);
  if (found == stray_.end() || found->first != atom) {
    return std::nullopt;
  }
  return found->second.text();
}

}  // namespace vqvec
