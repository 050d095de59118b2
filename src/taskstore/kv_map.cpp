#include "taskstore/kv_map.hpp"

#include <algorithm>

namespace vqvec {

void KvMap::assign(std::string_view key, std::string_view value) {
  Column* const guess = expected_column();
  if (guess != nullptr && key == guess->expected_key.text()) {
    guess->values.assign(guess->expected_key.atom(), value, texts_);
    guess->expected_key.advance();
    latest_ = guess;
  } else if (const auto atom_key = parse_atom_key(key)) {
    Column& column = find_or_add_column(atom_key->property);
    column.values.assign(atom_key->atom, value, texts_);
    column.expected_key.expect_after(*atom_key);
    if (latest_ != nullptr) {
      latest_->next = &column;
    }
    latest_ = &column;
  } else if (const auto found = scalars_.find(key); found != scalars_.end()) {
    found->second = value;
  } else {
    scalars_.emplace(key, value);
  }
}

std::optional<std::string_view> KvMap::find(std::string_view key) const {
  if (const auto atom_key = parse_atom_key(key)) {
    const AtomColumn* const column = find_column(atom_key->property);
    return column == nullptr ? std::nullopt : column->find(atom_key->atom);
  }
  const auto found = scalars_.find(key);
  return found == scalars_.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

const AtomColumn* KvMap::find_column(std::string_view property) const {
  const auto found = columns_.find(property);
  return found == columns_.end() ? nullptr : &found->second.values;
}

std::vector<std::pair<std::string, std::string>> KvMap::pairs() const {
  std::vector<std::pair<std::string, std::string>> all(scalars_.begin(), scalars_.end());
  for (const auto& [property, column] : columns_) {
    for (const auto& [atom, value] : column.values.entries()) {
      all.emplace_back(atom_key_text({atom, property}), value);
    }
  }
  std::sort(all.begin(), all.end());
  return all;
}

KvMap::Column& KvMap::find_or_add_column(std::string_view property) {
  const auto found = columns_.find(property);
  return found != columns_.end() ? found->second
                                 : columns_.emplace(property, Column()).first->second;
}

}  // namespace vqvec
