#include "taskstore/text_arena.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vqvec {
namespace {

using std::string_literals::operator""s;

// Texts of all sizes, now and then larger than any block.
std::string random_text(std::mt19937_64& random) {
  const std::size_t largest = random() % 500 == 0 ? 3'000'000 : 200;
  return std::string(random() % largest, static_cast<char>(random() % 256));
}

struct StoreCase {
  const char* name;
  std::string text;
};
const std::vector<StoreCase> store_cases = {
    {"Empty", ""},
    {"OneByte", "x"},
    {"EmbeddedNul", "a\0b\0"s},
    {"BytesAbove127", "\xc3\xa9\xff"},
    {"AsLongAsTheFirstBlock", std::string(1024, 'b')},
    {"LongerThanTheFirstBlock", std::string(1025, 'c')},
};
class Store : public testing::TestWithParam<StoreCase> {};

TEST_P(Store, GivesACopyThatOutlivesTheOriginal) {
  TextArena arena;
  std::string original = GetParam().text;
  const std::string_view copy = arena.store(original);
  original.assign(original.size(), '?');
  EXPECT_EQ(copy, GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Texts, Store, testing::ValuesIn(store_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(TextArena, StoresTextsAroundTheSizeOfItsLargestBlock) {
  for (const std::size_t size : {1'048'575U, 1'048'576U, 1'048'577U, 5'000'001U}) {
    TextArena arena;
    const std::string_view before = arena.store("before");
    const std::string text(size, 'x');
    const std::string_view copy = arena.store(text);
    const std::string_view behind = arena.store("behind");
    EXPECT_EQ(before, "before");
    EXPECT_EQ(copy, text);
    EXPECT_EQ(behind, "behind");
  }
}

TEST(TextArena, KeepsEveryTextAsItGrows) {
  std::mt19937_64 random(1);
  TextArena arena;
  std::vector<std::pair<std::string, std::string_view>> stored;
  for (int i = 0; i < 3'000; ++i) {
    std::string text = random_text(random);
    const std::string_view copy = arena.store(text);
    stored.emplace_back(std::move(text), copy);
  }
  for (const auto& [text, copy] : stored) {
    ASSERT_EQ(copy, text);
  }
}

TEST(TextArena, KeepsItsTextsWhenItIsMoved) {
  TextArena arena;
  const std::string_view small = arena.store("small");
  const std::string_view large = arena.store(std::string(100'000, 'x'));
  TextArena other = std::move(arena);
  const std::string_view later = other.store("later");
  EXPECT_EQ(small, "small");
  EXPECT_EQ(large, std::string(100'000, 'x'));
  EXPECT_EQ(later, "later");
}

struct StoreOverCase {
  const char* name;
  std::string before;
  std::string after;
  bool takes_the_place;
};
const std::vector<StoreOverCase> store_over_cases = {
    {"SameSize", "0.25", "-1.5", true},    {"Shorter", "0.25", "1", true},
    {"Longer", "0.25", "0.125", false},    {"OverNothing", "", "x", false},
    {"WithNuls", "\0\0\0"s, "a\0"s, true},
};
class StoreOver : public testing::TestWithParam<StoreOverCase> {};

TEST_P(StoreOver, ReusesThePlaceWhereTheTextFits) {
  TextArena arena;
  const std::string_view neighbour_before = arena.store("<<");
  const std::string_view replaced = arena.store(GetParam().before);
  const std::string_view neighbour_behind = arena.store(">>");
  const std::string_view copy = arena.store_over(replaced, GetParam().after);
  EXPECT_EQ(copy, GetParam().after);
  EXPECT_EQ(copy.data() == replaced.data(), GetParam().takes_the_place);
  EXPECT_EQ(neighbour_before, "<<");
  EXPECT_EQ(neighbour_behind, ">>");
}
INSTANTIATE_TEST_SUITE_P(Texts, StoreOver, testing::ValuesIn(store_over_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(TextArena, ReplacesATextByAnEmptyOne) {
  TextArena arena;
  const std::string_view replaced = arena.store("text");
  EXPECT_EQ(arena.store_over(replaced, ""), "");
  EXPECT_EQ(arena.store_over("", ""), "");
}

TEST(TextArena, KeepsEveryTextThatIsReplacedAgainAndAgain) {
  std::mt19937_64 random(2);
  TextArena arena;
  std::vector<std::string> expected(50);
  std::vector<std::string_view> stored(50);
  for (int i = 0; i < 20'000; ++i) {
    const std::size_t place = random() % expected.size();
    expected[place].assign(random() % 40, static_cast<char>('a' + random() % 26));
    stored[place] = arena.store_over(stored[place], expected[place]);
    const std::size_t other = random() % expected.size();
    ASSERT_EQ(stored[other], expected[other]);
  }
}

}  // namespace
}  // namespace vqvec
