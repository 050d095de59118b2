#include "eval/scalar_expression.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "eval/vector_expression.hpp"
#include "tests/support/exactly.hpp"
#include "tests/support/failure.hpp"
#include "tests/support/task_tree.hpp"
#include "tests/support/test_in_tree.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;
using Tasks = std::vector<std::string_view>;

class Tree : public TaskTree {
 public:
  Tree() {
    add_task("here", "charge=-1\n.dotted=8\nx y=9\n" + atom_lines("q", {"7", "8"}));
    add_task("scrf",
             "charge=0.5\nx.y=4\nx=3\nblank= 6\nbad=abc\nempty=\ninfinite=inf\nhuge=1e999\n" +
                 atom_lines("q", {"1", "2", "3"}));
    add_task("t1", atom_lines("q", {"1", "2"}));
    add_task("t2", atom_lines("q", {"3", "6"}));
    add_task("large", atom_lines("q", {"1e308", "1e308"}));
    add_task("order", atom_lines("q", {"1e16", "1", "-1e16"}));
    add_task("zero", atom_lines("q", {"-0"}));
    add_task("bad", atom_lines("q", {"1", "x"}));
  }
};

struct ValueCase {
  const char* name;
  std::string text;
  double expected;
  Tasks used_tasks = {};
};
const std::vector<ValueCase> value_cases = {
    // Literals
    {"Number", "2.5", 2.5},
    {"SpacesAroundNumber", " \t\r\n2.5\n\r\t ", 2.5},
    {"NegativeExponent", "-1e-3", -0.001},
    {"LeadingPlus", "+2", 2},
    {"Hexadecimal", "0x10", 16},
    {"NegativeZero", "-0", -0.0},
    {"TooSmallIsZero", "1e-400", 0.0},
    {"VerticalTabBeforeNumber", "\v1", 1},
    // Sums
    {"Sum", "sum(scrf:q)", 6, {"scrf"}},
    {"SumInAnyCase", "SUM(scrf:q)", 6, {"scrf"}},
    {"SumWithSpaces", " Sum ( scrf : q ) ", 6, {"scrf"}},
    {"SumOfQuotedReference", "sum('scrf:q')", 6, {"scrf"}},
    {"SumOfCall", "sum(neg(scrf:q))", -6, {"scrf"}},
    {"SumOfGlobbingCall", "sum(mean(t*:q))", 6, {"t1", "t2"}},
    {"SumOfWholeCall", "sum(add(t1:q, t2:q))", 12, {"t1", "t2"}},
    {"SumWithinSum", "sum(scale(scrf:q, sum(t1:q)))", 18, {"scrf", "t1"}},
    {"SumWithTrailingComma", "sum(scrf:q,)", 6, {"scrf"}},
    {"SumOfTheWorkingDirectory", "sum(:q)", 15, {""}},
    {"SumFromFirstToLast", "sum(order:q)", 0, {"order"}},
    {"SumStartsAtPositiveZero", "sum(zero:q)", 0.0, {"zero"}},
    {"SumMayOverflow", "sum(large:q)", std::numeric_limits<double>::infinity(), {"large"}},
    {"SumMayBeNan",
     "sum(sub(scale(large:q, 10), scale(large:q, 10)))",
     std::numeric_limits<double>::quiet_NaN(),
     {"large"}},
    {"SumOfMeanOfNestedCall", "sum(mean(neg(scrf:q)))", -6, {"neg(scrf", "scrf"}},
    // Task keys
    {"OwnKey", "@charge", -1},
    {"OwnKeyWithSpacesAround", " \t@charge\n", -1},
    {"OwnKeyWithSpaceInside", "@x y", 9},
    {"TaskKey", "@scrf.charge", 0.5},
    {"KeyBeginsAfterFirstDot", "@scrf.x.y", 4},
    {"ShorterKeyOfThatTask", "@scrf.x", 3},
    {"ValueWithLeadingSpace", "@scrf.blank", 6},
    {"PerAtomKey", "@scrf.atoms.2.q", 2},
    {"EmptyTaskIsTheWorkingDirectory", "@.charge", -1},
    {"KeyThatBeginsWithADot", "@..dotted", 8},
    {"SelfTask", "@self.charge", -1},
    {"CurrentTaskInAnyCase", "@Current.charge", -1},
    {"SpaceAfterAtSign", "@ scrf.charge", 0.5},
    {"SpaceBeforeDot", "@scrf .charge", 0.5},
};
class ScalarExpression : public TestInTree<Tree, ValueCase> {};

TEST_P(ScalarExpression, HasThisValue) {
  EvalContext context;
  EXPECT_PRED2(is_same_number, evaluate_scalar_expression(GetParam().text, context),
               GetParam().expected);
  EXPECT_EQ(context.used_tasks(), GetParam().used_tasks);
}
INSTANTIATE_TEST_SUITE_P(Texts, ScalarExpression, testing::ValuesIn(value_cases),
                         [](const auto& one) { return std::string(one.param.name); });

struct FailureCase {
  const char* name;
  std::string text;
  std::string message;
  Tasks used_tasks = {};
};
const std::string unsupported = "unsupported scalar expression: ";
const std::string one_vector = "sum() expects one vector argument";

const std::vector<FailureCase> failure_cases = {
    {"Empty", "", "empty scalar expression"},
    {"SpacesOnly", " \t\r\n", "empty scalar expression"},
    // Literals
    {"Infinity", "inf", "scalar literal is not a finite number: inf"},
    {"NegativeInfinity", "-Infinity", "scalar literal is not a finite number: -Infinity"},
    {"TrimmedInfinityIsNamed", " inf\n", "scalar literal is not a finite number: inf"},
    {"Nan", "nan", "scalar literal is not a finite number: nan"},
    {"NanThatLooksLikeACall", "nan(1)", "scalar literal is not a finite number: nan(1)"},
    {"TooLarge", "1e999", "scalar literal is not a finite number: 1e999"},
    // Sums
    {"SumOfNothing", "sum()", one_vector},
    {"SumOfSpaces", "sum( )", one_vector},
    {"SumOfTwo", "sum(scrf:q, t1:q)", one_vector},
    {"SumOfTwoIsNotEvaluated", "sum(nope:q, nope:q)", one_vector},
    {"SumOfEmptyPieces", "sum(,,)", one_vector},
    {"SumOfOneEmptyPiece", "sum(,)", "empty atom vector reference"},
    {"SumOfBareGlob", "sum(t*:q)", "task 't*' does not contain atom vector 'q'", {"t*"}},
    {"SumOfMissingTask", "sum(nope:q)", "task 'nope' does not contain atom vector 'q'", {"nope"}},
    {"SumOfBadVector", "sum(bad:q)", "bad:q atom 2 is not a finite number: x", {"bad"}},
    {"SumOfSum", "sum(sum(scrf:q))", "unsupported atom vector function: sum"},
    {"SumOfNumber", "sum(1)", "atom vector reference must use task:prop or task.atoms[].prop: 1"},
    {"Unbalanced", "sum((scrf:q)", "unbalanced function expression: sum((scrf:q)"},
    {"UnbalancedOtherName", "max((a:q)", "unbalanced function expression: max((a:q)"},
    // Task keys
    {"MissingOwnKey", "@nokey", "task '.' does not contain scalar 'nokey'"},
    {"MissingTaskKey", "@scrf.nokey", "task 'scrf' does not contain scalar 'nokey'"},
    {"MissingTask", "@nope.charge", "task 'nope' does not contain scalar 'charge'"},
    {"KeysAreCaseSensitive", "@scrf.Charge", "task 'scrf' does not contain scalar 'Charge'"},
    {"AtSignOnly", "@", "task '.' does not contain scalar ''"},
    {"AtSignAndDot", "@.", "task '' does not contain scalar ''"},
    {"NoKeyAfterDot", "@scrf.", "task 'scrf' does not contain scalar ''"},
    {"TaskIsNotTrimmedInMessage", "@ scrf .nokey", "task ' scrf ' does not contain scalar 'nokey'"},
    {"KeyIsNotTrimmed", "@scrf. charge", "task 'scrf' does not contain scalar ' charge'"},
    {"OwnKeyIsNotTrimmed", "@ charge", "task '.' does not contain scalar ' charge'"},
    {"VectorIsNoScalar", "@scrf.q", "task 'scrf' does not contain scalar 'q'"},
    {"FirstDotSplitsPerAtomKey", "@atoms.1.q", "task 'atoms' does not contain scalar '1.q'"},
    {"ParentPathIsSplitAtItsDot", "@../scrf.charge",
     "task '' does not contain scalar './scrf.charge'"},
    {"BadValue", "@scrf.bad", "@scrf.bad is not a finite number: abc"},
    {"TrimmedExpressionIsNamed", " @scrf.bad\t", "@scrf.bad is not a finite number: abc"},
    {"EmptyValue", "@scrf.empty", "@scrf.empty is not a finite number: "},
    {"InfiniteValue", "@scrf.infinite", "@scrf.infinite is not a finite number: inf"},
    {"TooLargeValue", "@scrf.huge", "@scrf.huge is not a finite number: 1e999"},
    {"OperatorAfterKey", "@charge+1", "task '.' does not contain scalar 'charge+1'"},
    {"CallAfterAtSign", "@sum(scrf:q)", "task '.' does not contain scalar 'sum(scrf:q)'"},
    // Anything else
    {"Operator", "1+2", unsupported + "1+2"},
    {"UntrimmedTextIsNamed", " 1+2\n", unsupported + " 1+2\n"},
    {"BareKey", "charge", unsupported + "charge"},
    {"Reference", "scrf:q", unsupported + "scrf:q"},
    {"OtherCall", "max(scrf:q)", unsupported + "max(scrf:q)"},
    {"OtherCallUntrimmed", " Max(scrf:q) ", unsupported + " Max(scrf:q) "},
    {"OtherCallIsNotEvaluated", "neg(nope:q)", unsupported + "neg(nope:q)"},
    {"MeanIsNoScalar", "mean(scrf:q)", unsupported + "mean(scrf:q)"},
    {"SumAndMore", "sum(scrf:q)+1", unsupported + "sum(scrf:q)+1"},
    {"TwoSums", "sum(scrf:q)+sum(t1:q)", unsupported + "sum(scrf:q)+sum(t1:q)"},
    {"NegativeSum", "-sum(scrf:q)", unsupported + "-sum(scrf:q)"},
    {"SumNotClosed", "sum(scrf:q", unsupported + "sum(scrf:q"},
    {"WordSum", "sum", unsupported + "sum"},
    {"Parentheses", "(1)", unsupported + "(1)"},
    {"NumberAsName", "2(scrf:q)", unsupported + "2(scrf:q)"},
    {"QuotedNumber", "'2.5'", unsupported + "'2.5'"},
    {"QuotedSum", "'sum(scrf:q)'", unsupported + "'sum(scrf:q)'"},
    {"QuotedKey", "\"@charge\"", unsupported + "\"@charge\""},
    {"Comma", "1,5", unsupported + "1,5"},
    {"VerticalTabAfterNumber", "1\v", unsupported + "1\v"},
    {"VerticalTabBeforeKey", "\v@charge", unsupported + "\v@charge"},
    {"Utf8", "\xe7\x94\xb5", unsupported + "\xe7\x94\xb5"},
};
class BadScalarExpression : public TestInTree<Tree, FailureCase> {};

TEST_P(BadScalarExpression, Fails) {
  EvalContext context;
  EXPECT_EQ(failure_of([&] { evaluate_scalar_expression(GetParam().text, context); }),
            GetParam().message);
  EXPECT_EQ(context.used_tasks(), GetParam().used_tasks);
}
INSTANTIATE_TEST_SUITE_P(Texts, BadScalarExpression, testing::ValuesIn(failure_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ScalarTasks, AreReadOnceForAllExpressions) {
  const TaskTree tree;
  tree.add_task("scrf", "charge=1\n" + atom_lines("q", {"1", "2"}));
  EvalContext context;
  EXPECT_EQ(evaluate_scalar_expression("@scrf.charge", context), 1);
  tree.add_task("scrf", "charge=2\n" + atom_lines("q", {"5"}));
  EXPECT_EQ(evaluate_scalar_expression("@scrf.charge", context), 1);
  EXPECT_EQ(evaluate_scalar_expression("sum(scrf:q)", context), 3);
  EXPECT_THAT(evaluate_vector_expression("scrf:q", context), exactly({1, 2}));
}

}  // namespace
}  // namespace vqvec
