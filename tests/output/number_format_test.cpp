#include "output/number_format.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "tests/reference/print.hpp"
#include "tests/support/format_value15.hpp"

namespace vqvec {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct FormatCase {
  const char* name;
  double value;
  std::string expected;
};

// 15 significant digits

const std::vector<FormatCase> value15_cases = {
    {"Zero", 0.0, "0"},
    {"NegativeZero", -0.0, "-0"},
    {"One", 1.0, "1"},
    {"Integer", 3.0, "3"},
    {"NegativeInteger", -2.0, "-2"},
    {"Million", 1234567.0, "1234567"},
    {"Tenth", 0.1, "0.1"},
    {"NegativeQuarter", -0.25, "-0.25"},
    {"SumThatIsNotQuiteThreeTenths", 0.1 + 0.2, "0.3"},
    {"Third", 1.0 / 3.0, "0.333333333333333"},
    {"TwoThirds", -2.0 / 3.0, "-0.666666666666667"},
    {"HundredThirds", 100.0 / 3.0, "33.3333333333333"},
    {"TrailingZerosGo", 1.5000, "1.5"},
    {"ZerosOfAnIntegerStay", 100'000.0, "100000"},
    {"Pi", 3.141592653589793, "3.14159265358979"},
    {"FifteenDigits", 0.123456789012345, "0.123456789012345"},
    {"SixteenthDigitIsRounded", 0.1234567890123456, "0.123456789012346"},
    {"RoundedToFewerDigits", 0.9999999999999999, "1"},
    {"RoundedToOneMoreDigitBeforeThePoint", 9.999999999999999, "10"},
    {"RoundedDownToNines", 9.99999999999999, "9.99999999999999"},
    {"RoundedUpFromNines", 99.99999999999999, "100"},
    {"SmallestInFixedNotation", 0.0001, "0.0001"},
    {"SmallInFixedNotation", 0.000123456789012345, "0.000123456789012345"},
    {"LargestInExponentNotation", 0.00009999999999999, "9.999999999999e-05"},
    {"RoundedUpToFixedNotation", 0.000099999999999999995, "0.0001"},
    {"HundredThousandth", 1e-5, "1e-05"},
    {"NegativeExponentWithDigits", -1.25e-5, "-1.25e-05"},
    {"SmallExponent", 1e-20, "1e-20"},
    {"ThreeDigitsInTheExponent", 1e-100, "1e-100"},
    {"LargestFixedInteger", 999'999'999'999'999.0, "999999999999999"},
    {"HundredTrillion", 1e14, "100000000000000"},
    {"JustBelowAHundredTrillion", 99'999'999'999'999.9, "99999999999999.9"},
    {"QuadrillionHasAnExponent", 1e15, "1e+15"},
    {"RoundedUpToAnExponent", 999'999'999'999'999.5, "1e+15"},
    {"SixteenDigits", 1'234'567'890'123'456.0, "1.23456789012346e+15"},
    {"LargeExponent", 1e20, "1e+20"},
    {"LargeExponentWithDigits", -6.02214076e23, "-6.02214076e+23"},
    {"TieDownToEven", 1'000'000'000'000.125, "1000000000000.12"},
    {"TieUpToEven", 1'000'000'000'000.375, "1000000000000.38"},
    {"TieWithOneDecimal", 10'000'000'000'000.25, "10000000000000.2"},
    {"TieWithOneDecimalUp", 10'000'000'000'000.75, "10000000000000.8"},
    {"TieOfAnInteger", 100'000'000'000'000.5, "100000000000000"},
    {"TieOfAnIntegerUp", 100'000'000'000'001.5, "100000000000002"},
    {"NegativeTie", -1'000'000'000'000.125, "-1000000000000.12"},
    {"Largest", std::numeric_limits<double>::max(), "1.79769313486232e+308"},
    {"Large", 1e308, "1e+308"},
    {"SmallestNormal", std::numeric_limits<double>::min(), "2.2250738585072e-308"},
    {"SmallestDenormal", std::numeric_limits<double>::denorm_min(), "4.94065645841247e-324"},
    {"NegativeDenormal", -1e-310, "-9.99999999999997e-311"},
    {"Infinity", infinity, "inf"},
    {"NegativeInfinity", -infinity, "-inf"},
    {"Nan", nan, "nan"},
    {"NegativeNan", -nan, "-nan"},
};
class FormatValue15 : public testing::TestWithParam<FormatCase> {};

TEST_P(FormatValue15, HasAtMostFifteenDigits) {
  EXPECT_EQ(format_value15(GetParam().value), GetParam().expected);
}
TEST_P(FormatValue15, IsTheSameAfterOtherText) {
  std::string text = "atoms.1.q=";
  append_value15(text, GetParam().value);
  EXPECT_EQ(text, "atoms.1.q=" + GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Numbers, FormatValue15, testing::ValuesIn(value15_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// 10 digits after the point

const std::vector<FormatCase> fixed10_cases = {
    {"Zero", 0.0, "0.0000000000"},
    {"NegativeZero", -0.0, "-0.0000000000"},
    {"OneAndAHalf", 1.5, "1.5000000000"},
    {"NegativeQuarter", -0.25, "-0.2500000000"},
    {"FiveDigitsBeforeThePoint", 12345.678, "12345.6780000000"},
    {"Coordinate", 0.1173, "0.1173000000"},
    {"Charge", -0.834, "-0.8340000000"},
    {"Third", 1.0 / 3.0, "0.3333333333"},
    {"TwoThirds", 2.0 / 3.0, "0.6666666667"},
    {"LastDigit", 1e-10, "0.0000000001"},
    {"RoundedUpToTheLastDigit", 6e-11, "0.0000000001"},
    {"RoundedDownToZero", 4e-11, "0.0000000000"},
    {"NegativeRoundedToZeroKeepsItsSign", -1e-11, "-0.0000000000"},
    {"RoundedUpToOne", 0.99999999996, "1.0000000000"},
    {"RoundedDownToNines", 0.99999999994, "0.9999999999"},
    {"TieDownToEven", 1.0 / 2048.0, "0.0004882812"},
    {"TieUpToEven", 3.0 / 2048.0, "0.0014648438"},
    {"NegativeTie", -3.0 / 2048.0, "-0.0014648438"},
    {"Large", 123'456'789.125, "123456789.1250000000"},
    {"JustBelowABillion", 999'999'999.99999988, "999999999.9999998808"},
    {"Billion", 1e9, "1000000000.0000000000"},
    {"NegativeBillion", -1e9, "-1000000000.0000000000"},
    {"JustAboveABillion", 1'000'000'000.5, "1000000000.5000000000"},
    {"IntegerWithoutFraction", 9'007'199'254'740'993.0, "9007199254740992.0000000000"},
    {"PowerOfTen", 1e22, "10000000000000000000000.0000000000"},
    {"PowerOfTenThatIsNotExact", 1e23, "99999999999999991611392.0000000000"},
    {"Denormal", std::numeric_limits<double>::denorm_min(), "0.0000000000"},
    {"NegativeDenormal", -1e-310, "-0.0000000000"},
    {"NearlyLargest", 1e308,
     "10000000000000000109790636294404554174049230967731184633681068290315758540491149153716"
     "33289784946888990612496697211725156115902837431400883283070091981460460312716645029330"
     "27185697489699588559043338384466165001178426897626212945177628091195786707458122783970"
     "171784415105291802893207873272974885715430223118336.0000000000"},
    {"Infinity", infinity, "inf"},
    {"NegativeInfinity", -infinity, "-inf"},
    {"Nan", nan, "nan"},
    {"NegativeNan", -nan, "-nan"},
};
class FormatFixed10 : public testing::TestWithParam<FormatCase> {};

TEST_P(FormatFixed10, HasTenDigitsAfterThePoint) {
  EXPECT_EQ(format_fixed10(GetParam().value), GetParam().expected);
}
TEST_P(FormatFixed10, IsTheSameAfterOtherText) {
  std::string text = "O ";
  append_fixed10(text, GetParam().value);
  EXPECT_EQ(text, "O " + GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Numbers, FormatFixed10, testing::ValuesIn(fixed10_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Against printf

void expect_printed_alike(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  ASSERT_EQ(format_value15(value), reference::print("%.15g", value)) << "bits " << bits;
  ASSERT_EQ(format_fixed10(value), reference::print("%.10f", value)) << "bits " << bits;
}

TEST(RandomNumbers, OfAnyBitsArePrintedAsPrintfPrintsThem) {
  std::mt19937_64 random(20240607);
  for (int i = 0; i < 200'000; ++i) {
    ASSERT_NO_FATAL_FAILURE(expect_printed_alike(std::bit_cast<double>(random())));
  }
}

TEST(RandomNumbers, OfChemicalSizeArePrintedAsPrintfPrintsThem) {
  std::mt19937_64 random(31415926);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  for (int i = 0; i < 200'000; ++i) {
    double value = mantissa(random) * std::pow(10.0, static_cast<int>(random() % 22) - 8);
    if (random() % 2 == 0) {  // as a file gives it, with few digits
      value = std::strtod(reference::print("%.6f", value).c_str(), nullptr);
    }
    ASSERT_NO_FATAL_FAILURE(expect_printed_alike(value));
  }
}

TEST(RandomNumbers, BesidePowersOfTenArePrintedAsPrintfPrintsThem) {
  for (int exponent = -30; exponent <= 30; ++exponent) {
    for (const double sign : {1.0, -1.0}) {
      const double power = sign * std::pow(10.0, exponent);
      double above = power;
      double below = power;
      for (int step = 0; step < 200; ++step) {
        ASSERT_NO_FATAL_FAILURE(expect_printed_alike(above));
        ASSERT_NO_FATAL_FAILURE(expect_printed_alike(below));
        above = std::nextafter(above, infinity);
        below = std::nextafter(below, -infinity);
      }
    }
  }
}

// Fractions of a power of two end in a 5: where the digits are cut, half of them are ties.
TEST(RandomNumbers, HalfwayBetweenTwoTextsArePrintedAsPrintfPrintsThem) {
  std::mt19937_64 random(271828);
  for (int i = 0; i < 100'000; ++i) {
    const auto numerator = static_cast<double>(random() >> (11 + random() % 53));
    const double value = std::ldexp(numerator, -static_cast<int>(random() % 60));
    ASSERT_NO_FATAL_FAILURE(expect_printed_alike(value));
    ASSERT_NO_FATAL_FAILURE(expect_printed_alike(-value));
  }
}

// What is printed with 15 digits reads back as a number with the same 15 digits.
TEST(RandomNumbers, ReadBackEqualToTheDigitsPrinted) {
  std::mt19937_64 random(161803);
  for (int i = 0; i < 100'000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (std::isfinite(value)) {
      const std::string text = format_value15(value);
      ASSERT_EQ(format_value15(std::strtod(text.c_str(), nullptr)), text);
    }
  }
}

}  // namespace
}  // namespace vqvec
