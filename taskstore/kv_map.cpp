#include "taskstore/kv_map.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace vqvec {
namespace {

constexpr std::string_view atoms_prefix = "atoms.";

struct AtomKey {
  std::uint64_t atom;
  std::string_view property;
};

// The two parts of a key `atoms.N.<property>` with N a decimal number from 1, without leading
// zeros; nothing for any other key, which is then a key like all others.
std::optional<AtomKey> parse_atom_key(std::string_view key) {
  if (!key.starts_with(atoms_prefix)) {
    return std::nullopt;
  }
  const char* const digits = key.data() + atoms_prefix.size();
  const char* const end = key.data() + key.size();
  if (digits == end || *digits < '1' || *digits > '9') {
    return std::nullopt;
  }
  std::uint64_t atom = 0;
  const auto [dot, error] = std::from_chars(digits, end, atom);
  if (error != std::errc() || dot == end || *dot != '.') {
    return std::nullopt;
  }
  return AtomKey{atom, {dot + 1, end}};
}

}  // namespace

void KvMap::assign(std::string_view key, std::string_view value) {
  if (const auto atom_key = parse_atom_key(key)) {
    column_for_assignment(atom_key->property).assign(atom_key->atom, value, texts_);
    return;
  }
  const auto found = scalars_.find(key);
  if (found != scalars_.end()) {
    found->second = texts_.store_over(found->second, value);
  } else {
    scalars_.emplace(key, texts_.store(value));
  }
}

std::optional<std::string_view> KvMap::find(std::string_view key) const {
  if (const auto atom_key = parse_atom_key(key)) {
    const AtomColumn* const column = find_column(atom_key->property);
    return column == nullptr ? std::nullopt : column->find(atom_key->atom);
  }
  const auto found = scalars_.find(key);
  return found == scalars_.end() ? std::nullopt : std::optional(found->second);
}

const AtomColumn* KvMap::find_column(std::string_view property) const {
  const auto found = columns_.find(property);
  return found == columns_.end() ? nullptr : &found->second.values;
}

std::vector<std::pair<std::string, std::string>> KvMap::pairs() const {
  std::vector<std::pair<std::string, std::string>> all(scalars_.begin(), scalars_.end());
  for (const auto& [property, column] : columns_) {
    for (const auto& [atom, value] : column.values.entries()) {
      const std::string key = std::string(atoms_prefix) + std::to_string(atom) + "." + property;
      all.emplace_back(key, value);
    }
  }
  std::sort(all.begin(), all.end());
  return all;
}

AtomColumn& KvMap::column_for_assignment(std::string_view property) {
  NamedColumn* column = latest_ == nullptr ? nullptr : latest_->second.next;
  if (column == nullptr || column->first != property) {
    auto found = columns_.find(property);
    if (found == columns_.end()) {
      found = columns_.emplace(property, Column()).first;
    }
    column = &*found;
    if (latest_ != nullptr) {
      latest_->second.next = column;
    }
  }
  latest_ = column;
  return column->second.values;
}

}  // namespace vqvec
