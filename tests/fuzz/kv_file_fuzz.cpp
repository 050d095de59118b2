// Any bytes as one or two key-value files, merged, against std::map and getline. The two are
// separated by the byte FB.
#include <algorithm>
#include <string>

#include "taskstore/kv_file.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/fuzz/require.hpp"
#include "tests/reference/files.hpp"
#include "tests/support/kv_pairs.hpp"
#include "tests/support/scratch_dir.hpp"

namespace vqvec {
namespace {

// Keys that are nearly the same must not be found.
void compare_keys(const KvMap& map, const reference::KvMap& expected) {
  for (const auto& [key, value] : expected) {
    const auto found = map.find(key);
    require(found.has_value(), "a key that is missing");
    require_equal(*found, value, "value of a key");
    for (const std::string& other : {key + "0", key.substr(1), "atoms." + key, "atoms.1." + key}) {
      require(map.find(other).has_value() == (expected.count(other) > 0), "a key beside");
    }
  }
}

// Columns are the same keys once more, up to the first gap.
void compare_columns(const KvMap& map, const reference::KvMap& expected) {
  for (const auto& [key, value] : expected) {
    const auto dot = key.find('.', std::min(key.size(), std::string("atoms.").size()));
    if (dot == std::string::npos) {
      continue;
    }
    const std::string property = key.substr(dot + 1);
    const AtomColumn* const column = map.find_column(property);
    for (std::uint64_t atom = 1;; ++atom) {
      const auto pair = expected.find("atoms." + std::to_string(atom) + "." + property);
      const auto found = column == nullptr ? std::nullopt : column->find(atom);
      require(found.has_value() == (pair != expected.end()), "whether a column has an atom");
      if (!found) {
        break;
      }
      require_equal(*found, pair->second, "value of an atom");
    }
  }
}

void compare_pairs(const KvMap& map, const reference::KvMap& expected) {
  const auto pairs = pairs_of(map);
  require(std::ranges::equal(pairs, expected,
                             [](const auto& a, const auto& b) {
                               return a.first == b.first && a.second == b.second;
                             }),
          "the pairs of a map");
}

}  // namespace
}  // namespace vqvec

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const vqvec::ScratchDir dir;
  const std::string content = vqvec::file_content_of(data, size);
  const auto split = std::min(content.find('\xFB'), content.size());
  const std::string first = content.substr(0, split);
  const std::string second = content.substr(std::min(split + 1, content.size()));

  vqvec::reference::KvMap expected;
  vqvec::reference::merge_kv_text(expected, first);
  vqvec::KvMap map = vqvec::read_kv_file(dir.write("first.kv", first));
  vqvec::compare_columns(map, expected);
  vqvec::compare_keys(map, expected);
  vqvec::reference::merge_kv_text(expected, second);
  vqvec::merge_kv_file(map, dir.write("second.kv", second));
  vqvec::compare_pairs(map, expected);
  vqvec::compare_columns(map, expected);
  vqvec::compare_keys(map, expected);
  return 0;
}
