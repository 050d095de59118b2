// Lists everything in a KvMap, in which the product itself only looks up keys.
#ifndef VQVEC_TESTS_SUPPORT_KV_PAIRS_HPP
#define VQVEC_TESTS_SUPPORT_KV_PAIRS_HPP

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "taskstore/kv_file.hpp"
#include "taskstore/kv_map.hpp"

namespace vqvec {

inline std::string atom_key_text(std::uint64_t atom, std::string_view property) {
  return "atoms." + std::to_string(atom) + "." + std::string(property);
}

class KvPairs {
 public:
  using Entries = std::vector<std::pair<std::uint64_t, std::string>>;
  using Pairs = std::vector<std::pair<std::string, std::string>>;

  static Entries of(const AtomColumn& column) {
    Entries entries;
    for (std::size_t i = 0; i < column.leading().size(); ++i) {
      entries.emplace_back(i + 1, column.leading().text(i));
    }
    for (const auto& [atom, value] : column.beyond_gap_) {
      entries.emplace_back(atom, value.text());
    }
    return entries;
  }

  static Pairs of(const KvMap& map) {
    Pairs pairs(map.scalars_.begin(), map.scalars_.end());
    for (const auto& [property, index] : map.column_index_) {
      for (const auto& [atom, value] : of(map.columns_[index].values)) {
        pairs.emplace_back(atom_key_text(atom, property), value);
      }
    }
    std::ranges::sort(pairs);
    return pairs;
  }
};

// All pairs in bytewise order of their keys.
inline KvPairs::Pairs pairs_of(const KvMap& map) {
  return KvPairs::of(map);
}

// All atoms that have a value, in their order.
inline KvPairs::Entries entries_of(const AtomColumn& column) {
  return KvPairs::of(column);
}

inline KvMap read_kv_file(const std::string& path) {
  KvMap map;
  merge_kv_file(map, path);
  return map;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_KV_PAIRS_HPP
