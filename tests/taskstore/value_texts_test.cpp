#include "taskstore/value_texts.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "dsl/number.hpp"
#include "tests/support/random_decimal.hpp"
#include "tests/support/same_number.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

void expect_text(const ValueTexts& texts, std::size_t index, const std::string& expected) {
  ASSERT_EQ(texts.text(index), expected);
  ASSERT_PRED2(is_same_number, texts.number(index), read_finite_number(expected))
      << "text [" << expected << "]";
}

// Texts that are nearly the same: as numbers they are equal, or differ in one bit of their form.
const std::vector<std::string> odd_texts = {
    "",
    "0",
    "-0",
    "00",
    "-00",
    "+0",
    "0.",
    "-0.",
    ".0",
    "-.0",
    "0.0",
    "-0.0",
    "00.0",
    "0.00",
    ".",
    "-",
    "-.",
    "--1",
    "1",
    "1.",
    "1.0",
    "01",
    "-01",
    "01.0",
    "10",
    "0.1",
    "0.10",
    "0.01",
    " 0.5",
    "0.5 ",
    "0.5\r",
    "0.5\0"s,
    "0x1",
    "1e5",
    "1.5E-01",
    "inf",
    "nan",
    "0.123456789012345",
    "-0.123456789012345",
    "9007199254740992",  // 2^53
    "9007199254740993",  // the first integer that is no double
    "0.9007199254740993",
    "99999999999999999",   // the longest integers
    "144115188075855871",  // 2^57 - 1
    "144115188075855872",
    "-0.144115188075855871",
    "-0.144115188075855872",
    "9223372036854775807",  // 2^63 - 1
    "9223372036854775808",
    "9999999999999999999",
    "18446744073709551615",  // 2^64 - 1
    "18446744073709551616",
    "0.000000000000000001",  // 18 decimals
    "0.0000000000000000001",
    "0.00000000000000000001",
    ".0000000000000000001",
    "99999999999999999.9",
    "1.2.3",
    "1,5",
    "word",
    "\xff\x80\x01",
    "0.12345678901234567890123456789012345678901234567890",
    std::string(1'000, '7'),
};

TEST(ValueTexts, GivesEveryTextBack) {
  TextArena arena;
  ValueTexts texts;
  for (const std::string& text : odd_texts) {
    texts.push_back(text, arena);
  }
  ASSERT_EQ(texts.size(), odd_texts.size());
  for (std::size_t i = 0; i < odd_texts.size(); ++i) {
    expect_text(texts, i, odd_texts[i]);
  }
}

TEST(ValueTexts, ReplacesAnyTextByAnyOther) {
  for (const std::string& before : odd_texts) {
    for (const std::string& after : odd_texts) {
      TextArena arena;
      ValueTexts texts;
      texts.push_back(before, arena);
      texts.push_back("-0.25", arena);
      texts.push_back("neighbour", arena);
      texts.replace(0, after, arena);
      expect_text(texts, 0, after);
      expect_text(texts, 1, "-0.25");
      expect_text(texts, 2, "neighbour");
    }
  }
}

std::string random_text(std::mt19937_64& random) {
  switch (random() % 4) {
    case 0:
      return odd_texts[random() % odd_texts.size()];
    case 1:
      return std::string(random() % 40, static_cast<char>(random() % 256));
    default:
      return random_decimal(random);
  }
}

TEST(ValueTexts, BehavesAsAVectorOfTexts) {
  std::mt19937_64 random(20240301);
  TextArena arena;
  ValueTexts texts;
  std::vector<std::string> expected;
  for (int i = 0; i < 200'000; ++i) {
    const std::string text = random_text(random);
    if (expected.empty() || random() % 4 == 0) {
      texts.push_back(text, arena);
      expected.push_back(text);
    } else {
      const std::size_t index = random() % expected.size();
      texts.replace(index, text, arena);
      expected[index] = text;
    }
    const std::size_t asked = random() % expected.size();
    expect_text(texts, asked, expected[asked]);
  }
  EXPECT_EQ(texts.size(), expected.size());
}

}  // namespace
}  // namespace vqvec
