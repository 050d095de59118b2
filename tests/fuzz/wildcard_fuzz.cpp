// Patterns and names, one on each side of the first line feed, against plain backtracking.
#include <algorithm>
#include <string>

#include "eval/task_glob.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/fuzz/require.hpp"
#include "tests/reference/lexing.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vqvec::text_of(data, size);
  const auto split = std::min(text.find('\n'), text.size());
  const std::string pattern = text.substr(0, split);
  const std::string name = text.substr(std::min(split + 1, text.size()));
  const bool matches = vqvec::wildcard_match(pattern, name);
  long steps = 20'000;
  const bool expected = vqvec::reference::wildcard_match(pattern, 0, name, 0, steps);
  vqvec::require(steps < 0 || matches == expected, "wildcard_match");
  vqvec::require(vqvec::has_wildcard(text) ==
                     (std::ranges::count(text, '*') + std::ranges::count(text, '?') > 0),
                 "has_wildcard");
  return 0;
}
