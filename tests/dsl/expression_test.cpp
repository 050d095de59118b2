#include "dsl/expression.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/dsl/random_calls.hpp"
#include "tests/reference/expression.hpp"
#include "tests/support/expression_node.hpp"
#include "tests/support/failure.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;
using reference::Node;

struct TreeCase {
  const char* name;
  Node expected;  // for its own text
};
const std::vector<TreeCase> tree_cases = {
    {"Empty", {""}},
    {"SpacesOnly", {" \t"}},
    {"Reference", {"a:q"}},
    {"RootKeepsItsSpaces", {" a:q\n"}},
    {"Call", {"f(a)", "f", {{"a"}}}},
    {"RootCallKeepsItsSpaces", {" f( a ) ", "f", {{"a"}}}},
    {"FunctionInLowerCase", {"First_Glob (a)", "first_glob", {{"a"}}}},
    {"NoArguments", {"f()", "f"}},
    {"BlankArguments", {"f( )", "f"}},
    {"EmptyArgument", {"f(,)", "f", {{""}}}},
    {"EmptyLastArgumentIsDropped", {"f(a,)", "f", {{"a"}}}},
    {"TwoArguments", {"f(a, b)", "f", {{"a"}, {"b"}}}},
    {"NestedCalls",
     {"f(g(a, b), h( i() ))",
      "f",
      {{"g(a, b)", "g", {{"a"}, {"b"}}}, {"h( i() )", "h", {{"i()", "i"}}}}}},
    {"SpacesBetweenNameAndParenthesis", {"f (g\t(a))", "f", {{"g\t(a)", "g", {{"a"}}}}}},
    {"SumIsNoCall", {"f(a)+g(b)"}},
    {"TwoPairsAreNoCall", {"f(a)(b)"}},
    {"ArgumentWithOperator", {"f(g(a)+h(b))", "f", {{"g(a)+h(b)"}}}},
    {"ArgumentWithTwoPairs", {"f(g(a)(b))", "f", {{"g(a)(b)"}}}},
    {"ArgumentWithTextAfterCall", {"f(g(a) b)", "f", {{"g(a) b"}}}},
    {"ArgumentWithBadName", {"f(a:g(b))", "f", {{"a:g(b)"}}}},
    {"CallsInsideNoCallAreNotSeen", {"f(a:g(h(b),c),d)", "f", {{"a:g(h(b),c)"}, {"d"}}}},
    {"ArgumentInParentheses", {"f((a))", "f", {{"(a)"}}}},
    {"ArgumentInParenthesesAfterSpace", {"f( (g(a)))", "f", {{"(g(a))"}}}},
    {"QuotedCallIsNone", {"f('g(a)')", "f", {{"'g(a)'"}}}},
    {"QuotedParenthesisBeforeCall", {"f('('g(a))", "f", {{"'('g(a)"}}}},
    {"QuotedComma", {"f('a,b',c)", "f", {{"'a,b'"}, {"c"}}}},
    {"QuotedParenthesisInNestedCall", {"f(g(')'))", "f", {{"g(')')", "g", {{"')'"}}}}}},
    {"EscapedQuoteInNestedCall",
     {R"x(f(g("\")"),a))x", "f", {{R"x(g("\")"))x", "g", {{R"x("\")")x"}}}, {"a"}}}},
    {"VerticalTabIsNotTrimmed", {"f(\vg(a),\f)", "f", {{"\vg(a)"}, {"\f"}}}},
    {"NulInArguments", {"f(g(\0),\0)"s, "f", {{"g(\0)"s, "g", {{"\0"s}}}, {"\0"s}}}},
    {"Utf8", {"f(\xe7\x94\xb5(a))", "f", {{"\xe7\x94\xb5(a)"}}}},
};
class TreeOfText : public testing::TestWithParam<TreeCase> {};

TEST_P(TreeOfText, HasThisShape) {
  const Node& expected = GetParam().expected;
  EXPECT_EQ(copy_of(parse_expression(expected.text)), expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, TreeOfText, testing::ValuesIn(tree_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ParseExpression, TextsAreViewsOfTheText) {
  const std::string text = "f(a, g(b))";
  const Expression root = parse_expression(text);
  EXPECT_EQ(root.text.data(), text.data());
  EXPECT_EQ(root.arguments[1].arguments[0].text.data(), text.data() + 7);
}

TEST(ParseExpression, IsCompleteWhenMoved) {
  const std::string text = "f(a, g(b))";
  Expression first = parse_expression(text);
  const Expression second = std::move(first);
  EXPECT_EQ(copy_of(second), (Node{"f(a, g(b))", "f", {{"a"}, {"g(b)", "g", {{"b"}}}}}));
}

TEST(ParseExpression, FailsForUnbalancedCallsWithTheTrimmedText) {
  const std::string text = " f((a) ";
  EXPECT_EQ(failure_of([&] { parse_expression(text); }), "unbalanced function expression: f((a)");
}

TEST(ParseExpression, IsNotUnbalancedWhenItIsNoCall) {
  const std::string text = "a:f((b)";
  EXPECT_EQ(copy_of(parse_expression(text)), (Node{"a:f((b)"}));
}

// Limits

std::string nested(std::size_t levels) {
  std::string text;
  for (std::size_t level = 0; level < levels; ++level) {
    text += "f(";
  }
  return text + "a" + std::string(levels, ')');
}

TEST(ParseExpressionLimits, TakesAThousandParentheses) {
  const std::string text = nested(1'000);
  const Expression root = parse_expression(text);
  const Expression* expression = &root;
  std::size_t levels = 0;
  while (expression->function == "f" && expression->arguments.size() == 1) {
    expression = &expression->arguments[0];
    ++levels;
  }
  EXPECT_EQ(levels, 1'000U);
  EXPECT_EQ(expression->text, "a");
}

TEST(ParseExpressionLimits, RefusesOneMore) {
  const std::string text = nested(1'001);
  EXPECT_EQ(failure_of([&] { parse_expression(text); }),
            "expression is nested more than 1000 parentheses deep");
}

TEST(ParseExpressionLimits, CountsParenthesesThatAreNoCalls) {
  const std::string text = std::string("f") + std::string(1'001, '(') + std::string(1'001, ')');
  EXPECT_EQ(failure_of([&] { parse_expression(text); }),
            "expression is nested more than 1000 parentheses deep");
}

TEST(ParseExpressionLimits, IncludesTheParenthesesAlreadyOpen) {
  const std::string text = nested(600);
  EXPECT_EQ(parse_expression(text, 400).arguments[0].depth, 401U);
  EXPECT_EQ(failure_of([&] { parse_expression(text, 401); }),
            "expression is nested more than 1000 parentheses deep");
}

TEST(ParseExpressionLimits, DoesNotCountParenthesesInQuotes) {
  const std::string text = "f('" + std::string(30'000, '(') + "')";
  EXPECT_EQ(parse_expression(text).arguments.size(), 1U);
}

TEST(ParseExpressionLimits, DoesNotCountParenthesesSideBySide) {
  std::string text = "f(";
  for (int i = 0; i < 30'000; ++i) {
    text += "g(a),";
  }
  text += ')';
  EXPECT_EQ(parse_expression(text).arguments.size(), 30'000U);
}

TEST(ParseExpressionLimits, ReferenceMayHoldAnyNumberOfParentheses) {
  const std::string text = "a:" + std::string(30'000, '(') + std::string(30'000, ')');
  EXPECT_EQ(parse_expression(text).function, "");
}

TEST(ParseExpressionLimits, TakesAMillionArguments) {
  const std::string text = "f(" + std::string(1'000'000, ',') + ")";
  EXPECT_EQ(parse_expression(text).arguments.size(), 1'000'000U);
}

// Against the plain rules

TEST(RandomTrees, EqualTheLevelByLevelReading) {
  std::mt19937_64 random(17320508);
  int nested_calls = 0;
  int failures = 0;
  for (int i = 0; i < 100'000; ++i) {
    const std::string text =
        i % 3 == 0 ? "f(" + random_call_text(random) + ")" : random_expression(random, 4);
    const std::string failure = failure_of([&] { reference::parse_expression(text); });
    ASSERT_EQ(failure_of([&] { parse_expression(text); }), failure) << "text [" << text << "]";
    if (failure != "(no failure)") {
      ++failures;
      continue;
    }
    const Node tree = copy_of(parse_expression(text));
    ASSERT_EQ(tree, reference::parse_expression(text)) << "text [" << text << "]";
    for (const Node& argument : tree.arguments) {
      nested_calls += argument.arguments.empty() ? 0 : 1;
    }
  }
  EXPECT_GT(nested_calls, 5'000);  // the texts are worth the comparison
  EXPECT_GT(failures, 5'000);
}

}  // namespace
}  // namespace vqvec
