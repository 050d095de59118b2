#include "dsl/lexical.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace vqvec {
namespace {

using std::string_literals::operator""s;

std::vector<char> all_bytes() {
  std::vector<char> bytes;
  for (int value = 0; value < 256; ++value) {
    bytes.push_back(static_cast<char>(value));
  }
  return bytes;
}

// is_space

TEST(IsSpace, CountsTheSixBytesOfTheDefaultLocale) {
  for (const char c : all_bytes()) {
    const bool expected = " \t\n\v\f\r"s.find(c) != std::string::npos;
    EXPECT_EQ(is_space(c), expected) << "byte " << static_cast<int>(c);
  }
}

// trim

struct TextCase {
  const char* name;
  std::string text;
  std::string expected;
};
const std::vector<TextCase> trim_cases = {
    {"Empty", "", ""},
    {"NothingToTrim", "a b", "a b"},
    {"AllFourBytesAtBothEnds", " \t\r\na b\n\r\t ", "a b"},
    {"SpacesOnly", " \t\r\n \t\r\n", ""},
    {"OneByte", " x ", "x"},
    {"VerticalTabStays", "\va\v", "\va\v"},
    {"FormFeedStays", "\fa\f", "\fa\f"},
    {"SpaceAfterVerticalTabStays", " \v a \f ", "\v a \f"},
    {"NulStays", " \0a\0 "s, "\0a\0"s},
    {"NoBreakSpaceStays", "\xc2\xa0 a \xc2\xa0", "\xc2\xa0 a \xc2\xa0"},
    {"ByteA0Stays", "\xa0", "\xa0"},
};
class Trim : public testing::TestWithParam<TextCase> {};

TEST_P(Trim, StripsSpacesAtBothEnds) {
  EXPECT_EQ(trim(GetParam().text), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, Trim, testing::ValuesIn(trim_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(TrimBytes, StripsExactlyFourOfAll) {
  for (const char c : all_bytes()) {
    const std::string text = c + "x"s + c;
    const bool is_blank = " \t\r\n"s.find(c) != std::string::npos;
    EXPECT_EQ(trim(text), is_blank ? "x" : text) << "byte " << static_cast<int>(c);
  }
}

TEST(TrimBytes, TakesAHundredThousandSpaces) {
  const std::string spaces(100'000, ' ');
  const std::string text = spaces + "a" + spaces + "b" + spaces;
  EXPECT_EQ(trim(text), "a" + spaces + "b");
  EXPECT_EQ(trim(spaces), "");
}

TEST(TrimBytes, TakesALiteral) {
  EXPECT_EQ(trim(" a "), "a");
}

// to_lower

const std::vector<TextCase> lower_cases = {
    {"Empty", "", ""},
    {"Letters", "ABC xyz Mean", "abc xyz mean"},
    {"OtherAscii", "@[`{09_~", "@[`{09_~"},
    {"Utf8Stays", "\xc3\x84\xc3\x89", "\xc3\x84\xc3\x89"},
    {"NulInside", "A\0B"s, "a\0b"s},
};
class ToLower : public testing::TestWithParam<TextCase> {};

TEST_P(ToLower, ChangesLettersOnly) {
  EXPECT_EQ(to_lower(GetParam().text), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, ToLower, testing::ValuesIn(lower_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ToLowerBytes, ChangesOnlyTheAlphabet) {
  const std::string upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::string lower = "abcdefghijklmnopqrstuvwxyz";
  for (const char c : all_bytes()) {
    const auto letter = upper.find(c);
    EXPECT_EQ(to_lower(std::string(1, c)),
              std::string(1, letter == std::string::npos ? c : lower[letter]))
        << "byte " << static_cast<int>(c);
  }
}

// unquote_argument

const std::vector<TextCase> unquote_cases = {
    {"Empty", "", ""},
    {"SpacesOnly", " \t\r\n", ""},
    {"BareText", "a:q", "a:q"},
    {"BareTextIsTrimmed", " \t\r\na:q\n\r\t ", "a:q"},
    {"SingleQuotes", "'a:q'", "a:q"},
    {"DoubleQuotes", "\"a:q\"", "a:q"},
    {"SpacesAroundQuotes", " 'a' \n", "a"},
    {"SpacesInsideQuotesStay", "' a\t'", " a\t"},
    {"EmptySingleQuotes", "''", ""},
    {"EmptyDoubleQuotes", "\"\"", ""},
    {"LoneSingleQuote", "'", "'"},
    {"LoneDoubleQuote", "\"", "\""},
    {"OpenQuote", "'a", "'a"},
    {"QuoteOnlyAtEnd", "a'", "a'"},
    {"DifferentQuotes", "'a\"", "'a\""},
    {"OnePairOnly", "''a''", "'a'"},
    {"DoubleAroundSingle", "\"'a'\"", "'a'"},
    {"SingleAroundDouble", "'\"a\"'", "\"a\""},
    {"TwoQuotedPieces", "'a','b'", "a','b"},
    {"QuoteInTheMiddle", R"("a"b")", R"(a"b)"},
    {"VerticalTabBeforeQuotes", "\v'a'", "\v'a'"},
    {"FormFeedInsideQuotes", "'\fa\v'", "\fa\v"},
    {"EscapedQuote", R"("a\"b")", R"(a"b)"},
    {"EscapedBackslash", R"("a\\b")", R"(a\b)"},
    {"EscapedSingleQuote", R"("a\'b")", "a'b"},
    {"EscapedLetterIsTheLetter", R"("a\nb")", "anb"},
    {"EscapedNul", "\"a\\\0b\""s, "a\0b"s},
    {"EscapedHighByte", "\"\\\xc3\xa9\"", "\xc3\xa9"},
    {"ManyEscapes", R"("\\\"\\\"")", R"(\"\")"},
    {"BackslashLastInQuotes", R"("a\")", R"(a\)"},
    {"BackslashAloneInQuotes", R"("\")", R"(\)"},
    {"TwoBackslashesInQuotes", R"("\\")", R"(\)"},
    {"ThreeBackslashesInQuotes", R"("\\\")", R"(\\)"},
    {"NoEscapesInSingleQuotes", R"('a\'b\\n')", R"(a\'b\\n)"},
    {"NoEscapesOutsideQuotes", R"(a\"b)", R"(a\"b)"},
    {"NulInside", "'a\0b'"s, "a\0b"s},
};
class UnquoteArgument : public testing::TestWithParam<TextCase> {};

TEST_P(UnquoteArgument, DropsOnePairOfQuotes) {
  TextPool pool;
  EXPECT_EQ(unquote_argument(GetParam().text, pool), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Texts, UnquoteArgument, testing::ValuesIn(unquote_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(UnquoteArgumentViews, ResultsOfOnePoolStayValid) {
  TextPool pool;
  std::vector<std::string_view> results;
  std::vector<std::string> expected;
  for (int i = 0; i < 1000; ++i) {
    const std::string escaped = "\"\\\\" + std::to_string(i) + "\"";
    results.push_back(unquote_argument(escaped, pool));
    expected.push_back(std::string("\\").append(std::to_string(i)));
  }
  EXPECT_EQ(std::vector<std::string>(results.begin(), results.end()), expected);
}

TEST(UnquoteArgumentViews, ResultWithoutEscapesIsPartOfTheArgument) {
  TextPool pool;
  const std::string text = " \"a:q\" ";
  EXPECT_EQ(unquote_argument(text, pool).data(), text.data() + 2);
}

TEST(UnquoteArgumentViews, TakesALiteral) {
  TextPool pool;
  EXPECT_EQ(unquote_argument(" 'a' ", pool), "a");
}

TEST(UnquoteArgumentViews, ResolvesAMegabyteOfEscapes) {
  TextPool pool;
  std::string text = "\"";
  for (int i = 0; i < 1'000'000; ++i) {
    text += "\\\"";
  }
  text += '"';
  EXPECT_EQ(unquote_argument(text, pool), std::string(1'000'000, '"'));
}

}  // namespace
}  // namespace vqvec
