#include "taskstore/text_arena.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vqvec {
namespace {

std::string_view copy_into(TextArena& arena, std::string_view text) {
  char* const place = arena.allocate(text.size());
  std::copy(text.begin(), text.end(), place);
  return {place, text.size()};
}

// Texts of all sizes, now and then larger than any block.
std::string random_text(std::mt19937_64& random) {
  const std::size_t largest = random() % 500 == 0 ? 3'000'000 : 200;
  return std::string(random() % largest, static_cast<char>(random() % 256));
}

TEST(TextArena, TakesTextsAroundTheSizesOfItsBlocks) {
  for (const std::size_t size : {1U, 1'023U, 1'024U, 1'025U, 1'048'575U, 1'048'576U, 1'048'577U}) {
    TextArena arena;
    const std::string_view before = copy_into(arena, "before");
    const std::string text(size, 'x');
    const std::string_view copy = copy_into(arena, text);
    const std::string_view behind = copy_into(arena, "behind");
    EXPECT_EQ(before, "before");
    EXPECT_EQ(copy, text);
    EXPECT_EQ(behind, "behind");
  }
}

TEST(TextArena, PutsSmallTextsSideBySide) {
  TextArena arena;
  const char* const first = arena.allocate(100);
  EXPECT_EQ(arena.allocate(900), first + 100);
  EXPECT_EQ(arena.allocate(24), first + 1'000);
}

TEST(TextArena, KeepsEveryTextAsItGrows) {
  std::mt19937_64 random(1);
  TextArena arena;
  std::vector<std::pair<std::string, std::string_view>> stored;
  for (int i = 0; i < 3'000; ++i) {
    std::string text = random_text(random);
    const std::string_view copy = copy_into(arena, text);
    stored.emplace_back(std::move(text), copy);
  }
  for (const auto& [text, copy] : stored) {
    ASSERT_EQ(copy, text);
  }
}

TEST(TextArena, KeepsItsTextsWhenItIsMoved) {
  TextArena arena;
  const std::string_view small = copy_into(arena, "small");
  const std::string_view large = copy_into(arena, std::string(100'000, 'x'));
  TextArena other = std::move(arena);
  const std::string_view later = copy_into(other, "later");
  EXPECT_EQ(small, "small");
  EXPECT_EQ(large, std::string(100'000, 'x'));
  EXPECT_EQ(later, "later");
}

}  // namespace
}  // namespace vqvec
