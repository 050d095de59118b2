#include "eval/vector_functions.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/exactly.hpp"
#include "tests/support/failure.hpp"

namespace vqvec {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();

// require_equal_lengths

struct LengthsCase {
  const char* name;
  std::size_t accumulated;
  std::size_t next;
  const char* label;
  std::string message;
};
const std::vector<LengthsCase> lengths_cases = {
    {"Equal", 3, 3, "add()", "(no failure)"},
    {"BothEmpty", 0, 0, "add()", "(no failure)"},
    {"NextLonger", 3, 4, "add()", "add() requires equal vector lengths: 3 vs 4"},
    {"NextShorter", 12, 1, "wmean()", "wmean() requires equal vector lengths: 12 vs 1"},
    {"NextEmpty", 1, 0, "sub()", "sub() requires equal vector lengths: 1 vs 0"},
};
class EqualLengths : public testing::TestWithParam<LengthsCase> {};

TEST_P(EqualLengths, AreRequired) {
  const LengthsCase& lengths = GetParam();
  EXPECT_EQ(failure_of([&] {
              require_equal_lengths(AtomVector(lengths.accumulated), AtomVector(lengths.next),
                                    lengths.label);
            }),
            lengths.message);
}
INSTANTIATE_TEST_SUITE_P(Vectors, EqualLengths, testing::ValuesIn(lengths_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Two vectors

struct PairCase {
  const char* name;
  AtomVector first;
  AtomVector second;
  AtomVector expected;
};
class AddTo : public testing::TestWithParam<PairCase> {};

TEST_P(AddTo, AddsElementByElement) {
  AtomVector sum = GetParam().first;
  add_to(sum, GetParam().second);
  EXPECT_THAT(sum, exactly(GetParam().expected));
}
const std::vector<PairCase> add_cases = {
    {"Empty", {}, {}, {}},
    {"Plain", {1, -2, 3}, {10, 20, 30}, {11, 18, 33}},
    {"RoundsOnce", {0.1, 1e16}, {0.2, 1}, {0.30000000000000004, 1e16}},
    {"SignsOfZero", {-0.0, -0.0, 0.0}, {-0.0, 0.0, -0.0}, {-0.0, 0.0, 0.0}},
    {"NotFinite", {largest, infinity, nan}, {largest, -infinity, 1}, {infinity, nan, nan}},
};
INSTANTIATE_TEST_SUITE_P(Vectors, AddTo, testing::ValuesIn(add_cases),
                         [](const auto& one) { return std::string(one.param.name); });

class SubtractFrom : public testing::TestWithParam<PairCase> {};

TEST_P(SubtractFrom, SubtractsElementByElement) {
  AtomVector first = GetParam().first;
  subtract_from(first, GetParam().second);
  EXPECT_THAT(first, exactly(GetParam().expected));
}
const std::vector<PairCase> subtract_cases = {
    {"Empty", {}, {}, {}},
    {"Plain", {1, -2, 3}, {10, 20, 30}, {-9, -22, -27}},
    {"EqualGivesPositiveZero", {1, -2}, {1, -2}, {0.0, 0.0}},
    {"SignsOfZero", {-0.0, -0.0, 0.0}, {0.0, -0.0, -0.0}, {-0.0, 0.0, 0.0}},
    {"NotFinite", {-largest, infinity}, {largest, infinity}, {-infinity, nan}},
};
INSTANTIATE_TEST_SUITE_P(Vectors, SubtractFrom, testing::ValuesIn(subtract_cases),
                         [](const auto& one) { return std::string(one.param.name); });

struct WeightedCase {
  const char* name;
  AtomVector sum;
  AtomVector next;
  double weight;
  AtomVector expected;
};
const std::vector<WeightedCase> weighted_cases = {
    {"Empty", {}, {}, 2, {}},
    {"Plain", {1, 2}, {10, 20}, 3, {31, 62}},
    {"NegativeWeight", {1, 2}, {10, 20}, -0.5, {-4, -8}},
    {"ProductIsRoundedBeforeTheSum", {-1}, {0.1}, 10, {0.0}},
    {"NegativeZeroIsLostInPositiveZero", {0.0}, {-0.0}, 1, {0.0}},
    {"ZeroWeight", {5, 5}, {1e308, -1}, 0, {5, 5}},
    {"ZeroTimesInfinity", {0.0}, {infinity}, 0, {nan}},
    {"ProductOverflows", {-1}, {1e308}, 10, {infinity}},
};
class AddWeightedTo : public testing::TestWithParam<WeightedCase> {};

TEST_P(AddWeightedTo, AddsProducts) {
  AtomVector sum = GetParam().sum;
  add_weighted_to(sum, GetParam().next, GetParam().weight);
  EXPECT_THAT(sum, exactly(GetParam().expected));
}
INSTANTIATE_TEST_SUITE_P(Vectors, AddWeightedTo, testing::ValuesIn(weighted_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// A vector and a number

struct NumberCase {
  const char* name;
  AtomVector vector;
  double number;
  AtomVector expected;
};
class MultiplyBy : public testing::TestWithParam<NumberCase> {};

TEST_P(MultiplyBy, MultipliesEachElement) {
  AtomVector vector = GetParam().vector;
  multiply_by(vector, GetParam().number);
  EXPECT_THAT(vector, exactly(GetParam().expected));
}
const std::vector<NumberCase> multiply_cases = {
    {"Empty", {}, 2, {}},
    {"Plain", {1, -2, 3}, 2, {2, -4, 6}},
    {"ByZero", {1, -1, 0.0}, 0, {0.0, -0.0, 0.0}},
    {"ByMinusOne", {0.0, -0.0}, -1, {-0.0, 0.0}},
    {"ByInfinity", {1, -1, 0.0}, infinity, {infinity, -infinity, nan}},
    {"ByNan", {1}, nan, {nan}},
};
INSTANTIATE_TEST_SUITE_P(Vectors, MultiplyBy, testing::ValuesIn(multiply_cases),
                         [](const auto& one) { return std::string(one.param.name); });

class DivideBy : public testing::TestWithParam<NumberCase> {};

TEST_P(DivideBy, DividesEachElement) {
  AtomVector vector = GetParam().vector;
  divide_by(vector, GetParam().number);
  EXPECT_THAT(vector, exactly(GetParam().expected));
}
const std::vector<NumberCase> divide_cases = {
    {"Empty", {}, 2, {}},
    {"Plain", {1, -2, 3}, 2, {0.5, -1, 1.5}},
    {"NotByTheReciprocalOfThree", {5, 7}, 3, {1.6666666666666667, 2.3333333333333335}},
    {"NotByTheReciprocalOfFive", {3, 6}, 5, {0.6, 1.2}},
    {"ByOneKeepsNegativeZero", {-0.0, 7}, 1, {-0.0, 7}},
    {"ByANegative", {1, 0.0}, -4, {-0.25, -0.0}},
};
INSTANTIATE_TEST_SUITE_P(Vectors, DivideBy, testing::ValuesIn(divide_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Signs

TEST(FlipSigns, FlipsTheSignOfEveryElement) {
  AtomVector vector = {1, -2.5, 0.0, -0.0, infinity, -infinity};
  flip_signs(vector);
  EXPECT_THAT(vector, exactly({-1, 2.5, -0.0, 0.0, -infinity, infinity}));
}

TEST(FlipSigns, FlipsTheSignOfNan) {
  AtomVector vector = {std::copysign(nan, 1.0), std::copysign(nan, -1.0)};
  flip_signs(vector);
  EXPECT_THAT(vector, exactly({nan, nan}));
  EXPECT_TRUE(std::signbit(vector[0]));
  EXPECT_FALSE(std::signbit(vector[1]));
}

TEST(ClearSigns, ClearsTheSignOfEveryElement) {
  AtomVector vector = {1, -2.5, 0.0, -0.0, infinity, -infinity};
  clear_signs(vector);
  EXPECT_THAT(vector, exactly({1, 2.5, 0.0, 0.0, infinity, infinity}));
}

TEST(ClearSigns, ClearsTheSignOfNan) {
  AtomVector vector = {std::copysign(nan, 1.0), std::copysign(nan, -1.0)};
  clear_signs(vector);
  EXPECT_THAT(vector, exactly({nan, nan}));
  EXPECT_FALSE(std::signbit(vector[0]));
  EXPECT_FALSE(std::signbit(vector[1]));
}

TEST(Signs, OfNothingAreNothing) {
  AtomVector vector;
  flip_signs(vector);
  clear_signs(vector);
  EXPECT_THAT(vector, exactly({}));
}

// clip

struct ClipCase {
  const char* name;
  AtomVector vector;
  double min;
  double max;
  AtomVector expected;
};
const std::vector<ClipCase> clip_cases = {
    {"Empty", {}, 0, 1, {}},
    {"Plain", {1, 2, 3}, 1.5, 2.5, {1.5, 2, 2.5}},
    {"AtTheLimits", {1, 3}, 1, 3, {1, 3}},
    {"MinEqualsMax", {1, 2, 3}, 2, 2, {2, 2, 2}},
    {"NanBecomesMax", {nan, 0.5}, 0, 1, {1, 0.5}},
    {"Infinities", {infinity, -infinity}, -1, 1, {1, -1}},
    {"InfiniteLimits", {-5, 5, nan}, -infinity, infinity, {-5, 5, infinity}},
    {"NegativeZeroBecomesMaxZero", {-0.0}, -1, 0.0, {0.0}},
    {"NegativeZeroBecomesMinZero", {-0.0}, 0.0, 1, {0.0}},
    {"ZeroBecomesNegativeMinZero", {0.0, -1, 1}, -0.0, 0.0, {-0.0, -0.0, -0.0}},
    {"NanAsMinBecomesEveryElement", {1, 2}, nan, 1, {nan, nan}},
    {"NanAsMaxGivesMin", {1, -2}, 0, nan, {0, 0}},
};
class Clip : public testing::TestWithParam<ClipCase> {};

TEST_P(Clip, LimitsEachElement) {
  AtomVector vector = GetParam().vector;
  clip(vector, GetParam().min, GetParam().max);
  EXPECT_THAT(vector, exactly(GetParam().expected));
}
INSTANTIATE_TEST_SUITE_P(Vectors, Clip, testing::ValuesIn(clip_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ClipLimits, FailWhenMinIsGreater) {
  AtomVector vector = {1};
  EXPECT_EQ(failure_of([&] { clip(vector, 1, 0); }), "clip() min cannot be greater than max");
  AtomVector nothing;
  EXPECT_EQ(failure_of([&] { clip(nothing, 0, -infinity); }),
            "clip() min cannot be greater than max");
}

// Sums

struct SumCase {
  const char* name;
  AtomVector vector;
  double expected;
};
const std::vector<SumCase> sum_cases = {
    {"Empty", {}, 0.0},
    {"Plain", {1, 2, 3}, 6},
    {"FirstToLast", {1e16, 1, -1e16}, 0.0},
    {"OtherOrder", {1e16, -1e16, 1}, 1},
    {"InOneDouble", {0.1, 0.2, 0.3}, 0.6000000000000001},
    {"NegativeZeroAddsToPositiveZero", {-0.0}, 0.0},
    {"Overflow", {largest, largest, -infinity}, nan},
    {"OverflowStays", {largest, largest, -largest}, infinity},
};
class SumOf : public testing::TestWithParam<SumCase> {};

TEST_P(SumOf, AddsFromFirstToLast) {
  EXPECT_PRED2(is_same_number, sum_of(GetParam().vector), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Vectors, SumOf, testing::ValuesIn(sum_cases),
                         [](const auto& one) { return std::string(one.param.name); });

const std::vector<NumberCase> renormalize_cases = {
    {"ToZero", {1, 2, 3}, 0, {-1, 0, 1}},
    {"ToItsOwnSum", {1, 2, 3}, 6, {1, 2, 3}},
    {"ShiftIsUniform", {0.0, 10}, 20, {5, 15}},
    {"SignMayChange", {1, 5}, -6, {-5, -1}},
    {"OneElement", {4}, -1, {-1}},
    {"ShiftIsADivision",
     {0, 0, 0},
     5,
     {1.6666666666666667, 1.6666666666666667, 1.6666666666666667}},
    {"SumFromFirstToLast", {1e16, 1, -1e16}, 3, {1e16, 2, -1e16}},
    {"NegativeZerosToZero", {-0.0, -0.0}, 0.0, {0.0, 0.0}},
    {"InfiniteTarget", {1, 2}, infinity, {infinity, infinity}},
    {"NanTarget", {1, 2}, nan, {nan, nan}},
    {"InfiniteSum", {largest, largest}, 0, {-infinity, -infinity}},
};
class RenormalizeToSum : public testing::TestWithParam<NumberCase> {};

TEST_P(RenormalizeToSum, ShiftsEachElementEqually) {
  EXPECT_THAT(renormalize_to_sum(GetParam().vector, GetParam().number),
              exactly(GetParam().expected));
}
INSTANTIATE_TEST_SUITE_P(Vectors, RenormalizeToSum, testing::ValuesIn(renormalize_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(RenormalizeNothing, Fails) {
  EXPECT_EQ(failure_of([] { renormalize_to_sum({}, 0); }),
            "renorm() cannot operate on an empty vector");
}

}  // namespace
}  // namespace vqvec
