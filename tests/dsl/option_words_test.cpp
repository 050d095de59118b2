#include "dsl/option_words.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/reference/lexing.hpp"
#include "tests/support/failure.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;
using Words = std::vector<std::string>;

struct WordsCase {
  const char* name;
  std::string text;
  Words expected;
};
const std::vector<WordsCase> words_cases = {
    {"Empty", "", {}},
    {"WhiteSpaceOnly", " \t\n\v\f\r", {}},
    {"OneWord", "--sum", {"--sum"}},
    {"TwoWords", "--sum 1", {"--sum", "1"}},
    {"WhiteSpaceOfAllKindsSeparates", "a\tb\nc\vd\fe\rf g", {"a", "b", "c", "d", "e", "f", "g"}},
    {"WhiteSpaceAround", " \v a \f ", {"a"}},
    {"SingleQuotes", "'my file.xyz'", {"my file.xyz"}},
    {"DoubleQuotes", "\"my file.xyz\"", {"my file.xyz"}},
    {"EmptySingleQuotesAreAWord", "a '' b", {"a", "", "b"}},
    {"EmptyDoubleQuotesAreAWord", "\"\"", {""}},
    {"EmptyQuotesAtTheEnd", "a ''", {"a", ""}},
    {"EmptyQuotesInAWord", "a''b\"\"c", {"abc"}},
    {"TwoPairsOfEmptyQuotesAreOneWord", "''\"\"", {""}},
    {"PiecesJoin", "a'b c'd", {"ab cd"}},
    {"QuotedPiecesJoin", "'a b'\"c d\"", {"a bc d"}},
    {"QuotesInTheValue", "--out='my file'", {"--out=my file"}},
    {"DoubleQuoteInSingleQuotes", "'a\"b'", {"a\"b"}},
    {"SingleQuoteInDoubleQuotes", "\"a'b\"", {"a'b"}},
    {"NoEscapesInSingleQuotes", R"('a\ b\\c\')", {R"(a\ b\\c\)"}},
    {"SingleQuoteCannotBeEscapedInside", R"('a\'b c)", {R"(a\b)", "c"}},
    {"EscapedQuoteInDoubleQuotes", R"("a\"b c")", {R"(a"b c)"}},
    {"EscapedBackslashInDoubleQuotes", R"("a\\" b)", {R"(a\)", "b"}},
    {"OtherBackslashInDoubleQuotesStays", R"("a\'b\n\ c")", {R"(a\'b\n\ c)"}},
    {"BackslashesBeforeClosingQuote", R"("\\\\" x)", {R"(\\)", "x"}},
    {"EscapedSpaceJoins", R"(my\ file.xyz)", {"my file.xyz"}},
    {"EscapedTabJoins", "a\\\tb", {"a\tb"}},
    {"EscapedLineFeedJoins", "a\\\nb", {"a\nb"}},
    {"EscapedVerticalTabJoins", "a\\\vb", {"a\vb"}},
    {"EscapedFormFeedJoins", "a\\\fb", {"a\fb"}},
    {"EscapedSpaceIsAWord", "\\ ", {" "}},
    {"EscapedSpaceThenSpace", "a\\  b", {"a ", "b"}},
    {"EscapedSingleQuote", R"(a\'b c)", {"a'b", "c"}},
    {"EscapedDoubleQuote", R"(a\"b c)", {"a\"b", "c"}},
    {"EscapedBackslash", R"(a\\ b)", {R"(a\)", "b"}},
    {"EscapedBackslashThenQuote", R"(\\'a b')", {R"(\a b)"}},
    {"OtherBackslashStays", R"(C:\new\dir)", {R"(C:\new\dir)"}},
    {"BackslashLast", R"(a\)", {R"(a\)"}},
    {"BackslashAlone", R"(\)", {R"(\)"}},
    {"BackslashAfterSpace", R"(a \)", {"a", R"(\)"}},
    {"BackslashBeforeNulStays", "a\\\0b"s, {"a\\\0b"s}},
    {"BackslashBeforeNulStaysInDoubleQuotes", "\"\\\0\""s, {"\\\0"s}},
    {"OpenSingleQuoteRunsToTheEnd", "'a b --sum 1", {"a b --sum 1"}},
    {"OpenDoubleQuoteRunsToTheEnd", "x \"a b ", {"x", "a b "}},
    {"OpenQuoteWithNothingAfterIsAWord", "a '", {"a", ""}},
    {"OpenDoubleQuoteAndBackslash", R"("a\)", {R"(a\)"}},
    {"OpenDoubleQuoteAndEscape", R"("a\")", {R"(a")"}},
    {"NulIsAWord", "\0"s, {"\0"s}},
    {"NulInAWord", "a\0b c"s, {"a\0b"s, "c"}},
    {"HighBytesDoNotSeparate",
     "a\xa0"
     "b\x85\xff \xc3\xa9",
     {"a\xa0"
      "b\x85\xff",
      "\xc3\xa9"}},
    {"EqualsAndParenthesesAreOrdinary", "a=(b c)", {"a=(b", "c)"}},
    {"AHundredThousandSpaces", "a" + std::string(100'000, ' ') + "b", {"a", "b"}},
    {"MegabyteWord", std::string(1 << 20, 'x'), {std::string(1 << 20, 'x')}},
};
class OptionWords : public testing::TestWithParam<WordsCase> {};

TEST_P(OptionWords, AreSplitAsByAShell) {
  EXPECT_EQ(split_option_words(GetParam().text), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, OptionWords, testing::ValuesIn(words_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Against the plain rules

TEST(RandomOptionWords, FollowThePlainRules) {
  const std::string alphabet = "ab'\"\\ \t\v-=";
  std::mt19937_64 random(27182818);
  for (int i = 0; i < 100'000; ++i) {
    std::string text;
    for (auto length = random() % 16; length > 0; --length) {
      text += alphabet[random() % alphabet.size()];
    }
    ASSERT_EQ(split_option_words(text), reference::split_option_words(text))
        << "text [" << text << "]";
  }
}

// Values

TEST(TakeOptionValue, MovesToTheNextWord) {
  const Words words = {"--sum", "1", "--chg", "x"};
  std::size_t index = 0;
  EXPECT_EQ(take_option_value(words, index, "--sum"), "1");
  EXPECT_EQ(index, 1U);
}

TEST(TakeOptionValue, TakesAnyWord) {
  const Words words = {"--sum", "--out", ""};
  std::size_t index = 0;
  EXPECT_EQ(take_option_value(words, index, "--sum"), "--out");
  EXPECT_EQ(take_option_value(words, index, "--out"), "");
  EXPECT_EQ(index, 2U);
}

TEST(TakeOptionValue, FailsAfterTheLastWord) {
  const Words words = {"--check", "--geom"};
  std::size_t index = 1;
  EXPECT_EQ(failure_of([&] { take_option_value(words, index, "--geom"); }),
            "--geom requires a value");
  EXPECT_EQ(index, 1U);
}

}  // namespace
}  // namespace vqvec
