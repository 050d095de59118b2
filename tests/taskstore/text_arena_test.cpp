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

using std::string_literals::operator""s;

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
    const std::string_view after = copy_into(arena, "after");
    EXPECT_EQ(before, "before");
    EXPECT_EQ(copy, text);
    EXPECT_EQ(after, "after");
  }
}

TEST(TextArena, PutsSmallTextsSideBySide) {
  TextArena arena;
  const char* const first = arena.allocate(100);
  const char* const second = arena.allocate(500);
  const char* const third = arena.allocate(24);
  EXPECT_EQ(second - first, 108);  // with the size of the room before it
  EXPECT_EQ(third - second, 508);
  EXPECT_EQ(TextArena::room_at(first), 100U);
  EXPECT_EQ(TextArena::room_at(second), 500U);
  EXPECT_EQ(TextArena::room_at(third), 24U);
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

TEST(TextArena, CanBeUsedAgainAfterItWasMoved) {
  TextArena arena;
  const std::string_view first = copy_into(arena, "first");
  const TextArena other = std::move(arena);
  const std::string_view second = copy_into(arena, "second");  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(first, "first");
  EXPECT_EQ(second, "second");
}

TEST(ValueText, IsEmptyAtFirst) {
  EXPECT_EQ(ValueText().text(), "");
}

TEST(ValueText, IsSmall) {
  EXPECT_EQ(sizeof(ValueText), 24U);
}

struct ReplaceCase {
  const char* name;
  std::string before;
  std::string after;
  bool keeps_place;
};
const std::vector<ReplaceCase> replace_cases = {
    {"BothInside", "0.25", "-0.123456789012345", true},
    {"LongestInside", std::string(23, 'a'), std::string(23, 'b'), true},
    {"ByNothing", "0.25", "", true},
    {"NothingReplaced", "", "0.25", true},
    {"Nuls", "\0\0\0"s, "\0"s, true},
    {"BytesAbove127", "\xff\xff", "\xc3\xa9", true},
    {"FirstTooLong", std::string(23, 'a'), std::string(24, 'b'), false},
    {"OutsideAgain", std::string(24, 'a'), std::string(24, 'b'), true},
    {"OutsideShorter", std::string(100, 'a'), std::string(24, 'b'), true},
    {"OutsideLonger", std::string(24, 'a'), std::string(25, 'b'), false},
    {"ShortAfterOutside", std::string(100, 'a'), "0.25", true},
    {"SizesThatLookLikeMarks", std::string(255, 'a'), std::string(255, 'b'), true},
    {"SizesThatLookLikeSmallOnes", std::string(256, 'a'), std::string(257, 'b'), false},
    {"Megabytes", std::string(3'000'000, 'a'), std::string(2'000'000, 'b'), true},
};
class ReplacedValue : public testing::TestWithParam<ReplaceCase> {};

TEST_P(ReplacedValue, IsTheLastAssigned) {
  TextArena arena;
  ValueText value;
  value.assign(GetParam().before, arena);
  ASSERT_EQ(value.text(), GetParam().before);
  std::string after = GetParam().after;
  value.assign(after, arena);
  after.assign(after.size(), '?');
  EXPECT_EQ(value.text(), GetParam().after);
}

TEST_P(ReplacedValue, TakesThePlaceOfTheEarlierOneWhereItFits) {
  TextArena arena;
  ValueText value;
  value.assign(GetParam().before, arena);
  const char* const place = value.text().data();
  value.assign(GetParam().after, arena);
  EXPECT_EQ(value.text().data() == place, GetParam().keeps_place);
}
INSTANTIATE_TEST_SUITE_P(Texts, ReplacedValue, testing::ValuesIn(replace_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ValueText, ReusesItsRoomWhenLengthsAlternate) {
  TextArena arena;
  ValueText value;
  value.assign(std::string(100, 'a'), arena);
  const char* const place = value.text().data();
  for (int i = 0; i < 100; ++i) {
    value.assign("0.25", arena);
    EXPECT_EQ(value.text(), "0.25");
    value.assign(std::string(30, 'b'), arena);
    value.assign(std::string(100, 'c'), arena);
    EXPECT_EQ(value.text().data(), place);
  }
}

TEST(ValueText, TakesAFewTimesItsLongestTextWhenItGrowsByteByByte) {
  TextArena arena;
  ValueText value;
  int places = 0;
  const char* place = nullptr;
  for (std::size_t size = 24; size <= 24'000; ++size) {
    value.assign(std::string(size, 'a'), arena);
    places += value.text().data() == place ? 0 : 1;
    place = value.text().data();
  }
  EXPECT_EQ(places, 11);  // 24 bytes, then twice as many each time, up to 24,576
}

TEST(ValueText, LeavesItsNeighboursAlone) {
  std::mt19937_64 random(2);
  TextArena arena;
  std::vector<std::string> expected(50);
  std::vector<ValueText> values(50);
  for (int i = 0; i < 20'000; ++i) {
    const std::size_t place = random() % expected.size();
    expected[place].assign(random() % 60, static_cast<char>('a' + random() % 26));
    values[place].assign(expected[place], arena);
    const std::size_t other = random() % expected.size();
    ASSERT_EQ(values[other].text(), expected[other]);
  }
}

}  // namespace
}  // namespace vqvec
   // namespace vqvec
