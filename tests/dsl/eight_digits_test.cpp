#include "dsl/eight_digits.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

namespace vqvec::eight_digits {
namespace {

std::string stored(std::uint64_t bytes) {
  std::string text(count, '?');
  store(bytes, text.data());
  return text;
}

constexpr std::uint64_t step = 997;  // prime to ten, so that every digit comes up in every place

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

// Those of the 256 characters that, put into one place of a text, leave it all digits.
std::string digits_in_place(std::string text, std::size_t place) {
  std::string accepted;
  for (int character = 0; character <= std::numeric_limits<unsigned char>::max(); ++character) {
    text[place] = static_cast<char>(character);
    accepted += are_digits(load(text.data())) ? text.substr(place, 1) : "";
  }
  return accepted;
}

TEST(EightDigits, AnyOtherCharacterInAnyPlaceIsNoticed) {
  for (std::size_t place = 0; place < count; ++place) {
    EXPECT_EQ(digits_in_place("00000000", place), "0123456789") << place;
    EXPECT_EQ(digits_in_place("99999999", place), "0123456789") << place;
  }
}

TEST(EightDigits, TheDigitsBeforeTheFirstOtherCharacterAreCounted) {
  for (std::size_t place = 0; place < count; ++place) {
    for (const char other : {'\0', ' ', '-', '.', '/', ':', 'e', '\x80', '\xB9', '\xFF'}) {
      std::string text = "90909090";
      text[place] = other;
      EXPECT_EQ(leading(load(text.data())), place) << text;
      text.replace(place, count - place, count - place, other);
      EXPECT_EQ(leading(load(text.data())), place) << text;
    }
  }
  EXPECT_EQ(leading(load("12345678")), count);
}

TEST(EightDigits, SeveralOtherCharactersAreNoticed) {
  for (const std::string text : {"\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "::::::::", "////////",
                                 "\xFA/\xFA/\xFA/\xFA/", "0\xFF:000000"}) {
    EXPECT_FALSE(are_digits(load(text.data()))) << text;
  }
}

}  // namespace
}  // namespace vqvec::eight_digits
