#include "dsl/number.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/reference/files.hpp"
#include "tests/support/failure.hpp"
#include "tests/support/random_decimal.hpp"
#include "tests/support/same_number.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

// Texts that are finite numbers

struct NumberCase {
  const char* name;
  std::string text;
  double expected;
};
const std::vector<NumberCase> number_cases = {
    {"Zero", "0", 0.0},
    {"NegativeZero", "-0", -0.0},
    {"NegativeZeroWithPoint", "-0.0", -0.0},
    {"Integer", "42", 42.0},
    {"Negative", "-2", -2.0},
    {"LeadingPlus", "+3.5", 3.5},
    {"LeadingZeros", "007", 7.0},
    {"PointFirst", ".5", 0.5},
    {"PointLast", "5.", 5.0},
    {"SignAndPointFirst", "-.25", -0.25},
    {"PlusPointExponent", "+.5e-1", 0.05},
    {"Exponent", "1.5e3", 1500.0},
    {"CapitalExponent", "1.5E3", 1500.0},
    {"ExponentWithPlus", "1e+2", 100.0},
    {"NegativeExponent", "-1e-3", -0.001},
    {"ExponentWithLeadingZeros", "1e0002", 100.0},
    {"SpacesAround", " 1.5e3 ", 1500.0},
    {"AllSpacesAround", " \t\r\n2\n\r\t ", 2.0},
    {"LeadingVerticalTab", "\v1", 1.0},
    {"LeadingFormFeed", "\f-1", -1.0},
    {"MixedLeadingWhiteSpace", " \v \f+1", 1.0},
    {"Hexadecimal", "0x10", 16.0},
    {"HexadecimalCapital", "0XfF", 255.0},
    {"HexadecimalFraction", "0x.8", 0.5},
    {"HexadecimalExponent", "-0x1.8p+1", -3.0},
    {"HexadecimalWithPlus", "+0xA", 10.0},
    {"HexadecimalLargest", "0x1.fffffffffffffp+1023", 1.7976931348623157e308},
    {"HexadecimalSmallest", "0x1p-1074", 4.9406564584124654e-324},
    {"Largest", "1.7976931348623157e308", std::numeric_limits<double>::max()},
    {"RoundedDownToLargest", "1.7976931348623158e308", std::numeric_limits<double>::max()},
    {"MostNegative", "-1.7976931348623157e308", std::numeric_limits<double>::lowest()},
    {"SmallestNormal", "2.2250738585072014e-308", std::numeric_limits<double>::min()},
    {"SmallestDenormal", "4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
    {"RoundedUpToSmallest", "3e-324", std::numeric_limits<double>::denorm_min()},
    {"RoundedDownToZero", "2e-324", 0.0},
    {"TooSmallIsZero", "1e-400", 0.0},
    {"TooSmallKeepsItsSign", "-1e-400", -0.0},
    {"ZeroWithHugeExponent", "0e999999999999", 0.0},
    {"HalfwayRoundsToEven", "9007199254740993", 9007199254740992.0},
    {"JustAboveHalfway", "9007199254740993.0000000000000000000000001", 9007199254740994.0},
    {"ManyDigits", "0.1000000000000000055511151231257827021181583404541015625", 0.1},
    {"LongIntegerAndExponent", "1" + std::string(400, '0') + "e-400", 1.0},
    {"EighteenDecimals", ".000000000000000001", 1e-18},
    {"NineteenDecimals", ".0000000000000000001", 1e-19},
    {"LongFractionAndExponent", "0." + std::string(400, '0') + "1e401", 1.0},
    {"MoreZerosThanADoubleCanHold", "0." + std::string(100'000, '0') + "1", 0.0},
    {"AHundredThousandSpaces", std::string(100'000, ' ') + "1" + std::string(100'000, '\t'), 1.0},
};
class FiniteNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(FiniteNumber, IsReadToTheLastBit) {
  const auto& [name, text, expected] = GetParam();
  EXPECT_TRUE(is_number_literal(text));
  EXPECT_PRED2(is_same_number, read_finite_number(text), expected);
  EXPECT_PRED2(is_same_number, parse_finite_number(text, "x"), expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, FiniteNumber, testing::ValuesIn(number_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Texts that are not

struct OtherCase {
  const char* name;
  std::string text;
  bool is_literal;      // has the form of a number all the same
  std::string message;  // of parse_finite_number with the label "value"
};
const std::vector<OtherCase> other_cases = {
    {"Infinity", "inf", true, "value is not a finite number: inf"},
    {"NegativeInfinity", "-inf", true, "value is not a finite number: -inf"},
    {"InfinityInFull", "+INFINITY", true, "value is not a finite number: +INFINITY"},
    {"Nan", "nan", true, "value is not a finite number: nan"},
    {"NegativeNan", "-NaN", true, "value is not a finite number: -NaN"},
    {"NanWithEmptyPayload", "nan()", true, "value is not a finite number: nan()"},
    {"NanWithPayload", "nan(abc)", true, "value is not a finite number: nan(abc)"},
    {"NanWithNumber", "nan(0x1_f)", true, "value is not a finite number: nan(0x1_f)"},
    {"TooLarge", "1e999", true, "value is not a finite number: 1e999"},
    {"TooLargeNegative", "-1e999", true, "value is not a finite number: -1e999"},
    {"RoundedUpToInfinity", "1.7976931348623159e308", true,
     "value is not a finite number: 1.7976931348623159e308"},
    {"HexadecimalTooLarge", "0x1p1024", true, "value is not a finite number: 0x1p1024"},
    {"SpacesAroundInfinity", " \tinf\n", true, "value is not a finite number:  \tinf\n"},
    {"Empty", "", false, "value is not a finite number: "},
    {"SpacesOnly", " \t\r\n", false, "value is not a finite number:  \t\r\n"},
    {"VerticalTabOnly", "\v", false, "value is not a finite number: \v"},
    {"VerticalTabAfterIt", "1\v", false, "value is not a finite number: 1\v"},
    {"FormFeedAfterIt", "1\f ", false, "value is not a finite number: 1\f "},
    {"NulAfterIt", "1\0"s, false, "value is not a finite number: 1\0"s},
    {"NulAndDigitsAfterIt", "1\0002"s, false, "value is not a finite number: 1\0002"s},
    {"NulBefore", "\0001"s, false, "value is not a finite number: \0001"s},
    {"NulAfterTooLarge", "1e999\0"s, false, "value is not a finite number: 1e999\0"s},
    {"Word", "abc", false, "value is not a finite number: abc"},
    {"SpacesAroundWord", " abc ", false, "value is not a finite number:  abc "},
    {"Comma", "1,5", false, "value is not a finite number: 1,5"},
    {"TwoNumbers", "1 2", false, "value is not a finite number: 1 2"},
    {"TwoPoints", "1.2.3", false, "value is not a finite number: 1.2.3"},
    {"PointOnly", ".", false, "value is not a finite number: ."},
    {"SignOnly", "-", false, "value is not a finite number: -"},
    {"SignAndPoint", "+.", false, "value is not a finite number: +."},
    {"TwoSigns", "--1", false, "value is not a finite number: --1"},
    {"PlusMinus", "+-1", false, "value is not a finite number: +-1"},
    {"MinusPlus", "-+1", false, "value is not a finite number: -+1"},
    {"SpaceAfterSign", "- 1", false, "value is not a finite number: - 1"},
    {"ExponentOnly", "e5", false, "value is not a finite number: e5"},
    {"BrokenExponent", "1e", false, "value is not a finite number: 1e"},
    {"BrokenSignedExponent", "1e+", false, "value is not a finite number: 1e+"},
    {"SpaceInExponent", "1e 5", false, "value is not a finite number: 1e 5"},
    {"FractionalExponent", "1e1.5", false, "value is not a finite number: 1e1.5"},
    {"FortranExponent", "1d5", false, "value is not a finite number: 1d5"},
    {"HexadecimalPrefixOnly", "0x", false, "value is not a finite number: 0x"},
    {"HexadecimalPoint", "0x.", false, "value is not a finite number: 0x."},
    {"HexadecimalBrokenExponent", "0x1p", false, "value is not a finite number: 0x1p"},
    {"HexadecimalWithoutPrefix", "ff", false, "value is not a finite number: ff"},
    {"LetterAfterIt", "1f", false, "value is not a finite number: 1f"},
    {"Underscore", "1_000", false, "value is not a finite number: 1_000"},
    {"Apostrophe", "1'000", false, "value is not a finite number: 1'000"},
    {"BrokenInfinity", "infinit", false, "value is not a finite number: infinit"},
    {"LettersAfterInfinity", "infinityy", false, "value is not a finite number: infinityy"},
    {"BrokenNanPayload", "nan(", false, "value is not a finite number: nan("},
    {"SpaceInNanPayload", "nan(a b)", false, "value is not a finite number: nan(a b)"},
    {"Nano", "nano", false, "value is not a finite number: nano"},
    {"Quoted", "'1'", false, "value is not a finite number: '1'"},
    {"FullWidthDigit", "\xef\xbc\x91", false, "value is not a finite number: \xef\xbc\x91"},
    {"UnicodeMinus", "\xe2\x88\x92\x31", false, "value is not a finite number: \xe2\x88\x92\x31"},
    {"NoBreakSpaceBefore", "\xa0\x31", false, "value is not a finite number: \xa0\x31"},
};
class NoFiniteNumber : public testing::TestWithParam<OtherCase> {};

TEST_P(NoFiniteNumber, IsRefused) {
  const std::string& text = GetParam().text;
  EXPECT_EQ(is_number_literal(text), GetParam().is_literal);
  EXPECT_EQ(read_finite_number(text), std::nullopt);
  // what() ends at the first NUL of a message.
  EXPECT_EQ(failure_of([&] { parse_finite_number(text, "value"); }), GetParam().message.c_str());
}
INSTANTIATE_TEST_SUITE_P(Texts, NoFiniteNumber, testing::ValuesIn(other_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ParseFiniteNumber, PutsTheLabelFirstAsItIs) {
  EXPECT_EQ(failure_of([] { parse_finite_number("x", "t1:charge atom 3"); }),
            "t1:charge atom 3 is not a finite number: x");
  EXPECT_EQ(failure_of([] { parse_finite_number("x", ""); }), " is not a finite number: x");
}

TEST(ParseFiniteNumber, ReadsOnlyTheBytesOfTheView) {
  const std::string text = "12345";
  EXPECT_EQ(parse_finite_number(std::string_view(text).substr(1, 3), "x"), 234.0);
  EXPECT_EQ(parse_finite_number(std::string_view("0x12").substr(0, 3), "x"), 1.0);
}

// Against the standard conversion

// Pieces of numbers, with a stray byte here and there.
std::string random_number_text(std::mt19937_64& random) {
  static const std::vector<std::string> pieces = {
      "0",  "1",  "9",     "17",       "305",      "4503599627370497",
      "00", ".",  ".",     ".5",       "e",        "E",
      "e-", "e+", "e-320", "e3",       "e2",       "e308",
      "-",  "+",  "-",     "0x",       "0X1.",     "p-3",
      "p",  "aF", "inf",   " ",        "\t",       "\n",
      "\v", "\f", "\r",    "nan",      "(b)",      "INFINITY",
      "_",  ",",  "\0"s,   "\xc3\xa9", "99999999", "123456789012345678"};
  std::string text;
  for (auto length = 1 + random() % 6; length > 0; --length) {
    text += pieces[random() % pieces.size()];
  }
  return text;
}

std::optional<double> strtod_if_finite(const std::string& text) {
  const std::optional<double> number = reference::read_number(text);
  return number && reference::is_finite(*number) ? number : std::nullopt;
}

TEST(RandomNumbers, AgreeWithStrtodBitForBit) {
  std::mt19937_64 random(20240607);
  int literals = 0;
  for (int i = 0; i < 200'000; ++i) {
    const std::string text = random_number_text(random);
    const bool is_literal = reference::read_number(text).has_value();
    ASSERT_EQ(is_number_literal(text), is_literal) << "text [" << text << "]";
    ASSERT_PRED2(is_same_number, read_finite_number(text), strtod_if_finite(text))
        << "text [" << text << "]";
    literals += is_literal ? 1 : 0;
  }
  EXPECT_GT(literals, 20'000);  // the texts are worth the comparison
}

TEST(RandomNumbers, PlainDecimalsAgreeWithStrtodBitForBit) {
  std::mt19937_64 random(31415926);
  for (int i = 0; i < 200'000; ++i) {
    const std::string text = random_decimal(random);
    ASSERT_PRED2(is_same_number, read_finite_number(text), strtod_if_finite(text))
        << "text [" << text << "]";
  }
}

// Counts

struct CountCase {
  const char* name;
  std::string text;
  std::optional<std::uint64_t> expected;
};
const std::vector<CountCase> count_cases = {
    {"Zero", "0", 0U},
    {"Plain", "12", 12U},
    {"LeadingSpaceAndWord", " 12 atoms", 12U},
    {"LeadingWhiteSpaceOfAllKinds", " \t\n\v\f\r7", 7U},
    {"LeadingPlus", "+5", 5U},
    {"MinusWrapsAround", "-1", 18446744073709551615U},
    {"MinusTwoWrapsAround", "-2", 18446744073709551614U},
    {"MinusZero", "-0", 0U},
    {"MinusLargestIsOne", "-18446744073709551615", 1U},
    {"LeadingZerosAreDecimal", "010", 10U},
    {"HexadecimalIsZero", "0x10", 0U},
    {"ExponentIsIgnored", "1e3", 1U},
    {"FractionIsIgnored", "3.9", 3U},
    {"NulEndsTheDigits", "1\0002"s, 1U},
    {"Largest", "18446744073709551615", 18446744073709551615U},
    {"TooLarge", "18446744073709551616", std::nullopt},
    {"FarTooLarge", std::string(1000, '9'), std::nullopt},
    {"TooLargeNegative", "-18446744073709551616", std::nullopt},
    {"ManyLeadingZeros", std::string(1000, '0') + "8", 8U},
    {"Empty", "", std::nullopt},
    {"SpacesOnly", "  ", std::nullopt},
    {"Word", "three", std::nullopt},
    {"SignOnly", "-", std::nullopt},
    {"TwoSigns", "--1", std::nullopt},
    {"SpaceAfterSign", "- 1", std::nullopt},
    {"PointFirst", ".5", std::nullopt},
    {"NulFirst", "\0005"s, std::nullopt},
    {"ByteOrderMark",
     "\xef\xbb\xbf"
     "3",
     std::nullopt},
    {"Infinity", "inf", std::nullopt},
};
class ReadCount : public testing::TestWithParam<CountCase> {};

TEST_P(ReadCount, TakesTheLeadingDigits) {
  EXPECT_EQ(read_count(GetParam().text), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, ReadCount, testing::ValuesIn(count_cases),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace vqvec
