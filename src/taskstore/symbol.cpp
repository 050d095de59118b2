#include "taskstore/symbol.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <unordered_map>

namespace vqvec {
namespace {

// Long texts and their places. Each text stands here once, so equal places are equal texts.
class Table {
 public:
  std::uint32_t place_of(std::string_view text) {
    if (const auto known = places_.find(text); known != places_.end()) {
      return known->second;
    }
    const auto place = static_cast<std::uint32_t>(texts_.size());
    places_.emplace(texts_.emplace_back(text), place);
    return place;
  }

  std::string_view text_at(std::uint32_t place) const { return texts_[place]; }

 private:
  std::deque<std::string> texts_;  // never moves its elements
  std::unordered_map<std::string_view, std::uint32_t> places_;
};

Table& table() {
  static Table texts;
  return texts;
}

}  // namespace

Symbol::Symbol(std::string_view text) {
  if (text.size() <= longest_inside) {
    std::copy(text.begin(), text.end(), bytes_.begin());
    size_ = static_cast<char>(text.size());
    return;
  }
  const std::uint32_t place = table().place_of(text);
  std::memcpy(bytes_.data(), &place, sizeof place);
  size_ = is_in_table;
}

std::string_view Symbol::text() const {
  if (size_ != is_in_table) {
    return {bytes_.data(), static_cast<std::size_t>(size_)};
  }
  std::uint32_t place = 0;
  std::memcpy(&place, bytes_.data(), sizeof place);
  return table().text_at(place);
}

}  // namespace vqvec
