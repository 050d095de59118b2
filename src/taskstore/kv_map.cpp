#include "taskstore/kv_map.hpp"

#include <charconv>
#include <limits>
#include <system_error>

namespace vqvec {
namespace {

constexpr std::string_view prefix = "atoms.";

}  // namespace

std::optional<AtomKey> parse_atom_key(std::string_view key) {
  if (!key.starts_with(prefix)) {
    return std::nullopt;
  }
  const char* const digits = key.data() + prefix.size();
  const char* const end = key.data() + key.size();
  if (digits != end && *digits == '0') {
    return std::nullopt;
  }
  std::uint64_t atom = 0;
  const auto [dot, error] = std::from_chars(digits, end, atom);
  if (error != std::errc() || dot == end || *dot != '.') {
    return std::nullopt;
  }
  return AtomKey{atom, key.substr(static_cast<std::size_t>(dot - key.data()) + 1)};
}

// Moves the values that no longer lie beyond a gap.
void AtomColumn::close_gap(TextArena& arena) {
  auto next = beyond_gap_.begin();
  while (next != beyond_gap_.end() && next->first == leading_.size() + 1) {
    leading_.push_back(next->second.text(), arena);
    next = beyond_gap_.erase(next);
  }
}

std::optional<std::string> AtomColumn::find(std::uint64_t atom) const {
  if (atom - 1 < leading_.size()) {
    return leading_.text(static_cast<std::size_t>(atom) - 1);
  }
  const auto found = beyond_gap_.find(atom);
  return found == beyond_gap_.end() ? std::nullopt
                                    : std::optional(std::string(found->second.text()));
}

void ExpectedAtomKey::expect_after(const AtomKey& key) {
  atom_ = key.atom;
  text_ = prefix;
  text_ += std::to_string(atom_);
  last_digit_ = text_.size() - 1;
  text_ += '.';
  text_ += key.property;
  advance();
}

void ExpectedAtomKey::advance() {
  if (atom_ == std::numeric_limits<std::uint64_t>::max()) {
    return;  // there is no next atom: the same key again
  }
  ++atom_;
  std::size_t digit = last_digit_;
  for (; text_[digit] == '9'; --digit) {
    text_[digit] = '0';
  }
  if (digit < prefix.size()) {
    text_.insert(prefix.size(), 1, '1');
    ++last_digit_;
  } else {
    ++text_[digit];
  }
}

bool KvMap::assign_expected(std::string_view line) {
  if (latest_ >= columns_.size()) {
    return false;
  }
  const std::size_t guess = columns_[latest_].next;
  Column& column = columns_[guess];
  const std::string& key = column.expected_key.text();
  if (!line.starts_with(key) || line.size() == key.size() || line[key.size()] != '=') {
    return false;
  }
  assign_value(column, column.expected_key.atom(), line.substr(key.size() + 1));
  column.expected_key.advance();
  latest_ = guess;
  return true;
}

void KvMap::assign(std::string_view key, std::string_view value) {
  if (const std::optional<AtomKey> atom_key = parse_atom_key(key)) {
    assign_atom(*atom_key, value);
  } else {
    assign_scalar(key, value);
  }
}

void KvMap::assign_atom(const AtomKey& key, std::string_view value) {
  const std::size_t index = find_or_add_column(key.property);
  if (latest_ < columns_.size()) {
    columns_[latest_].next = index;
  }
  latest_ = index;
  assign_value(columns_[index], key.atom, value);
  columns_[index].expected_key.expect_after(key);
}

inline void KvMap::assign_value(Column& column, std::uint64_t atom, std::string_view value) {
  if (column.is_kept) {
    column.values.assign(atom, value, texts_);
  }
}

std::size_t KvMap::find_or_add_column(std::string_view property) {
  auto found = column_index_.find(property);
  if (found == column_index_.end()) {
    found = column_index_.emplace(property, columns_.size()).first;
    columns_.emplace_back().is_kept = keeps_ == nullptr || (*keeps_)(property);
  }
  return found->second;
}

void KvMap::assign_scalar(std::string_view key, std::string_view value) {
  const auto found = scalars_.find(key);
  if (found != scalars_.end()) {
    found->second = value;
  } else {
    scalars_.emplace(key, value);
  }
}

std::optional<std::string> KvMap::find(std::string_view key) const {
  if (const std::optional<AtomKey> atom_key = parse_atom_key(key)) {
    const AtomColumn* const column = find_column(atom_key->property);
    return column == nullptr ? std::nullopt : column->find(atom_key->atom);
  }
  const auto found = scalars_.find(key);
  return found == scalars_.end() ? std::nullopt : std::optional(found->second);
}

const AtomColumn* KvMap::find_column(std::string_view property) const {
  const auto found = column_index_.find(property);
  return found == column_index_.end() ? nullptr : &columns_[found->second].values;
}

}  // namespace vqvec
