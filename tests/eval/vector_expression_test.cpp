#include "eval/vector_expression.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "tests/support/exactly.hpp"
#include "tests/support/failure.hpp"
#include "tests/support/task_tree.hpp"
#include "tests/support/test_in_tree.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;
using Tasks = std::vector<std::string_view>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// Tasks that one glob finds are named by the same letter and a number.
class Tree : public TaskTree {
 public:
  Tree() {
    add_task("here", "w=5\nlow=2\n" + atom_lines("q", {"7", "8"}));
    add_task("a", "charge=0.5\n" + atom_lines("q", {"1", "2", "3"}) + atom_lines("q:r", {"9"}) +
                      atom_lines("q*", {"6"}));
    add_task("b", atom_lines("q", {"10", "20", "30"}));
    add_task("quad", atom_lines("q", {"1", "1", "1", "1"}));
    add_task("bad", "key=abc\n" + atom_lines("q", {"1", "nan"}));
    add_task("count", "atom_count=3\n" + atom_lines("q", {"1", "2"}));
    add_task("geometry", atom_lines("q", {"1", "2"}));
    write("geometry/last_opt.xyz", "1\n\nH 0 0 0\n");
    add_task("large", atom_lines("q", {"1e308", "1e308"}));
    add_task("signs", atom_lines("q", {"0", "-0", "1.5", "-2.5"}));
    add_task("wide", atom_lines("q", {"1e16", "1", "-1e16"}));
    // Two atoms each, with weights.
    add_task("t1", "w=1\nminus=-1\nopposite=1\nx.w=2\nw v=5\nw-v=6\nbad=abc\nblank= 4\n" +
                       atom_lines("q", {"1", "2"}));
    add_task("t2", "w=3\nminus=3\nopposite=-1\nx.w=4\nw v=5\nw-v=6\nbad=1\nblank= 4\n" +
                       atom_lines("q", {"3", "6"}));
    write("t1/t1.xyz", "2\n\nO 0 0 0\nH 0 0 1\n");
    // The third of these has a length that never matters.
    add_task("m1", "w=1\n" + atom_lines("q", {"1", "2"}));
    add_task("m2", "w=1\n" + atom_lines("q", {"1", "2", "3"}));
    add_task("m3", "");
    // Thirds of 5 and of 0.6000000000000001, which is 0.1 + 0.2 + 0.3.
    add_task("u1", atom_lines("q", {"1", "0.1"}));
    add_task("u2", atom_lines("q", {"2", "0.2"}));
    add_task("u3", atom_lines("q", {"2", "0.3"}));
    // 0 when added in this order.
    add_task("o1", "w=1e16\n" + atom_lines("q", {"1e16"}));
    add_task("o2", "w=1\n" + atom_lines("q", {"1"}));
    add_task("o3", "w=-1e16\n" + atom_lines("q", {"-1e16"}));
    // 0 when the product is rounded before the sum.
    add_task("f1", "w=1\n" + atom_lines("q", {"-1"}));
    add_task("f2", "w=10\n" + atom_lines("q", {"0.1"}));
    add_task("n1", atom_lines("q", {"-0"}));
    add_task("g1", atom_lines("q", {"4"}));
    add_task("g2", atom_lines("q", {"abc"}));
    // No vector in the first, neither vector nor weight in the second.
    add_task("p1", "w=1\n");
    add_task("p2", "");
    // A good one, then one without weight.
    add_task("r1", "w=1\n" + atom_lines("q", {"1"}));
    add_task("r2", "");
    add_task("here/calc/s1", "w=1\n" + atom_lines("q", {"1"}));
    add_task("here/calc/s2", "w=2\n" + atom_lines("q", {"4"}));
    // `du*` is found twice, and both times the sibling is read.
    add_task("dup", atom_lines("q", {"1"}));
    add_task("here/dup", atom_lines("q", {"100"}));
  }
};

struct ValueCase {
  const char* name;
  std::string text;
  AtomVector expected;
  Tasks used_tasks;
};
class VectorExpression : public TestInTree<Tree, ValueCase> {};

TEST_P(VectorExpression, HasThisValueAndUsesTheseTasks) {
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression(GetParam().text, context), exactly(GetParam().expected));
  EXPECT_EQ(context.used_tasks(), GetParam().used_tasks);
}

const std::vector<ValueCase> reference_cases = {
    {"Colon", "a:q", {1, 2, 3}, {"a"}},
    {"AtomsMark", "a.atoms[].q", {1, 2, 3}, {"a"}},
    {"Spaces", " \t a : atoms.q \r\n", {1, 2, 3}, {"a"}},
    {"SingleQuotes", "'a:q'", {1, 2, 3}, {"a"}},
    {"DoubleQuotes", " \"a:q\" ", {1, 2, 3}, {"a"}},
    {"SpacesInQuotes", "' a : q '", {1, 2, 3}, {"a"}},
    {"EscapeInQuotes", R"("\a:q")", {1, 2, 3}, {"a"}},
    {"ColonInProperty", "a:q:r", {9}, {"a"}},
    {"WildcardInProperty", "a:q*", {6}, {"a"}},
    {"EmptyTask", ":q", {7, 8}, {""}},
    {"Dot", ".:q", {7, 8}, {"."}},
    {"SelfInAnyCase", "Self:q", {7, 8}, {"Self"}},
    {"CurrentInAnyCase", "CURRENT:q", {7, 8}, {"CURRENT"}},
    {"Path", "../a:q", {1, 2, 3}, {"../a"}},
    {"ChildPath", "calc/s2:q", {4}, {"calc/s2"}},
    {"SiblingWinsOverChild", "dup:q", {1}, {"dup"}},
};
INSTANTIATE_TEST_SUITE_P(References, VectorExpression, testing::ValuesIn(reference_cases),
                         [](const auto& one) { return std::string(one.param.name); });

const std::vector<ValueCase> sum_cases = {
    {"MeanOfOne", "mean(a:q)", {1, 2, 3}, {"a"}},
    {"MeanOfTwo", "mean(a:q, b:q)", {5.5, 11, 16.5}, {"a", "b"}},
    {"MeanInAnyCase", "MEAN (a:q,b:q)", {5.5, 11, 16.5}, {"a", "b"}},
    {"MeanOfOneTaskTwice", "mean(a:q, a:q)", {1, 2, 3}, {"a"}},
    {"MeanWithTrailingComma", "mean(a:q, b:q, )", {5.5, 11, 16.5}, {"a", "b"}},
    {"MeanDividesByTheNumberOfVectors",
     "mean(u1:q, u2:q, u3:q)",
     {1.6666666666666667, 0.20000000000000004},
     {"u1", "u2", "u3"}},
    {"MeanDividesByTheNumberOfTasks",
     "mean(u*:q)",
     {1.6666666666666667, 0.20000000000000004},
     {"u1", "u2", "u3"}},
    {"MeanOfGlob", "mean(t?:q)", {2, 4}, {"t1", "t2"}},
    {"MeanOfQuotedGlob", "mean('t*:q')", {2, 4}, {"t1", "t2"}},
    {"MeanOfEscapedGlob", R"(mean("\t*:q"))", {2, 4}, {"t1", "t2"}},
    {"MeanOfGlobWithAtomsMark", "mean(t*.atoms[].q)", {2, 4}, {"t1", "t2"}},
    {"MeanOfGlobOfPaths", "mean(calc/s*:q)", {2.5}, {"calc/s1", "calc/s2"}},
    {"MeanOfGlobWithTrailingComma", "mean(t*:q,)", {2, 4}, {"t1", "t2"}},
    {"MeanOfTwins", "mean(du*:q)", {1}, {"dup"}},
    {"MeanOfWildcardProperty", "mean(a:q*)", {6}, {"a"}},
    {"MeanOfNegativeZero", "mean(n1:q)", {-0.0}, {"n1"}},
    {"MeanOfCalls", "mean(neg(t1:q), neg(t2:q))", {-2, -4}, {"t1", "t2"}},
    {"MeanOfCallAndReference", "mean(neg(a:q), b:q)", {4.5, 9, 13.5}, {"a", "b"}},
    {"AddOfOne", "add(a:q)", {1, 2, 3}, {"a"}},
    {"AddOfTwo", "add(a:q, b:q)", {11, 22, 33}, {"a", "b"}},
    {"AddOfGlob", "add(t*:q)", {4, 8}, {"t1", "t2"}},
    {"AddOfTwins", "add(du*:q)", {2}, {"dup"}},
    {"AddFromTheLeft", "add(o1:q, o2:q, o3:q)", {0}, {"o1", "o2", "o3"}},
    {"AddFromTheLeftInOtherOrder", "add(o1:q, o3:q, o2:q)", {1}, {"o1", "o3", "o2"}},
    {"AddOfGlobInSortedOrder", "add(o*:q)", {0}, {"o1", "o2", "o3"}},
    {"AddOfNegativeZero", "add(n1:q)", {-0.0}, {"n1"}},
    {"AddOfNegativeZeros", "add(n1:q, n1:q)", {-0.0}, {"n1"}},
};
INSTANTIATE_TEST_SUITE_P(Sums, VectorExpression, testing::ValuesIn(sum_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// A single argument is tried as a reference first. The task of this attempt stays in the list of
// used tasks, ahead of those of the nested call.
const std::vector<ValueCase> single_cases = {
    {"Call", "mean(neg(a:q))", {-1, -2, -3}, {"neg(a", "a"}},
    {"CallInAdd", "add(neg(a:q))", {-1, -2, -3}, {"neg(a", "a"}},
    {"CallWithTrailingComma", "mean(neg(a:q),)", {-1, -2, -3}, {"neg(a", "a"}},
    {"CallWithAtomsMark", "mean(neg(a.atoms[].q))", {-1, -2, -3}, {"neg(a", "a"}},
    {"CallOfQuotedReference", "mean(neg('a:q'))", {-1, -2, -3}, {"neg('a", "a"}},
    {"CallOfTwo", "mean(sub(a:q,b:q))", {-9, -18, -27}, {"sub(a", "a", "b"}},
    {"CallWithSpaceIsNoReference", "mean(sub(a:q, b:q))", {-9, -18, -27}, {"a", "b"}},
    {"SpaceOnlyInTaskText", "mean(scale( a:q,2))", {2, 4, 6}, {"scale( a", "a"}},
    {"CallInCall", "mean(neg(neg(a:q)))", {1, 2, 3}, {"neg(neg(a", "a"}},
    {"MeanInMean", "mean(mean(a:q))", {1, 2, 3}, {"mean(a", "a"}},
    {"AttemptAtEachLevel", "mean(add(neg(a:q)))", {-1, -2, -3}, {"add(neg(a", "neg(a", "a"}},
    {"AttemptWithinOneOfTwo", "add(mean(neg(a:q)), b:q)", {9, 18, 27}, {"neg(a", "a", "b"}},
    {"AttemptOnceInTheList", "add(mean(neg(a:q)), mean(neg(a:q)))", {-2, -4, -6}, {"neg(a", "a"}},
    {"CallOfEmptyTask", "mean(neg(:q))", {-7, -8}, {"neg(", ""}},
    {"CallWithScalarKey", "mean(scale(a:q,@a.charge))", {0.5, 1, 1.5}, {"scale(a", "a"}},
};
INSTANTIATE_TEST_SUITE_P(SingleArguments, VectorExpression, testing::ValuesIn(single_cases),
                         [](const auto& one) { return std::string(one.param.name); });

const std::vector<ValueCase> function_cases = {
    {"FirstOfGlob", "first(t*:q)", {1, 2}, {"t1"}},
    {"FirstGlobOfGlob", "first_glob(t*:q)", {1, 2}, {"t1"}},
    {"FirstOfReference", "first(a:q)", {1, 2, 3}, {"a"}},
    {"FirstOfQuotedGlob", "first('t*:q')", {1, 2}, {"t1"}},
    {"FirstLoadsNoOther", "first(g*:q)", {4}, {"g1"}},
    {"FirstOfPaths", "First_Glob(calc/*:q)", {1}, {"calc/s1"}},
    {"Sub", "sub(b:q, a:q)", {9, 18, 27}, {"b", "a"}},
    {"SubOfEqual", "sub(a:q, a:q)", {0.0, 0.0, 0.0}, {"a"}},
    {"SubOfCalls", "sub(mean(a:q, b:q), neg(a:q))", {6.5, 13, 19.5}, {"a", "b"}},
    {"Scale", "scale(a:q, 2)", {2, 4, 6}, {"a"}},
    {"Mul", "mul(a:q, -0.5)", {-0.5, -1, -1.5}, {"a"}},
    {"ScaleByHexadecimal", "scale(a:q, 0x10)", {16, 32, 48}, {"a"}},
    {"ScaleByTaskKey", "scale(a:q, @a.charge)", {0.5, 1, 1.5}, {"a"}},
    {"ScaleByOwnKey", "scale(a:q, @w)", {5, 10, 15}, {"a"}},
    {"ScaleBySum", "scale(a:q, sum(b:q))", {60, 120, 180}, {"a", "b"}},
    {"ScaleByZero", "scale(signs:q, 0)", {0.0, -0.0, 0.0, -0.0}, {"signs"}},
    {"ScaleByInfinity",
     "scale(signs:q, sum(large:q))",
     {nan, nan, infinity, -infinity},
     {"signs", "large"}},
    {"ScaleOverflows", "mul(large:q, 10)", {infinity, infinity}, {"large"}},
    {"Neg", "neg(a:q)", {-1, -2, -3}, {"a"}},
    {"NegOfZeros", "neg(signs:q)", {-0.0, 0.0, -1.5, 2.5}, {"signs"}},
    {"NegOfNan", "neg(sub(mul(large:q, 10), mul(large:q, 10)))", {nan, nan}, {"large"}},
    {"NegWithTrailingComma", "neg(a:q,)", {-1, -2, -3}, {"a"}},
    {"Abs", "abs(neg(a:q))", {1, 2, 3}, {"a"}},
    {"AbsOfZeros", "ABS(signs:q)", {0.0, 0.0, 1.5, 2.5}, {"signs"}},
    {"Clip", "clip(a:q, 1.5, 2.5)", {1.5, 2, 2.5}, {"a"}},
    {"ClipToOneValue", "clip(a:q, 2, 2)", {2, 2, 2}, {"a"}},
    {"ClipOfNan", "clip(sub(mul(large:q, 10), mul(large:q, 10)), 0, 1)", {1, 1}, {"large"}},
    {"ClipOfInfinity", "clip(mul(large:q, -10), -4, 1)", {-4, -4}, {"large"}},
    {"ClipOfNegativeZero", "clip(signs:q, -1, 0)", {0.0, 0.0, 0.0, -1}, {"signs"}},
    {"ClipToZero", "clip(signs:q, 0, 2)", {0.0, 0.0, 1.5, 0.0}, {"signs"}},
    {"ClipWithNanAsMin",
     "clip(a:q, sum(sub(mul(large:q, 10), mul(large:q, 10))), 2)",
     {nan, nan, nan},
     {"a", "large"}},
    {"ClipWithNanAsMax",
     "clip(a:q, 2, sum(sub(mul(large:q, 10), mul(large:q, 10))))",
     {2, 2, 2},
     {"a", "large"}},
    {"ClipInItsOrder", "clip(a:q, sum(g1:q), sum(b:q))", {4, 4, 4}, {"a", "g1", "b"}},
    {"Renorm", "renorm(a:q, 0)", {-1, 0, 1}, {"a"}},
    {"Renormalize", "renormalize(a:q, 12)", {3, 4, 5}, {"a"}},
    {"RenormToOwnKey",
     "renorm(a:q, @w)",
     {0.6666666666666667, 1.6666666666666667, 2.6666666666666665},
     {"a"}},
    {"RenormTargetComesFirst", "renorm(a:q, sum(b:q))", {19, 20, 21}, {"b", "a"}},
    {"RenormDivides",
     "renorm(sub(a:q, a:q), 5)",
     {1.6666666666666667, 1.6666666666666667, 1.6666666666666667},
     {"a"}},
    {"RenormAddsFromFirstToLast", "renorm(wide:q, 3)", {1e16, 2, -1e16}, {"wide"}},
    {"RenormToInfinity",
     "renorm(a:q, sum(large:q))",
     {infinity, infinity, infinity},
     {"large", "a"}},
    {"QuotedArguments", "sub('b:q', \"a:q\")", {9, 18, 27}, {"b", "a"}},
    {"SpacesEverywhere", " \tsub ( b : q ,\n a : q ) ", {9, 18, 27}, {"b", "a"}},
};
INSTANTIATE_TEST_SUITE_P(Functions, VectorExpression, testing::ValuesIn(function_cases),
                         [](const auto& one) { return std::string(one.param.name); });

const std::vector<ValueCase> weighted_cases = {
    {"SumWithZeroWeight", "wsum(t*:q, 0)", {0, 0}, {"t1", "t2"}},
    {"SumWithWeightsThatCancel", "wsum(t*:q, opposite)", {-2, -4}, {"t1", "t2"}},
    {"SumStartsAtPositiveZero", "wsum(n1:q, 1)", {0.0}, {"n1"}},
    {"SumInTaskOrder", "wsum(o*:q, 1)", {0}, {"o1", "o2", "o3"}},
    {"ProductIsRoundedBeforeTheSum", "weighted_sum(f*:q, w)", {0}, {"f1", "f2"}},
    {"SumOverflows", "wsum(t*:q, 1e308)", {infinity, infinity}, {"t1", "t2"}},
    {"MeanOfOne", "wmean(t1:q, w)", {1, 2}, {"t1"}},
    {"MeanDivides", "wavg(u*:q, 1)", {1.6666666666666667, 0.20000000000000004}, {"u1", "u2", "u3"}},
    {"MeanWithADenormalTotal", "wmean(t1:q, 1e-310)", {1, 2}, {"t1"}},
    {"MeanOfPaths", "wmean(calc/s*:q, w)", {3}, {"calc/s1", "calc/s2"}},
    {"MeanOfTwins", "wmean(du*:q, 2)", {1}, {"dup"}},
    {"NameInAnyCase", "Weighted_Mean (t*:q, w)", {2.5, 5}, {"t1", "t2"}},
    {"QuotedGlob", "wsum('t*:q', w)", {10, 20}, {"t1", "t2"}},
    {"TrailingComma", "wsum(t*:q, w, )", {10, 20}, {"t1", "t2"}},
    {"WeightOfWeights", "wsum(t*:q, sum(wsum(t*:q, w)))", {120, 240}, {"t1", "t2"}},
};
INSTANTIATE_TEST_SUITE_P(Weighted, VectorExpression, testing::ValuesIn(weighted_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Every kind of weight for the tasks t1, [1, 2], and t2, [3, 6]
struct WeightCase {
  const char* name;
  std::string weight;
  AtomVector sum;
  AtomVector mean;
  Tasks used_tasks = {"t1", "t2"};
};
const std::vector<WeightCase> weight_cases = {
    {"Number", "2", {8, 16}, {2, 4}},
    {"NegativeNumber", "-2", {-8, -16}, {2, 4}},
    {"Hexadecimal", "0x2", {8, 16}, {2, 4}},
    {"NumberWithExponent", "+.2e1", {8, 16}, {2, 4}},
    {"QuotedNumber", "'2'", {8, 16}, {2, 4}},
    {"SpacesInQuotedNumber", "\" 2\t\"", {8, 16}, {2, 4}},
    {"Key", "w", {10, 20}, {2.5, 5}},
    {"QuotedKey", "'w'", {10, 20}, {2.5, 5}},
    {"EscapedKey", R"("\w")", {10, 20}, {2.5, 5}},
    {"KeyWithAtSign", "@w", {10, 20}, {2.5, 5}},
    {"QuotedKeyWithAtSign", "\"@w\"", {10, 20}, {2.5, 5}},
    {"EscapedKeyWithAtSign", R"("\@w")", {10, 20}, {2.5, 5}},
    {"NegativeWeights", "minus", {8, 16}, {4, 8}},
    {"KeyWithDot", "x.w", {14, 28}, {2.3333333333333335, 4.666666666666667}},
    {"KeyWithMinus", "w-v", {24, 48}, {2, 4}},
    {"KeyWithSpaceAfterAtSign", "@w v", {20, 40}, {2, 4}},
    {"ValueWithLeadingSpace", "blank", {16, 32}, {2, 4}},
    {"PerAtomKey", "atoms.1.q", {10, 20}, {2.5, 5}},
    {"KeyOfOneTask", "@t2.w", {12, 24}, {2, 4}},
    {"QuotedKeyOfOneTask", "'@t2.w'", {12, 24}, {2, 4}},
    {"KeyWithDotOfOneTask", "@t2.x.w", {16, 32}, {2, 4}},
    {"KeyOfTheWorkingDirectory", "@.w", {20, 40}, {2, 4}},
    {"KeyAfterQuotedSpaceIsTheWorkingDirectorys", "' @w'", {20, 40}, {2, 4}},
    {"Sum", "sum(a:q)", {24, 48}, {2, 4}, {"a", "t1", "t2"}},
    {"SumInAnyCase", "SUM (a:q)", {24, 48}, {2, 4}, {"a", "t1", "t2"}},
    {"QuotedSum", "'sum(a:q)'", {24, 48}, {2, 4}, {"a", "t1", "t2"}},
    {"EscapedSum", R"x("sum(\a:q)")x", {24, 48}, {2, 4}, {"a", "t1", "t2"}},
    {"SpacesInQuotedSum", "' sum(a:q) '", {24, 48}, {2, 4}, {"a", "t1", "t2"}},
    {"SumOfCall", "sum(sub(b:q, a:q))", {216, 432}, {2, 4}, {"b", "a", "t1", "t2"}},
    {"QuotedSumOfCall", "'sum(sub(b:q, a:q))'", {216, 432}, {2, 4}, {"b", "a", "t1", "t2"}},
    {"SumOfSingleCall", "sum(mean(neg(a:q)))", {-24, -48}, {2, 4}, {"neg(a", "a", "t1", "t2"}},
    {"SumComesBeforeTheTasks", "sum(t2:q)", {36, 72}, {2, 4}, {"t2", "t1"}},
};
class Weight : public TestInTree<Tree, WeightCase> {};

TEST_P(Weight, CountsInSums) {
  for (const char* name : {"wsum", "weighted_sum"}) {
    const std::string text = name + "(t*:q, "s + GetParam().weight + ")";
    EvalContext context;
    EXPECT_THAT(evaluate_vector_expression(text, context), exactly(GetParam().sum)) << text;
    EXPECT_EQ(context.used_tasks(), GetParam().used_tasks) << text;
  }
}
TEST_P(Weight, CountsInMeans) {
  for (const char* name : {"wmean", "weighted_mean", "wavg"}) {
    const std::string text = name + "(t*:q, "s + GetParam().weight + ")";
    EvalContext context;
    EXPECT_THAT(evaluate_vector_expression(text, context), exactly(GetParam().mean)) << text;
    EXPECT_EQ(context.used_tasks(), GetParam().used_tasks) << text;
  }
}
INSTANTIATE_TEST_SUITE_P(Texts, Weight, testing::ValuesIn(weight_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Numbers of arguments

struct CountCase {
  const char* function;
  std::size_t right_count;  // 0: any but none
  std::string message;
};
const std::vector<CountCase> count_cases = {
    {"mean", 0, "mean() expects at least one vector argument"},
    {"add", 0, "add() expects at least one vector argument"},
    {"first", 1, "first() expects one vector reference argument"},
    {"first_glob", 1, "first_glob() expects one vector reference argument"},
    {"wmean", 2, "wmean() expects a vector glob and a weight key/expression"},
    {"weighted_mean", 2, "weighted_mean() expects a vector glob and a weight key/expression"},
    {"wavg", 2, "wavg() expects a vector glob and a weight key/expression"},
    {"wsum", 2, "wsum() expects a vector glob and a weight key/expression"},
    {"weighted_sum", 2, "weighted_sum() expects a vector glob and a weight key/expression"},
    {"sub", 2, "sub() expects exactly two vector arguments"},
    {"scale", 2, "scale() expects a vector and a scalar"},
    {"mul", 2, "mul() expects a vector and a scalar"},
    {"neg", 1, "neg() expects one vector argument"},
    {"abs", 1, "abs() expects one vector argument"},
    {"clip", 3, "clip() expects a vector, min and max"},
    {"renorm", 2, "renorm() expects a vector and a target sum"},
    {"renormalize", 2, "renormalize() expects a vector and a target sum"},
};
class ArgumentCount : public TestInTree<Tree, CountCase> {};

TEST_P(ArgumentCount, IsCheckedBeforeAnyArgument) {
  const std::size_t most = GetParam().right_count == 0 ? 0 : 4;
  for (std::size_t count = 0; count <= most; ++count) {
    std::string text = GetParam().function + "("s;
    for (std::size_t i = 0; i < count; ++i) {
      text += i == 0 ? "a:q" : ", nope:q";
    }
    text += ')';
    EvalContext context;
    const std::string failure = failure_of([&] { evaluate_vector_expression(text, context); });
    if (count != GetParam().right_count || count == 0) {
      EXPECT_EQ(failure, GetParam().message) << text;
      EXPECT_EQ(context.used_tasks(), Tasks()) << text;
    } else {
      EXPECT_NE(failure, GetParam().message) << text;
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Functions, ArgumentCount, testing::ValuesIn(count_cases),
                         [](const auto& one) { return std::string(one.param.function); });

// Failures, with the tasks used before them

struct FailureCase {
  const char* name;
  std::string text;
  std::string message;
  Tasks used_tasks = {};
};
class BadVectorExpression : public TestInTree<Tree, FailureCase> {};

TEST_P(BadVectorExpression, Fails) {
  EvalContext context;
  EXPECT_EQ(failure_of([&] { evaluate_vector_expression(GetParam().text, context); }),
            GetParam().message);
  EXPECT_EQ(context.used_tasks(), GetParam().used_tasks);
}

const std::string empty_reference = "empty atom vector reference";
const std::string must_use = "atom vector reference must use task:prop or task.atoms[].prop: ";
const std::string no_match = "atomvec glob pattern matched no task directories: ";
const std::string nope = "task 'nope' does not contain atom vector 'q'";

const std::vector<FailureCase> reference_failures = {
    {"Empty", "", empty_reference},
    {"Spaces", " \t\r\n", empty_reference},
    {"EmptyQuotes", "''", empty_reference},
    {"SpacesInQuotes", "' '", empty_reference},
    {"NoColon", "charge", must_use + "charge"},
    {"TrimmedTextIsNamed", " charge\n", must_use + "charge"},
    {"UnquotedTextIsNamed", "' charge '", must_use + " charge "},
    {"Number", "1.5", must_use + "1.5"},
    {"TaskKey", "@a.charge", must_use + "@a.charge"},
    {"EmptyProperty", "a:", "atomvec target property cannot be empty"},
    {"BadProperty", "a:b c", "atomvec property contains an unsafe character: b c"},
    {"MissingTask", "nope:q", nope, {"nope"}},
    {"MissingProperty", "a:r", "task 'a' does not contain atom vector 'r'", {"a"}},
    {"BareGlobIsNotExpanded", "t*:q", "task 't*' does not contain atom vector 'q'", {"t*"}},
    {"BadValue", "bad:q", "bad:q atom 2 is not a finite number: nan", {"bad"}},
    {"OtherCount",
     "count:q",
     "task 'count' vector 'q' length 2 does not match atom_count 3",
     {"count"}},
    {"OtherGeometry",
     "geometry:q",
     "task 'geometry' vector 'q' length 2 does not match atom_count 1",
     {"geometry"}},
    {"QuotedCallIsAReference",
     "'neg(a:q)'",
     "task 'neg(a' does not contain atom vector 'q)'",
     {"neg(a"}},
    {"Operator",
     "neg(a:q)+neg(b:q)",
     "task 'neg(a' does not contain atom vector 'q)+neg(b:q)'",
     {"neg(a"}},
    {"ParenthesesAreAReference", "(a:q)", "task '(a' does not contain atom vector 'q)'", {"(a"}},
    {"CallNotClosed", "mean(a:q", "task 'mean(a' does not contain atom vector 'q'", {"mean(a"}},
    {"Unbalanced", "mean((a:q)", "unbalanced function expression: mean((a:q)"},
    {"UnbalancedQuote", "neg('a:q)", "unbalanced function expression: neg('a:q)"},
    {"UnbalancedTrimmed", " neg((a:q) ", "unbalanced function expression: neg((a:q)"},
    {"UnknownFunction", "foo(a:q)", "unsupported atom vector function: foo"},
    {"UnknownFunctionIsLowerCased", "Foo(a:q)", "unsupported atom vector function: foo"},
    {"UnknownFunctionIsNotEvaluated", "max(nope:q)", "unsupported atom vector function: max"},
    {"UnknownFunctionOfNothing", "min()", "unsupported atom vector function: min"},
    {"UnknownFunctionNested", "neg(foo(nope:q))", "unsupported atom vector function: foo"},
    {"SumIsNoVector", "sum(a:q)", "unsupported atom vector function: sum"},
    {"NumberAsFunction", "2(a:q)", "unsupported atom vector function: 2"},
};
INSTANTIATE_TEST_SUITE_P(References, BadVectorExpression, testing::ValuesIn(reference_failures),
                         [](const auto& one) { return std::string(one.param.name); });

const std::vector<FailureCase> sum_failures = {
    {"MeanOfSpaces", "mean( )", "mean() expects at least one vector argument"},
    {"MeanOfEmptyPiece", "mean(,)", empty_reference},
    {"MeanOfEmptyQuotes", "mean('')", empty_reference},
    {"EmptyPieceFirst", "mean(,a:q)", empty_reference},
    {"EmptyPieceInTheMiddle", "add(a:q,,b:q)", empty_reference, {"a"}},
    {"Lengths", "add(a:q, quad:q)", "add() requires equal vector lengths: 3 vs 4", {"a", "quad"}},
    {"LengthsBeforeTheNextArgument",
     "mean(a:q, quad:q, nope:q)",
     "mean() requires equal vector lengths: 3 vs 4",
     {"a", "quad"}},
    {"LengthsOfTheRunningSum",
     "mean(a:q, b:q, t1:q)",
     "mean() requires equal vector lengths: 3 vs 2",
     {"a", "b", "t1"}},
    {"LeftToRight", "add(a:q, nope:q, bad:q)", nope, {"a", "nope"}},
    {"GlobAmongOthersIsNotExpanded",
     "add(t*:q, a:q)",
     "task 't*' does not contain atom vector 'q'",
     {"t*"}},
    {"GlobWithoutMatch", "mean(zz*:q)", no_match + "zz*"},
    {"GlobWithoutMatchInAdd", "add('zz?:q')", no_match + "zz?"},
    {"GlobLengths", "add(m*:q)", "add() requires equal vector lengths: 2 vs 3", {"m1", "m2"}},
    {"GlobLengthsInMean",
     "mean(m*:q)",
     "mean() requires equal vector lengths: 2 vs 3",
     {"m1", "m2"}},
    {"GlobLoad", "add(g*:q)", "g2:q atom 1 is not a finite number: abc", {"g1", "g2"}},
    {"GlobProperty", "mean(t*:r)", "task 't1' does not contain atom vector 'r'", {"t1"}},
    {"GlobReference", "mean(t*)", must_use + "t*"},
    {"SingleReferenceWithoutColon", "mean(charge)", must_use + "charge"},
    {"SingleReferenceToNothing", "mean(nope:q)", nope, {"nope"}},
    {"SingleReferenceToBadValue",
     "add(bad:q)",
     "bad:q atom 2 is not a finite number: nan",
     {"bad"}},
    {"SingleCallThatFails", "mean(neg(nope:q))", nope, {"neg(nope", "nope"}},
    {"SingleUnknownCall", "mean(foo(a:q))", "unsupported atom vector function: foo", {"foo(a"}},
    {"SingleCallWithBadCount",
     "mean(neg(a:q,b:q))",
     "neg() expects one vector argument",
     {"neg(a"}},
    {"SingleQuotedCall",
     "mean('neg(a:q)')",
     "task 'neg(a' does not contain atom vector 'q)'",
     {"neg(a"}},
    {"SingleCallWithGlobIsOnlyAGlob", "mean(neg(t*:q))", no_match + "neg(t*"},
    {"SingleCallWithQuestionMarkIsOnlyAGlob", "add(neg(t?:q))", no_match + "neg(t?"},
    {"SingleCallWithGlobOfItsOwn", "mean(wmean(t*:q, w))",
     "atomvec property contains an unsafe character: q, w)"},
    {"SingleCallWithWildcardInProperty",
     "mean(neg(a:q*))",
     "task 'neg(a' does not contain atom vector 'q*)'",
     {"neg(a"}},
    {"SingleCallWithWildcardNearItsEnd",
     "mean(sub(a:q,neg(b:q*)))",
     "task 'sub(a' does not contain atom vector 'q,neg(b:q*))'",
     {"sub(a"}},
    {"SingleQuotedCallWithGlob", "mean('neg(t*:q)')", no_match + "neg(t*"},
};
INSTANTIATE_TEST_SUITE_P(Sums, BadVectorExpression, testing::ValuesIn(sum_failures),
                         [](const auto& one) { return std::string(one.param.name); });

const std::vector<FailureCase> function_failures = {
    {"FirstWithoutMatch", "first(zz*:q)", no_match + "zz*"},
    {"FirstOfMissingTask", "first(nope:q)", nope, {"nope"}},
    {"FirstOfCall", "first(neg(a:q))", "task 'neg(a' does not contain atom vector 'q)'", {"neg(a"}},
    {"FirstHasNoSecondChance", "first(m*:r)", "task 'm1' does not contain atom vector 'r'", {"m1"}},
    {"FirstOfEmptyPiece", "first(,)", empty_reference},
    {"SubLengths",
     "sub(a:q, quad:q)",
     "sub() requires equal vector lengths: 3 vs 4",
     {"a", "quad"}},
    {"SubFirstComesFirst", "sub(nope:q, bad:q)", nope, {"nope"}},
    {"SubSecondFails", "sub(a:q, nope:q)", nope, {"a", "nope"}},
    {"SubTrailingComma", "sub(a:q,)", "sub() expects exactly two vector arguments"},
    {"SubEmptyPiece", "sub(,a:q)", empty_reference},
    {"ScaleVectorComesFirst", "scale(nope:q, @nokey)", nope, {"nope"}},
    {"ScaleScalarFails", "scale(a:q, @nokey)", "task '.' does not contain scalar 'nokey'", {"a"}},
    {"ScaleByLiteralInfinity",
     "scale(a:q, inf)",
     "scalar literal is not a finite number: inf",
     {"a"}},
    {"ScaleByQuotedNumber", "scale(a:q, '2')", "unsupported scalar expression: '2'", {"a"}},
    {"ScaleByOperator", "mul(a:q,  1+2 )", "unsupported scalar expression: 1+2", {"a"}},
    {"ScaleByKey", "mul(a:q, charge)", "unsupported scalar expression: charge", {"a"}},
    {"ScaleByEmptyPiece", "scale(a:q,,)", "empty scalar expression", {"a"}},
    {"ScaleOfGlob", "scale(t*:q, 2)", "task 't*' does not contain atom vector 'q'", {"t*"}},
    {"ScaleArgumentsInOtherOrder", "scale(2, a:q)", must_use + "2"},
    {"NegOfMissingTask", "neg(nope:q)", nope, {"nope"}},
    {"AbsOfMissingTask", "abs(nope:q)", nope, {"nope"}},
    {"ClipLimits", "clip(a:q, 1, 0)", "clip() min cannot be greater than max", {"a"}},
    {"ClipLimitsAfterAllArguments",
     "clip(a:q, 1, @nokey)",
     "task '.' does not contain scalar 'nokey'",
     {"a"}},
    {"ClipVectorComesFirst", "clip(nope:q, @nokey, @nokey)", nope, {"nope"}},
    {"ClipMinComesSecond",
     "clip(a:q, @nomin, @nomax)",
     "task '.' does not contain scalar 'nomin'",
     {"a"}},
    {"ClipMaxComesThird",
     "clip(a:q, @low, @nomax)",
     "task '.' does not contain scalar 'nomax'",
     {"a"}},
    {"ClipLiteralInfinity",
     "clip(a:q, -inf, inf)",
     "scalar literal is not a finite number: -inf",
     {"a"}},
    {"NameIsLowerCased", "Weighted_SUM(a:q)",
     "weighted_sum() expects a vector glob and a weight key/expression"},
    {"NestedCountInItsTurn",
     "add(a:q, sub(b:q))",
     "sub() expects exactly two vector arguments",
     {"a"}},
    {"NestedUnknownFunctionInItsTurn",
     "add(a:q, Foo(b:q))",
     "unsupported atom vector function: foo",
     {"a"}},
    {"OuterCountBeforeNestedCount", "neg(sub(a:q), b:q)", "neg() expects one vector argument"},
    {"RenormTargetComesFirst", "renorm(nope:q, @nokey)",
     "task '.' does not contain scalar 'nokey'"},
    {"RenormTargetIsEvaluatedFirst", "renorm(nope:q, sum(a:q))", nope, {"a", "nope"}},
    {"RenormalizeVectorFails", "renormalize(nope:q, 0)", nope, {"nope"}},
};
INSTANTIATE_TEST_SUITE_P(Functions, BadVectorExpression, testing::ValuesIn(function_failures),
                         [](const auto& one) { return std::string(one.param.name); });

// Failures of all weighted functions; F is the function's name

const std::vector<FailureCase> weighted_failures = {
    {"NoMatch", "F(zz*:q, w)", no_match + "zz*"},
    {"NoMatchBeforeEmptyWeight", "F(zz*:q, '')", no_match + "zz*"},
    {"BadReference", "F(t*, w)", must_use + "t*"},
    {"NestedCallIsAReference",
     "F(neg(a:q), 1)",
     "task 'neg(a' does not contain atom vector 'q)'",
     {"neg(a"}},
    {"EmptyWeight", "F(t*:q, '')", "F() cannot use an empty weight expression"},
    {"EmptyDoubleQuotes", "F(t*:q, \"\")", "F() cannot use an empty weight expression"},
    {"EmptyPiece", "F(t*:q,,)", "F() cannot use an empty weight expression"},
    {"EmptyWeightBeforeVector", "F(nope:q, '')", "F() cannot use an empty weight expression"},
    {"TrailingCommaIsNoWeight", "F(t*:q, )",
     "F() expects a vector glob and a weight key/expression"},
    {"SpacesInQuotes", "F(t*:q, '  ')", "empty scalar expression"},
    {"LiteralInfinity", "F(t*:q, inf)", "F() scalar literal is not a finite number: inf"},
    {"LiteralNan", "F(t*:q, nan)", "F() scalar literal is not a finite number: nan"},
    {"LiteralTooLarge", "F(t*:q, 1e999)", "F() scalar literal is not a finite number: 1e999"},
    {"LiteralAsQuoted", "F(t*:q, ' inf ')", "F() scalar literal is not a finite number:  inf "},
    {"MissingKey", "F(t*:q, nokey)", "task 't1' does not contain scalar 'nokey' for F()"},
    {"MissingKeyWithAtSign", "F(t*:q, @nokey)",
     "task 't1' does not contain scalar 'nokey' for F()"},
    {"MissingKeyOfPath", "F(calc/s*:q, nokey)",
     "task 'calc/s1' does not contain scalar 'nokey' for F()"},
    {"KeysAreCaseSensitive", "F(t*:q, W)", "task 't1' does not contain scalar 'W' for F()"},
    {"KeyAfterAtSignIsNotTrimmed", "F(t*:q, @ w)",
     "task 't1' does not contain scalar ' w' for F()"},
    {"AtSignOnly", "F(t*:q, @)", "F() scalar key cannot be empty"},
    {"AtSignAndSpace", "F(t*:q, '@ ')", "F() scalar key cannot be empty"},
    {"AtSignAndDot", "F(t*:q, @.)", "task '' does not contain scalar ''"},
    {"CallAfterAtSignIsAKey", "F(t*:q, @sum(a:q))",
     "task 't1' does not contain scalar 'sum(a:q)' for F()"},
    {"BadKeyValue", "F(t*:q, bad)", "F() t1.bad is not a finite number: abc"},
    {"BadKeyValueAfterAtSign", "F(t*:q, @bad)", "F() t1.bad is not a finite number: abc"},
    {"MissingKeyOfOneTask", "F(t*:q, @a.nokey)", "task 'a' does not contain scalar 'nokey'"},
    {"BadValueOfOneTask", "F(t*:q, @bad.key)", "@bad.key is not a finite number: abc"},
    {"Operator", "F(t*:q, 1+2)", "unsupported scalar expression: 1+2"},
    {"OperatorAsQuoted", "F(t*:q, ' 1+2 ')", "unsupported scalar expression:  1+2 "},
    {"OtherCall", "F(t*:q, max(a:q))", "unsupported scalar expression: max(a:q)"},
    {"SumOfTwo", "F(t*:q, sum(a:q, b:q))", "sum() expects one vector argument"},
    {"SumThatFails", "F(t*:q, sum(nope:q))", nope, {"nope"}},
    {"Unbalanced", "F(t*:q, 'sum((a:q)')", "unbalanced function expression: sum((a:q)"},
    {"InfiniteSum",
     "F(t*:q, sum(large:q))",
     "F() got a non-finite weight for task 't1'",
     {"large"}},
    {"InfiniteSumNamesTheReference",
     "F(../t*:q, sum(large:q))",
     "F() got a non-finite weight for task '../t1'",
     {"large"}},
    {"NanSum",
     "F(t1:q, sum(sub(mul(large:q, 10), mul(large:q, 10))))",
     "F() got a non-finite weight for task 't1'",
     {"large"}},
    {"NonFiniteWeightBeforeVector",
     "F(nope:q, sum(large:q))",
     "F() got a non-finite weight for task 'nope'",
     {"large"}},
    {"WeightBeforeVector", "F(p2:q, w)", "task 'p2' does not contain scalar 'w' for F()"},
    {"VectorBeforeNextWeight", "F(p*:q, w)", "task 'p1' does not contain atom vector 'q'", {"p1"}},
    {"NextWeightBeforeNextVector",
     "F(r*:q, w)",
     "task 'r2' does not contain scalar 'w' for F()",
     {"r1"}},
    {"Lengths", "F(m*:q, w)", "F() requires equal vector lengths: 2 vs 3", {"m1", "m2"}},
    {"LengthsWithCommonWeight",
     "F(m*:q, 1)",
     "F() requires equal vector lengths: 2 vs 3",
     {"m1", "m2"}},
    {"BadVector", "F(g*:q, 1)", "g2:q atom 1 is not a finite number: abc", {"g1", "g2"}},
};

class BadWeighted : public TestInTree<Tree, FailureCase> {};

std::string with_name(std::string text, const std::string& function) {
  for (auto at = text.find("F("); at != std::string::npos; at = text.find("F(")) {
    text.replace(at, 1, function);
  }
  return text;
}

TEST_P(BadWeighted, Fails) {
  for (const char* function : {"wmean", "weighted_mean", "wavg", "wsum", "weighted_sum"}) {
    const std::string text = with_name(GetParam().text, function);
    EvalContext context;
    EXPECT_EQ(failure_of([&] { evaluate_vector_expression(text, context); }),
              with_name(GetParam().message, function));
    EXPECT_EQ(context.used_tasks(), GetParam().used_tasks) << text;
  }
}
INSTANTIATE_TEST_SUITE_P(Texts, BadWeighted, testing::ValuesIn(weighted_failures),
                         [](const auto& one) { return std::string(one.param.name); });

const std::vector<FailureCase> total_failures = {
    {"ZeroLiteral",
     "F(t*:q, 0)",
     "F() cannot normalize zero/non-finite total weight",
     {"t1", "t2"}},
    {"NegativeZeroLiteral",
     "F(t*:q, -0)",
     "F() cannot normalize zero/non-finite total weight",
     {"t1", "t2"}},
    {"WeightsThatCancel",
     "F(t*:q, opposite)",
     "F() cannot normalize zero/non-finite total weight",
     {"t1", "t2"}},
    {"TotalInTaskOrder",
     "F(o*:q, w)",
     "F() cannot normalize zero/non-finite total weight",
     {"o1", "o2", "o3"}},
    {"TotalOverflows",
     "F(t*:q, 1e308)",
     "F() cannot normalize zero/non-finite total weight",
     {"t1", "t2"}},
};
class BadTotalWeight : public TestInTree<Tree, FailureCase> {};

TEST_P(BadTotalWeight, FailsInMeansOnly) {
  for (const char* function : {"wmean", "weighted_mean", "wavg"}) {
    const std::string text = with_name(GetParam().text, function);
    EvalContext context;
    EXPECT_EQ(failure_of([&] { evaluate_vector_expression(text, context); }),
              with_name(GetParam().message, function));
    EXPECT_EQ(context.used_tasks(), GetParam().used_tasks) << text;
  }
  for (const char* function : {"wsum", "weighted_sum"}) {
    const std::string text = with_name(GetParam().text, function);
    EvalContext context;
    EXPECT_EQ(failure_of([&] { evaluate_vector_expression(text, context); }), "(no failure)");
  }
}
INSTANTIATE_TEST_SUITE_P(Texts, BadTotalWeight, testing::ValuesIn(total_failures),
                         [](const auto& one) { return std::string(one.param.name); });

// Eleven bytes make a weight text an expression; with any other it is a key.
TEST(WeightBytes, DecideBetweenKeyAndExpression) {
  const Tree tree;
  const std::string not_in_a_key = " \t\r\n():,+*/";
  for (int value = 1; value < 256; ++value) {
    const char c = static_cast<char>(value);
    if (c == '\'' || c == '\\') {
      continue;  // these can't be put between single quotes as they are
    }
    const std::string weight = "z"s + c + "z";
    const std::string text = "wsum(t1:q, '" + weight + "')";
    const bool is_expression = not_in_a_key.find(c) != std::string::npos;
    EvalContext context;
    EXPECT_EQ(failure_of([&] { evaluate_vector_expression(text, context); }),
              is_expression ? "unsupported scalar expression: " + weight
                            : "task 't1' does not contain scalar '" + weight + "' for wsum()")
        << "byte " << value;
  }
}

// After '@', only a dot makes it an expression.
TEST(WeightBytes, DecideAfterTheAtSign) {
  const Tree tree;
  for (int value = 1; value < 256; ++value) {
    const char c = static_cast<char>(value);
    if (c == '\'' || c == '\\') {
      continue;
    }
    const std::string weight = "z"s + c + "z";
    const std::string text = "wsum(t1:q, '@" + weight + "')";
    EvalContext context;
    EXPECT_EQ(failure_of([&] { evaluate_vector_expression(text, context); }),
              c == '.' ? "task 'z' does not contain scalar 'z'"
                       : "task 't1' does not contain scalar '" + weight + "' for wsum()")
        << "byte " << value;
  }
}

TEST(GlobThatCannotBeExamined, FailsWithWhatTheSystemSays) {
  const TaskTree tree;
  tree.add_task("t1", "w=1\n" + atom_lines("q", {"1"}));
  tree.add_link("loop", "loop");
  const auto error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  for (const std::string text : {"mean(t*:q)", "add(t*:q)", "first(t*:q)", "wmean(t*:q, w)"}) {
    EvalContext context;
    EXPECT_THROW(evaluate_vector_expression(text, context), std::filesystem::filesystem_error);
    EXPECT_THAT(failure_of([&] { evaluate_vector_expression(text, context); }),
                testing::HasSubstr(error.message()));
  }
}

TEST(SameTask, IsReadOnceInOneContext) {
  const TaskTree tree;
  tree.add_task("a", atom_lines("q", {"1"}));
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression("a:q", context), exactly({1}));
  tree.add_task("a", atom_lines("q", {"2"}));
  EXPECT_THAT(evaluate_vector_expression("add(a:q, a:q)", context), exactly({2}));
  EXPECT_THAT(evaluate_vector_expression("./a:q", context), exactly({2}));  // another text
  EXPECT_EQ(context.used_tasks(), (Tasks{"a", "./a"}));
}

}  // namespace
}  // namespace vqvec
