#include "taskstore/kv_file.hpp"

#include <string_view>

#include "dsl/lexical.hpp"
#include "taskstore/line_reader.hpp"

namespace vqvec {
namespace {

void store_line(std::string_view raw, KvMap& pairs) {
  const std::string_view line = trim(raw);
  if (pairs.assign_expected(line)) {
    return;
  }
  const auto equals = line.find('=');
  if (equals == std::string_view::npos || line.starts_with('#')) {
    return;
  }
  const std::string_view key = trim(line.substr(0, equals));
  if (!key.empty()) {
    pairs.assign(key, line.substr(equals + 1));  // not trimmed again: spaces are data
  }
}

}  // namespace

void merge_kv_file(KvMap& into, const std::string& path) {
  LineReader reader(path);
  std::string_view line;
  while (reader.next_line(line)) {
    store_line(line, into);
  }
}

}  // namespace vqvec
