#include "dsl/eight_digits.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>

namespace vqvec::eight_digits {
namespace {

std::string stored(std::uint64_t bytes) {
  std::string text(count, '?');
  store(bytes, text.data());
  return text;
}

constexpr std::uint64_t step = 997;  // prime to ten: every digit comes in every place

TEST(EightDigits, NumbersAreWritten) {
  for (std::uint64_t number = 0; number < limit; number += step) {
    char expected[count + 1];
    std::snprintf(expected, sizeof expected, "%08u", static_cast<unsigned>(number));
    ASSERT_EQ(stored(from_number(number)), expected);
  }
}

TEST(EightDigits, WhatIsWrittenIsDigitsAndReadsBack) {
  for (std::uint64_t number = 0; number < limit; number += step) {
    ASSERT_TRUE(are_digits(from_number(number))) << number;
    ASSERT_EQ(to_number(from_number(number)), number);
  }
}

TEST(EightDigits, EveryPairAndEveryFourAreWritten) {
  constexpr std::uint64_t fours = 10'000;
  for (std::uint64_t four = 0; four < fours; ++four) {
    const std::uint64_t number = four * fours + (fours - 1 - four);
    ASSERT_EQ(to_number(from_number(number)), number);
    ASSERT_EQ(stored(from_number(number)).substr(4),
              stored(from_number(fours - 1 - four)).substr(4));
  }
}

TEST(EightDigits, LargestNumber) {
  EXPECT_EQ(stored(from_number(limit - 1)), "99999999");
}

TEST(EightDigits, AnyOtherCharacterInAnyPlaceIsNoticed) {
  constexpr int characters = 256;
  for (std::size_t place = 0; place < count; ++place) {
    for (const char others : {'0', '9'}) {
      for (int character = 0; character < characters; ++character) {
        std::string text(count, others);
        text[place] = static_cast<char>(character);
        const bool is_digit = character >= '0' && character <= '9';
        ASSERT_EQ(are_digits(load(text.data())), is_digit) << place << ' ' << character;
      }
    }
  }
}

TEST(EightDigits, SeveralOtherCharactersAreNoticed) {
  for (const std::string text : {"\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "::::::::", "////////",
                                 "\xFA/\xFA/\xFA/\xFA/", "0\xFF:000000"}) {
    EXPECT_FALSE(are_digits(load(text.data()))) << text;
  }
}

}  // namespace
}  // namespace vqvec::eight_digits
