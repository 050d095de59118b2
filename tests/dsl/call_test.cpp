#include "dsl/call.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "dsl/expression.hpp"
#include "tests/dsl/random_calls.hpp"
#include "tests/reference/lexing.hpp"
#include "tests/support/failure.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;
using Pieces = std::vector<std::string>;

// Calls

struct CallCase {
  const char* name;
  std::string text;
  std::string function;
  std::string arguments;
};
const std::vector<CallCase> call_cases = {
    {"Plain", "mean(a:q)", "mean", "a:q"},
    {"NameIsLowerCasedArgumentsAreRaw", "Mean( a:q , B:q )", "mean", " a:q , B:q "},
    {"NoArguments", "f()", "f", ""},
    {"BlankArguments", "f( \t)", "f", " \t"},
    {"SpacesAround", " \t\r\nf(a)\n\r\t ", "f", "a"},
    {"SpacesBeforeParenthesis", "f \t\r\n(a)", "f", "a"},
    {"UnderscoreAndDigits", "First_Glob2(a)", "first_glob2", "a"},
    {"DigitsOnly", "12(a)", "12", "a"},
    {"UnderscoreOnly", "_(a)", "_", "a"},
    {"Nested", "f(g(a),h(b))", "f", "g(a),h(b)"},
    {"ParenthesesOnlyInside", "f((a)(b))", "f", "(a)(b)"},
    {"ParenthesisInSingleQuotes", "f(')')", "f", "')'"},
    {"ParenthesesInDoubleQuotes", "f(\"((\")", "f", "\"((\""},
    {"EscapedQuoteInQuotes", R"x(f("\")"))x", "f", R"x("\")")x"},
    {"EscapedBackslashInQuotes", R"x(f("\\"))x", "f", R"("\\")"},
    {"SingleQuoteInDoubleQuotes", "f(\"'\")", "f", "\"'\""},
    {"BackslashOutsideQuotesIsPlain", "f(\\)", "f", "\\"},
    {"VerticalTabInArguments", "f(\va\f)", "f", "\va\f"},
    {"NulInArguments", "f(\0)"s, "f", "\0"s},
    {"HighBytesInArguments", "f(\xe7\x94\xb5\xff)", "f", "\xe7\x94\xb5\xff"},
    {"AHundredThousandSpaces",
     "f" + std::string(100'000, ' ') + "(" + std::string(100'000, ' ') + ")", "f",
     std::string(100'000, ' ')},
    {"AHundredThousandLevels", "f" + std::string(100'000, '(') + std::string(100'000, ')'), "f",
     std::string(99'999, '(') + std::string(99'999, ')')},
};
class FunctionCallText : public testing::TestWithParam<CallCase> {};

TEST_P(FunctionCallText, IsOneCall) {
  const FunctionCall call = parse_function_call(GetParam().text);
  EXPECT_EQ(call.name, GetParam().function);
  EXPECT_EQ(call.argument_text, GetParam().arguments);
}
INSTANTIATE_TEST_SUITE_P(Texts, FunctionCallText, testing::ValuesIn(call_cases),
                         [](const auto& one) { return std::string(one.param.name); });

struct OtherCase {
  const char* name;
  std::string text;
};
const std::vector<OtherCase> no_calls = {
    {"Empty", ""},
    {"SpacesOnly", " \t\r\n"},
    {"NameOnly", "mean"},
    {"Reference", "a:q"},
    {"NotClosed", "mean(a:q"},
    {"ClosedInTheMiddle", "f(a) b"},
    {"VerticalTabAfterIt", "f(a)\v"},
    {"OnlyClosed", "a)"},
    {"ParenthesesWithoutName", "(a)"},
    {"SpacesInsteadOfAName", "  (a)"},
    {"Operator", "2*f(x)"},
    {"Sum", "f(a)+g(b)"},
    {"TwoPairs", "f(a)(b)"},
    {"OneTooManyClosed", "f(a))"},
    {"ClosedEarlyThenUnbalanced", "f(a)+g((b)"},
    {"ClosedEarlyThenOpenQuote", "f(a)')"},
    {"ColonInName", "a:q(b)"},
    {"PathInName", "../f(a)"},
    {"DotInName", "f.g(a)"},
    {"MinusInName", "f-g(a)"},
    {"SpaceInName", "f g(a)"},
    {"VerticalTabInName", "f\v(a)"},
    {"VerticalTabInsteadOfName", "\v(a)"},
    {"AtInName", "@f(a)"},
    {"QuotedName", "'f'(a)"},
    {"QuotedCall", "'f(a)'"},
    {"QuoteBeforeParenthesis", "'(f(a)"},
    {"NulInName", "f\0g(a)"s},
    {"Utf8InName", "\xc3\xa9(a)"},
    {"BadNameIsNotUnbalanced", "a:f((b)"},
    {"NoNameIsNotUnbalanced", "((a)"},
};
class NoCallText : public testing::TestWithParam<OtherCase> {};

TEST_P(NoCallText, IsNoCall) {
  const FunctionCall call = parse_function_call(GetParam().text);
  EXPECT_EQ(call.name, "");
  EXPECT_EQ(call.argument_text, "");
}
INSTANTIATE_TEST_SUITE_P(Texts, NoCallText, testing::ValuesIn(no_calls),
                         [](const auto& one) { return std::string(one.param.name); });

struct UnbalancedCase {
  const char* name;
  std::string text;
  std::string message;
};
const std::vector<UnbalancedCase> unbalanced_cases = {
    {"OneOpen", "mean((a:q)", "unbalanced function expression: mean((a:q)"},
    {"TextAsPassedIn", " \tf((a)\n", "unbalanced function expression:  \tf((a)\n"},
    {"OpenSingleQuote", "f('a)", "unbalanced function expression: f('a)"},
    {"OpenDoubleQuote", "f(a\")", "unbalanced function expression: f(a\")"},
    {"EscapedClosingQuote", R"(f("a\"))", R"(unbalanced function expression: f("a\"))"},
    {"EscapedClosingSingleQuote", R"(f('a\'))", R"(unbalanced function expression: f('a\'))"},
    {"QuotedClosingParenthesis", "f(')'(a)", "unbalanced function expression: f(')'(a)"},
    {"ManyOpen", "f((((a)", "unbalanced function expression: f((((a)"},
    {"NameIsNotLowerCased", "Mean ((a)", "unbalanced function expression: Mean ((a)"},
};
class UnbalancedText : public testing::TestWithParam<UnbalancedCase> {};

TEST_P(UnbalancedText, Fails) {
  const std::string& text = GetParam().text;
  EXPECT_EQ(failure_of([&] { parse_function_call(text); }), GetParam().message);
}
INSTANTIATE_TEST_SUITE_P(Texts, UnbalancedText, testing::ValuesIn(unbalanced_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(FunctionName, AllowsLettersDigitsAndUnderscore) {
  const std::string allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
  for (int value = 0; value < 256; ++value) {
    const std::string text = "f"s + static_cast<char>(value);
    EXPECT_EQ(is_function_name(text), allowed.find(text[1]) != std::string::npos)
        << "byte " << value;
  }
}

// Arguments

struct SplitCase {
  const char* name;
  std::string text;
  Pieces expected;
};
const std::vector<SplitCase> split_cases = {
    {"Empty", "", {}},
    {"SpacesOnly", " \t\r\n", {}},
    {"One", "a", {"a"}},
    {"Two", "a, b", {"a", "b"}},
    {"PiecesAreTrimmed", " \ta\r\n,\n b ", {"a", "b"}},
    {"EmptyInTheMiddle", "a,,b", {"a", "", "b"}},
    {"SpacesInTheMiddle", "a, \t ,b", {"a", "", "b"}},
    {"EmptyFirst", ",a", {"", "a"}},
    {"EmptyLastIsDropped", "a,", {"a"}},
    {"SpacesLastAreDropped", "a, \t", {"a"}},
    {"CommaOnly", ",", {""}},
    {"TwoCommas", ",,", {"", ""}},
    {"EmptyBeforeEmptyLastIsKept", "a,,", {"a", ""}},
    {"VerticalTabLastIsKept", "a,\v", {"a", "\v"}},
    {"NestedCallAndQuotes", "f(x, y), 'p,q'", {"f(x, y)", "'p,q'"}},
    {"DeeperNesting", "f(g(a,b),c),d", {"f(g(a,b),c)", "d"}},
    {"CommaInDoubleQuotes", "\"a,b\",c", {"\"a,b\"", "c"}},
    {"ParenthesisInQuotes", "'(',b", {"'('", "b"}},
    {"DoubleQuoteInSingleQuotes", "'\"',b", {"'\"'", "b"}},
    {"SingleQuoteInDoubleQuotes", "\"'\",b", {"\"'\"", "b"}},
    {"EscapedQuote", R"("a\",b",c)", {R"("a\",b")", "c"}},
    {"EscapedBackslash", R"("a\\",b)", {R"("a\\")", "b"}},
    {"EscapedQuoteInSingleQuotes", R"('a\',b',c)", {R"('a\',b')", "c"}},
    {"BackslashOutsideQuotesIsPlain", R"(a\,b)", {R"(a\)", "b"}},
    {"BackslashDoesNotHideQuoteOutside", R"(\',b)", {R"(\',b)"}},
    {"OpenQuoteTakesTheRest", "a,'b,c", {"a", "'b,c"}},
    {"OpenParenthesisTakesTheRest", "a,f(b,c", {"a", "f(b,c"}},
    {"OpenParenthesesTakeTheRest", "a,f(g(b),(c,d),e", {"a", "f(g(b),(c,d),e"}},
    {"OpenParenthesisWithEmptyPieces", "a,f(,,", {"a", "f(,,"}},
    {"OpenParenthesisAtTheEnd", "a,(", {"a", "("}},
    {"StrayClosingParenthesisIsIgnored", "a),b", {"a)", "b"}},
    {"StrayClosingBeforeOpening", ")(a,b),c", {")(a,b)", "c"}},
    {"SpacesInsidePiecesStay", "a b , c  d", {"a b", "c  d"}},
    {"NulInPieces", "\0,a\0"s, {"\0"s, "a\0"s}},
    {"HighBytes", "\xef\xbc\x8c,\xff", {"\xef\xbc\x8c", "\xff"}},
    {"AHundredThousandSpaces", std::string(100'000, ' ') + "," + std::string(100'000, ' '), {""}},
    {"AHundredThousandCommas", std::string(100'000, ','), Pieces(100'000)},
};
Pieces pieces_of(const std::string& text) {
  Pieces pieces;
  for (const Expression& argument : split_call_arguments(text)) {
    pieces.emplace_back(argument.text);
  }
  return pieces;
}

class CallArguments : public testing::TestWithParam<SplitCase> {};

TEST_P(CallArguments, AreSplitAtOuterCommas) {
  EXPECT_EQ(pieces_of(GetParam().text), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, CallArguments, testing::ValuesIn(split_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(CallLiterals, AreTaken) {
  EXPECT_EQ(parse_function_call("F(a)").argument_text, "a");
  EXPECT_EQ(split_call_arguments("a, b").size(), 2U);
  EXPECT_EQ(parse_expression("F(a)").function, "f");
}

// Against the plain rules

reference::Call parsed(const std::string& text) {
  const FunctionCall call = parse_function_call(text);
  return {call.name, std::string(call.argument_text)};
}

TEST(RandomCalls, FollowThePlainRules) {
  std::mt19937_64 random(16180339);
  int calls = 0;
  int failures = 0;
  for (int i = 0; i < 100'000; ++i) {
    const std::string text = (i % 2 == 0 ? "f(" : "") + random_call_text(random) + ")";
    const std::string failure = failure_of([&] { reference::parse_function_call(text); });
    ASSERT_EQ(failure_of([&] { parse_function_call(text); }), failure) << "text [" << text << "]";
    if (failure != "(no failure)") {
      ++failures;
      continue;
    }
    ASSERT_EQ(parsed(text), reference::parse_function_call(text)) << "text [" << text << "]";
    calls += parsed(text).name.empty() ? 0 : 1;
  }
  EXPECT_GT(calls, 5'000);  // the texts are worth the comparison
  EXPECT_GT(failures, 5'000);
}

TEST(RandomArguments, FollowThePlainRules) {
  std::mt19937_64 random(14142135);
  for (int i = 0; i < 100'000; ++i) {
    const std::string text = random_call_text(random);
    ASSERT_EQ(pieces_of(text), reference::split_call_arguments(text)) << "text [" << text << "]";
  }
}

}  // namespace
}  // namespace vqvec
