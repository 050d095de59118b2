#include "taskstore/value_text.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace vqvec {
namespace {

using std::string_literals::operator""s;

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
    {"InsideAfterOutside", std::string(100, 'a'), "0.25", false},
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
