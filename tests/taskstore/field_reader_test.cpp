#include "taskstore/field_reader.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/reference/files.hpp"
#include "tests/support/random_decimal.hpp"
#include "tests/support/same_number.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

// A number, and what it leaves to the word after it

struct NumberCase {
  const char* name;
  std::string text;
  double expected;
  std::string next_word;
};
const std::vector<NumberCase> number_cases = {
    {"Zero", "0", 0.0, ""},
    {"NegativeZero", "-0", -0.0, ""},
    {"Integer", "42 H", 42.0, "H"},
    {"Plus", "+1", 1.0, ""},
    {"Minus", "-1.25", -1.25, ""},
    {"PointFirst", ".5", 0.5, ""},
    {"PointLast", "5. x", 5.0, "x"},
    {"SignAndPointFirst", "-.5", -0.5, ""},
    {"LeadingZeros", "007.50", 7.5, ""},
    {"Exponent", "1e5", 100'000.0, ""},
    {"CapitalExponent", "1E-2", 0.01, ""},
    {"ExponentWithPlus", "2.5e+3", 2'500.0, ""},
    {"ExponentAfterPoint", "5.e1", 50.0, ""},
    {"AllWhiteSpaceBefore", " \t\v\f\r\n1", 1.0, ""},
    {"VerticalTabBefore", "\v1", 1.0, ""},
    {"VerticalTabAfterIt", "1\vx", 1.0, "x"},
    {"NextNumberGluedByMinus", "1-2", 1.0, "-2"},
    {"NextNumberGluedByPlus", "1+2", 1.0, "+2"},
    {"NextNumberGluedAfterExponent", "1e5-2", 100'000.0, "-2"},
    {"SecondPointBeginsTheNext", "1.2.3", 1.2, ".3"},
    {"PointAfterExponentBeginsTheNext", "1e5.5", 100'000.0, ".5"},
    {"SecondExponent", "1e5e6", 100'000.0, "e6"},
    {"FortranExponentIsLeft", "1D5", 1.0, "D5"},
    {"LowerFortranExponentIsLeft", "1.5d-3", 1.5, "d-3"},
    {"HexadecimalIsZeroAndItsLetters", "0x10", 0.0, "x10"},
    {"LetterAfterIt", "1.5x", 1.5, "x"},
    {"CommaAfterIt", "1,5", 1.0, ",5"},
    {"ApostropheAfterIt", "1'000", 1.0, "'000"},
    {"UnderscoreAfterIt", "1_000", 1.0, "_000"},
    {"InfinityGlued", "1inf", 1.0, "inf"},
    {"NulAfterIt", "1\0002"s, 1.0, "\0002"s},
    {"TooSmallIsZero", "1e-400", 0.0, ""},
    {"TooSmallKeepsItsSign", "-1e-400", -0.0, ""},
    {"SmallestDenormal", "4.9406564584124654e-324", 4.9406564584124654e-324, ""},
    {"Largest", "1.7976931348623157e308", 1.7976931348623157e308, ""},
    {"ZeroWithHugeExponent", "0e99999", 0.0, ""},
    {"ManyDigits", "0.1000000000000000055511151231257827021181583404541015625", 0.1, ""},
    {"ThousandsOfDigits", "1" + std::string(5'000, '0') + "e-5000 x", 1.0, "x"},
    {"NoBreakSpaceIsNoSpace", "1\xc2\xa0", 1.0, "\xc2\xa0"},
};
class NumberField : public testing::TestWithParam<NumberCase> {};

TEST_P(NumberField, EndsWhereTheNextByteCannotContinueIt) {
  FieldReader fields(GetParam().text);
  EXPECT_PRED2(is_same_number, fields.read_number(), GetParam().expected);
  EXPECT_EQ(fields.read_word(), GetParam().next_word);
}

TEST_P(NumberField, IsPassedOver) {
  FieldReader fields(GetParam().text);
  EXPECT_TRUE(fields.skip_number());
  EXPECT_EQ(fields.read_word(), GetParam().next_word);
}
INSTANTIATE_TEST_SUITE_P(Texts, NumberField, testing::ValuesIn(number_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Texts that do not begin with a number

struct OtherCase {
  const char* name;
  std::string text;
};
const std::vector<OtherCase> other_cases = {
    {"Empty", ""},
    {"WhiteSpaceOnly", " \t\v\f\r\n"},
    {"Word", "abc"},
    {"Nan", "nan"},
    {"NegativeNan", "-nan"},
    {"Infinity", "inf"},
    {"NegativeInfinity", "-inf"},
    {"CapitalInfinity", "INFINITY"},
    {"PointOnly", "."},
    {"SignOnly", "-"},
    {"SignAndPoint", "+."},
    {"TwoSigns", "--1"},
    {"MinusPlus", "-+1"},
    {"SignAfterSpace", "- 1"},
    {"TwoPoints", "..5"},
    {"ExponentOnly", "e5"},
    {"PointAndExponent", ".e5"},
    {"BrokenExponent", "1e"},
    {"BrokenExponentBeforeSpace", "1e 5"},
    {"BrokenSignedExponent", "1e+"},
    {"BrokenExponentBeforeLetter", "1ex"},
    {"TwoSignsInTheExponent", "1e--5"},
    {"PointInTheExponent", "1e.5"},
    {"TooLarge", "1e999"},
    {"TooLargeNegative", "-1e999"},
    {"RoundedUpToInfinity", "1.7976931348623159e308"},
    {"TooManyDigits", std::string(400, '9')},
    {"CommaFirst", ",5"},
    {"NulFirst", "\0001"s},
    {"FullWidthDigit", "\xef\xbc\x91"},
    {"UnicodeMinus", "\xe2\x88\x92\x31"},
};
class NoNumberField : public testing::TestWithParam<OtherCase> {};

TEST_P(NoNumberField, IsNotRead) {
  FieldReader fields(GetParam().text);
  EXPECT_EQ(fields.read_number(), std::nullopt);
}
INSTANTIATE_TEST_SUITE_P(Texts, NoNumberField, testing::ValuesIn(other_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// What a number that cannot be read leaves to the next word

struct LeftCase {
  const char* name;
  std::string text;
  std::string next_word;
};
const std::vector<LeftCase> left_cases = {
    {"WordStays", "abc", "abc"},
    {"ExponentWithoutDigitsStays", "e5", "e5"},
    {"ExponentWithoutDigitsAfterSign", "-e5", "e5"},
    {"ExponentWithoutDigitsAfterPoint", ".e5", "e5"},
    {"BrokenExponentGoes", "1ex", "x"},
    {"SignGoes", "-x", "x"},
    {"OneOfTwoSignsGoes", "--1", "-1"},
};
class FailedField : public testing::TestWithParam<LeftCase> {};

TEST_P(FailedField, LeavesTheRest) {
  FieldReader fields(GetParam().text);
  EXPECT_EQ(fields.read_number(), std::nullopt);
  EXPECT_EQ(fields.read_word(), GetParam().next_word);
}
INSTANTIATE_TEST_SUITE_P(Texts, FailedField, testing::ValuesIn(left_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Words

struct WordCase {
  const char* name;
  std::string text;
  std::vector<std::string> expected;
};
const std::vector<WordCase> word_cases = {
    {"Empty", "", {}},
    {"WhiteSpaceOnly", " \t\v\f\r\n", {}},
    {"OneWord", "H", {"H"}},
    {"SeveralWords", "H 0 1", {"H", "0", "1"}},
    {"AllWhiteSpaceParts", " H\t0\v1\f2\r3\n4 ", {"H", "0", "1", "2", "3", "4"}},
    {"NulIsPartOfAWord", "H\0x 0"s, {"H\0x"s, "0"}},
    {"NoBreakSpaceIsPartOfAWord", "H\xc2\xa0x 0", {"H\xc2\xa0x", "0"}},
    {"ByteA0IsPartOfAWord", "H\xa0 0", {"H\xa0", "0"}},
    {"LongWord", std::string(10'000, 'H') + " 0", {std::string(10'000, 'H'), "0"}},
};
class WordFields : public testing::TestWithParam<WordCase> {};

TEST_P(WordFields, ArePartedByWhiteSpace) {
  FieldReader fields(GetParam().text);
  for (const std::string& word : GetParam().expected) {
    EXPECT_EQ(fields.read_word(), word);
  }
  EXPECT_EQ(fields.read_word(), "");
  EXPECT_EQ(fields.read_number(), std::nullopt);
}
INSTANTIATE_TEST_SUITE_P(Texts, WordFields, testing::ValuesIn(word_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(FieldReader, ReadsThreeCoordinatesWithoutSpaces) {
  FieldReader fields("H 1-2-3");
  EXPECT_EQ(fields.read_word(), "H");
  EXPECT_EQ(fields.read_number(), 1.0);
  EXPECT_EQ(fields.read_number(), -2.0);
  EXPECT_EQ(fields.read_number(), -3.0);
  EXPECT_EQ(fields.read_number(), std::nullopt);
}

TEST(FieldReader, ReadsOnlyTheBytesOfItsView) {
  FieldReader fields(std::string_view("1234").substr(1, 2));
  EXPECT_EQ(fields.read_number(), 23.0);
  EXPECT_EQ(fields.read_word(), "");
}

// Against a stream

// A word, numbers up to the first text that is not one, and the word that is left.
struct Fields {
  std::string word;
  std::vector<std::uint64_t> number_bits;
  std::string rest;

  bool operator==(const Fields&) const = default;
};

template <typename Reader>
Fields read_fields(const std::string& text) {
  Reader reader(text);
  Fields fields;
  fields.word = reader.read_word();
  for (auto number = reader.read_number(); number; number = reader.read_number()) {
    fields.number_bits.push_back(std::bit_cast<std::uint64_t>(*number));
  }
  fields.rest = reader.read_word();
  return fields;
}

// Passing over numbers accepts what reading them accepts, and leaves the same rest.
void expect_skipped_as_read(const std::string& text) {
  FieldReader reading(text);
  FieldReader skipping(text);
  for (bool goes_on = true; goes_on;) {
    goes_on = reading.read_number().has_value();
    ASSERT_EQ(skipping.skip_number(), goes_on) << "text [" << text << "]";
    ASSERT_EQ(skipping.rest(), reading.rest()) << "text [" << text << "]";
  }
}

std::string random_fields(std::mt19937_64& random) {
  static const std::vector<std::string> pieces = {
      "0",    "1",   "9",     "17",   "305", "4503599627370497",
      "00",   ".",   ".",     ".5",   "e",   "E",
      "e-",   "e+",  "e-320", "e3",   "e-2", "e308",
      "-",    "+",   "-",     "0x",   "inf", "nan",
      " ",    " ",   " ",     "\t",   "\v",  "\f",
      "\r",   "D5",  "H",     ",",    "\0"s, "\xc3\xa9",
      "0.25", "1.2", "-0.",   "1e-5", "1e2", "123456789012345678",
      "x",    "(",   "'"};
  std::string text;
  for (auto length = 1 + random() % 12; length > 0; --length) {
    text += pieces[random() % pieces.size()];
  }
  return text;
}

TEST(RandomFields, AreReadAsAStreamReadsThemBitForBit) {
  std::mt19937_64 random(1414213);
  std::size_t numbers = 0;
  for (int i = 0; i < 100'000; ++i) {
    const std::string text = "H " + random_fields(random);
    const Fields expected = read_fields<reference::FieldStream>(text);
    ASSERT_EQ(read_fields<FieldReader>(text), expected) << "text [" << text << "]";
    numbers += expected.number_bits.size();
  }
  EXPECT_GT(numbers, 40'000U);  // the texts are worth the comparison
}

TEST(RandomFields, WithoutASymbolAreReadAsAStreamReadsThemToo) {
  std::mt19937_64 random(1732050);
  for (int i = 0; i < 50'000; ++i) {
    const std::string text = random_fields(random);
    ASSERT_EQ(read_fields<FieldReader>(text), read_fields<reference::FieldStream>(text))
        << "text [" << text << "]";
    expect_skipped_as_read(text);
  }
}

TEST(RandomFields, OfAnyBytesAreReadAsAStreamReadsThem) {
  std::mt19937_64 random(2236067);
  for (int i = 0; i < 50'000; ++i) {
    std::string text;
    for (auto length = random() % 16; length > 0; --length) {
      text += random() % 3 == 0 ? static_cast<char>(random() % 256) : " 01.-e"[random() % 6];
    }
    ASSERT_EQ(read_fields<FieldReader>(text), read_fields<reference::FieldStream>(text))
        << "text [" << text << "]";
    expect_skipped_as_read(text);
  }
}

TEST(RandomFields, OfManyDigitsAreReadAsAStreamReadsThem) {
  std::mt19937_64 random(2645751);
  for (int i = 0; i < 50'000; ++i) {
    const std::string text = "H " + random_decimal(random);
    ASSERT_EQ(read_fields<FieldReader>(text), read_fields<reference::FieldStream>(text))
        << "text [" << text << "]";
    expect_skipped_as_read(text.substr(2));
  }
}

// A number of more than 308 digits before its point is out of range.
TEST(LongFields, AreSkippedAsTheyAreRead) {
  for (const std::size_t digits : {298U, 299U, 300U, 301U, 308U, 309U, 310U, 400U, 40'000U}) {
    const std::string nines(digits, '9');
    for (const std::string& text : {nines, "-" + nines, nines + ".5 x", "0." + nines, "." + nines,
                                    nines + "e-100", nines + "x", nines + " 1"}) {
      expect_skipped_as_read(text);
    }
  }
}

}  // namespace
}  // namespace vqvec
