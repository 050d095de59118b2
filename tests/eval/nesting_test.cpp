// Statements nested deeper or longer than anybody types, but a script may generate them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "eval/scalar_expression.hpp"
#include "eval/vector_expression.hpp"
#include "tests/support/exactly.hpp"
#include "tests/support/failure.hpp"
#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

using Tasks = std::vector<std::string_view>;

std::string repeat(const std::string& text, std::size_t count) {
  std::string repeated;
  for (std::size_t i = 0; i < count; ++i) {
    repeated += text;
  }
  return repeated;
}

std::string nested(const std::string& opening, std::size_t levels, const std::string& innermost,
                   const std::string& closing) {
  return repeat(opening, levels) + innermost + repeat(closing, levels);
}

struct NestingCase {
  const char* name;
  std::string opening;
  std::size_t levels;
  std::string closing;
  AtomVector expected;  // with a:q = [0.25, 0.75] inside, which adds up to 1
};
const std::vector<NestingCase> nesting_cases = {
    {"Neg", "neg(", 1'000, ")", {0.25, 0.75}},
    {"NegOdd", "neg(", 999, ")", {-0.25, -0.75}},
    {"Abs", "abs( ", 1'000, " )", {0.25, 0.75}},
    {"Mean", "mean(", 1'000, ")", {0.25, 0.75}},
    {"Add", "add(", 1'000, ")", {0.25, 0.75}},
    {"MeanWithSpaces", "mean( ", 1'000, " )", {0.25, 0.75}},
    {"MeanOfTwo", "mean(a:q, ", 1'000, ")", {0.25, 0.75}},
    {"AddOfTwo", "add(", 1'000, ", a:q)", {250.25, 750.75}},
    {"Sub", "sub(", 1'000, ", a:q)", {-249.75, -749.25}},
    {"SubFromAnother", "sub(a:q, ", 1'000, ")", {0.25, 0.75}},
    {"ScaleVector", "scale(", 1'000, ", -1)", {0.25, 0.75}},
    {"ScaleBySum", "scale(a:q, sum(", 500, "))", {0.25, 0.75}},
    {"WeightBySum", "wsum(a:q, sum(", 500, "))", {0.25, 0.75}},
    {"MeanWeightBySum", "wmean(a:q, sum(", 500, "))", {0.25, 0.75}},
    {"ClipVector", "clip(", 1'000, ", 0, 1)", {0.25, 0.75}},
    {"ClipToSum", "clip(a:q, 0, sum(", 500, "))", {0.25, 0.75}},
    {"Renorm", "renorm(", 1'000, ", 1)", {0.25, 0.75}},
    {"RenormToSum", "renorm(a:q, sum(", 500, "))", {0.25, 0.75}},
    {"ManyFunctions", "neg(add(a:q, abs(sub(a:q, a:q)), neg(", 333, ")))", {-83, -249}},
};
class Nesting : public testing::TestWithParam<NestingCase> {
 protected:
  Nesting() { tree_.add_task("a", atom_lines("q", {"0.25", "0.75"})); }

 private:
  TaskTree tree_;
};

TEST_P(Nesting, IsEvaluated) {
  const auto& [name, opening, levels, closing, expected] = GetParam();
  const std::string text = nested(opening, levels, "a:q", closing);
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression(text, context), exactly(expected));
}
INSTANTIATE_TEST_SUITE_P(Functions, Nesting, testing::ValuesIn(nesting_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(DeepNesting, EntersTheAttemptOfEachLevelIntoTheUsedTasks) {
  const TaskTree tree;
  tree.add_task("a", atom_lines("q", {"1"}));
  const std::string text = nested("mean(", 1'000, "a:q", ")");
  EvalContext context;
  evaluate_vector_expression(text, context);
  ASSERT_EQ(context.used_tasks().size(), 1'000U);
  EXPECT_EQ(context.used_tasks().front(), repeat("mean(", 999) + "a");
  EXPECT_EQ(context.used_tasks()[998], "mean(a");
  EXPECT_EQ(context.used_tasks()[999], "a");
}

TEST(DeepNesting, FailsWithTheMessageOfTheInnermost) {
  const TaskTree tree;
  const std::string text = nested("neg(", 1'000, "nope:q", ")");
  EvalContext context;
  EXPECT_EQ(failure_of([&] { evaluate_vector_expression(text, context); }),
            "task 'nope' does not contain atom vector 'q'");
  EXPECT_EQ(context.used_tasks(), (Tasks{"nope"}));
}

TEST(DeepNesting, IsEvaluatedInScalars) {
  const TaskTree tree;
  tree.add_task("a", atom_lines("q", {"0.25", "0.75"}));
  const std::string text = "sum(" + nested("scale(a:q, sum(", 499, "a:q", "))") + ")";
  EvalContext context;
  EXPECT_EQ(evaluate_scalar_expression(text, context), 1);
}

TEST(DeepNesting, EndsAtAThousandParentheses) {
  const TaskTree tree;
  tree.add_task("a", atom_lines("q", {"1"}));
  const std::string message = "expression is nested more than 1000 parentheses deep";
  for (const std::string opening : {"neg(", "mean(", "foo("}) {
    const std::string text = nested(opening, 1'001, "a:q", ")");
    EvalContext context;
    EXPECT_EQ(failure_of([&] { evaluate_vector_expression(text, context); }), message) << opening;
    EXPECT_EQ(context.used_tasks(), Tasks()) << opening;
  }
  const std::string sum = "sum(" + nested("neg(", 1'000, "a:q", ")") + ")";
  EvalContext context;
  EXPECT_EQ(failure_of([&] { evaluate_scalar_expression(sum, context); }), message);
}

// A quoted weight is an expression of its own, but the parentheses around it are open as well.
TEST(DeepNesting, IncludesTheParenthesesAroundAQuotedWeight) {
  const TaskTree tree;
  tree.add_task("a", atom_lines("q", {"1"}));
  const auto text = [](std::size_t outer, std::size_t inner) {
    const std::string weight = "sum(" + nested("neg(", inner - 1, "a:q", ")") + ")";
    return nested("neg(", outer - 1, "wsum(a:q, '" + weight + "')", ")");
  };
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression(text(501, 499), context), exactly({1}));
  EXPECT_EQ(failure_of([&] { evaluate_vector_expression(text(501, 500), context); }),
            "expression is nested more than 1000 parentheses deep");
}

TEST(NestedWeights, AreEvaluatedOncePerCallAndNotOncePerTask) {
  const TaskTree tree;
  tree.add_task("t1", atom_lines("q", {"1"}));
  tree.add_task("t2", atom_lines("q", {"1"}));
  const std::string text = nested("wsum(t*:q, sum(", 60, "t1:q", "))");
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression(text, context), exactly({1152921504606846976.0}));
  EXPECT_EQ(context.used_tasks(), (Tasks{"t1", "t2"}));
}

TEST(NestedWeights, AreEvaluatedOnceWhenQuoted) {
  const TaskTree tree;
  tree.add_task("t1", atom_lines("q", {"1"}));
  tree.add_task("t2", atom_lines("q", {"1"}));
  const std::string text = "wsum(t*:q, '" + nested("sum(wsum(t*:q, ", 59, "2", "))") + "')";
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression(text, context), exactly({1152921504606846976.0 * 2}));
}

TEST(LongExpressions, TakeFiftyThousandReferences) {
  const TaskTree tree;
  tree.add_task("a", atom_lines("q", {"1", "2"}));
  tree.add_task("b", atom_lines("q", {"3", "4"}));
  const std::string text = "mean(" + repeat("a:q, b:q, ", 25'000) + ")";
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression(text, context), exactly({2, 3}));
  EXPECT_EQ(context.used_tasks(), (Tasks{"a", "b"}));
}

TEST(LongExpressions, TakeFiftyThousandReferencesInSixteenSpellings) {
  const TaskTree tree;
  tree.add_task("here", atom_lines("q", {"1"}));
  std::vector<std::string> spellings;  // all of `self`
  for (unsigned capitals = 0; capitals < 16; ++capitals) {
    std::string task = "self";
    for (std::size_t i = 0; i < task.size(); ++i) {
      task[i] = (capitals >> i) % 2 == 1 ? "SELF"[i] : task[i];
    }
    spellings.push_back(task);
  }
  std::string text = "add(";
  for (std::size_t i = 0; i < 50'000; ++i) {
    text += spellings[i % 16] + ":q,";
  }
  text += ")";
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression(text, context), exactly({50'000}));
  EXPECT_EQ(context.used_tasks(), Tasks(spellings.begin(), spellings.end()));
}

TEST(LongExpressions, TakeAHundredThousandSpaces) {
  const TaskTree tree;
  tree.add_task("a", atom_lines("q", {"1", "2"}));
  const std::string spaces(100'000, ' ');
  const std::string text = spaces + "neg" + spaces + "(" + spaces + "a" + spaces + ":" + spaces +
                           "q" + spaces + ")" + spaces;
  EvalContext context;
  EXPECT_THAT(evaluate_vector_expression(text, context), exactly({-1, -2}));
}

}  // namespace
}  // namespace vqvec
