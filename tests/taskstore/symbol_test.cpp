#include "taskstore/symbol.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace vqvec {
namespace {

using std::string_literals::operator""s;

static_assert(sizeof(Symbol) == 8);

struct TextCase {
  const char* name;
  std::string text;
};
const std::vector<TextCase> text_cases = {
    {"Empty", ""},
    {"OneLetter", "H"},
    {"TwoLetters", "Cl"},
    {"SixBytes", "abcdef"},
    {"SevenBytes", "abcdefg"},
    {"EightBytes", "abcdefgh"},
    {"NineBytes", "abcdefghi"},
    {"FourThousandBytes", std::string(4'000, 'x')},
    {"Nul", "\0"s},
    {"NulBehind", "H\0"s},
    {"SevenNuls", std::string(7, '\0')},
    {"EightNuls", std::string(8, '\0')},
    {"NulsInALongText", "abc\0defgh\0"s},
    {"SevenOfByteEight", std::string(7, '\b')},
    {"BytesAbove127", "\xff\xfe"},
    {"LongBytesAbove127", std::string(12, '\xff')},
};
class SymbolText : public testing::TestWithParam<TextCase> {};

TEST_P(SymbolText, IsWhatItWasMadeOf) {
  std::string original = GetParam().text;
  const Symbol symbol = std::string_view(original);
  original.assign(original.size(), '?');
  EXPECT_EQ(symbol.text(), GetParam().text);
}

TEST_P(SymbolText, StaysWithACopy) {
  Symbol copy = "other";
  {
    const Symbol symbol = std::string_view(GetParam().text);
    copy = symbol;
  }
  EXPECT_EQ(copy.text(), GetParam().text);
}

TEST_P(SymbolText, DecidesWhetherSymbolsAreEqual) {
  const Symbol symbol = std::string_view(GetParam().text);
  for (const TextCase& other : text_cases) {
    EXPECT_EQ(symbol == Symbol(other.text), GetParam().text == other.text) << other.name;
  }
}
INSTANTIATE_TEST_SUITE_P(Texts, SymbolText, testing::ValuesIn(text_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(Symbol, IsEmptyByDefault) {
  EXPECT_EQ(Symbol().text(), "");
  EXPECT_EQ(Symbol(), Symbol(""));
}

TEST(Symbol, TellsLettersOfEitherCaseApart) {
  EXPECT_NE(Symbol("CL"), Symbol("Cl"));
  EXPECT_NE(Symbol("A-long-symbol"), Symbol("a-long-symbol"));
}

TEST(Symbol, KeepsManyLongTextsApart) {
  std::mt19937_64 random(3);
  std::vector<std::string> texts;
  std::vector<Symbol> symbols;
  for (int i = 0; i < 5'000; ++i) {
    texts.push_back("long-symbol-" + std::to_string(random() % 2'000));
    symbols.emplace_back(std::string_view(texts.back()));
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    ASSERT_EQ(symbols[i].text(), texts[i]);
    const std::size_t other = random() % texts.size();
    ASSERT_EQ(symbols[i] == symbols[other], texts[i] == texts[other]);
  }
}

}  // namespace
}  // namespace vqvec
