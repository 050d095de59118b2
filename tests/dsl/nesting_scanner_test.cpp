#include "dsl/nesting_scanner.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vqvec {
namespace {

using std::string_literals::operator""s;

struct ScanCase {
  const char* name;
  std::string text;
  std::string structure;  // for each byte of the text: '#' where it is structure, '.' where not
  std::size_t depth;      // after the last byte
  bool is_balanced;
};
const std::vector<ScanCase> scan_cases = {
    {"Empty", "", "", 0, true},
    {"PlainText", "a:q", "###", 0, true},
    {"Parentheses", "f(a(b))", "#######", 0, true},
    {"OpenParentheses", "((a)", "####", 1, false},
    {"StrayClosingParenthesisIsIgnored", "a))", "###", 0, true},
    {"ClosingBeforeOpening", ")(", "##", 1, false},
    {"SingleQuotes", "a'b'c", "#...#", 0, true},
    {"DoubleQuotes", "a\"b\"c", "#...#", 0, true},
    {"ParenthesesInQuotes", "'('\"))\"a", ".......#", 0, true},
    {"DoubleQuoteInSingleQuotes", "'\"'a", "...#", 0, true},
    {"SingleQuoteInDoubleQuotes", "\"'\"a", "...#", 0, true},
    {"OpenSingleQuote", "a'b", "#..", 0, false},
    {"OpenDoubleQuote", "a\"b(", "#...", 0, false},
    {"OpenQuoteInParentheses", "(')", "#..", 1, false},
    {"BackslashHidesQuoteInDoubleQuotes", R"("\"(")", ".....", 0, true},
    {"BackslashHidesQuoteInSingleQuotes", R"('\'(')", ".....", 0, true},
    {"BackslashHidesBackslash", R"("\\"()", "....#", 1, false},
    {"BackslashHidesOneByte", R"("\\\"")", "......", 0, true},
    {"BackslashHidesOrdinaryByte", R"('\a'b)", "....#", 0, true},
    {"BackslashLastInQuotes", R"("\)", "..", 0, false},
    {"BackslashOutsideQuotesIsPlain", R"(\()", "##", 1, false},
    {"BackslashOutsideDoesNotHideQuote", R"(\'()", "#..", 0, false},
    {"NulIsPlain", "\0(\0)"s, "####", 0, true},
    {"NulInQuotes", "'\0('a"s, "....#", 0, true},
    {"HighBytesArePlain", "\xc3\xa9(\xff", "####", 1, false},
};
class ScanText : public testing::TestWithParam<ScanCase> {};

TEST_P(ScanText, TellsStructureFromQuotes) {
  NestingScanner scanner;
  std::string structure;
  for (const char c : GetParam().text) {
    structure += scanner.take(c) ? '#' : '.';
  }
  EXPECT_EQ(structure, GetParam().structure);
  EXPECT_EQ(scanner.depth(), GetParam().depth);
  EXPECT_EQ(scanner.is_balanced(), GetParam().is_balanced);
}
INSTANTIATE_TEST_SUITE_P(Texts, ScanText, testing::ValuesIn(scan_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(NestingScanner, CountsDepthByteByByte) {
  NestingScanner scanner;
  std::vector<std::size_t> depths;
  for (const char c : "a(b(c)'('d)e)"s) {
    scanner.take(c);
    depths.push_back(scanner.depth());
  }
  EXPECT_EQ(depths, (std::vector<std::size_t>{0, 1, 1, 2, 2, 1, 1, 1, 1, 1, 0, 0, 0}));
}

TEST(NestingScanner, CountsAMillionParentheses) {
  NestingScanner scanner;
  for (int i = 0; i < 1'000'000; ++i) {
    scanner.take('(');
  }
  EXPECT_EQ(scanner.depth(), 1'000'000U);
  for (int i = 0; i < 1'000'000; ++i) {
    scanner.take(')');
  }
  EXPECT_TRUE(scanner.is_balanced());
}

}  // namespace
}  // namespace vqvec
