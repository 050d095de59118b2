#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "taskstore/kv_map.hpp"
#include "tests/support/kv_pairs.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

constexpr std::uint64_t last_atom = std::numeric_limits<std::uint64_t>::max();

struct KeyCase {
  const char* name;
  std::string key;
  std::uint64_t atom;
  std::string property;
};
const std::vector<KeyCase> key_cases = {
    {"FirstAtom", "atoms.1.charge", 1, "charge"},
    {"DottedProperty", "atoms.12.charge.resp", 12, "charge.resp"},
    {"NumberAsProperty", "atoms.3.4", 3, "4"},
    {"EmptyProperty", "atoms.7.", 7, ""},
    {"PropertyOfADot", "atoms.7..", 7, "."},
    {"PropertyWithNul", "atoms.7.a\0b"s, 7, "a\0b"s},
    {"LargestNumber", "atoms.18446744073709551615.q", last_atom, "q"},
};
class KeyOfAnAtom : public testing::TestWithParam<KeyCase> {};

TEST_P(KeyOfAnAtom, IsTakenApart) {
  const auto key = parse_atom_key(GetParam().key);
  ASSERT_TRUE(key.has_value());
  EXPECT_EQ(key->atom, GetParam().atom);
  EXPECT_EQ(key->property, GetParam().property);
}

INSTANTIATE_TEST_SUITE_P(Keys, KeyOfAnAtom, testing::ValuesIn(key_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ParseAtomKey, TakesNoOtherKey) {
  for (const std::string key :
       {"", "atoms", "atoms.", "atoms.1", "atoms.1q", "atoms.0.q", "atoms.01.q", "atoms.+1.q",
        "atoms.-1.q", "atoms. 1.q", "atoms..q", "atoms.:.q", "atoms./.q", "atoms.x.q", "Atoms.1.q",
        " atoms.1.q", "atom.1.q", "atoms.18446744073709551616.q"}) {
    EXPECT_FALSE(parse_atom_key(key).has_value()) << key;
  }
}

TEST(ExpectedAtomKey, IsNothingAtFirst) {
  EXPECT_EQ(ExpectedAtomKey().text(), "");
}

struct NextCase {
  const char* name;
  std::uint64_t atom;
  std::string next;
};
const std::vector<NextCase> next_cases = {
    {"OneDigit", 1, "atoms.2.q.9"},
    {"OneDigitMore", 9, "atoms.10.q.9"},
    {"OneNine", 19, "atoms.20.q.9"},
    {"NineInFront", 98, "atoms.99.q.9"},
    {"AllNines", 999'999, "atoms.1000000.q.9"},
    {"SomeNines", 1'099'999, "atoms.1100000.q.9"},
    {"LargestNumberButOne", last_atom - 1, "atoms.18446744073709551615.q.9"},
    {"LargestNumberStays", last_atom, "atoms.18446744073709551615.q.9"},
};
class NextKey : public testing::TestWithParam<NextCase> {};

TEST_P(NextKey, IsThatOfTheNextAtom) {
  ExpectedAtomKey expected;
  expected.expect_after({GetParam().atom, "q.9"});
  EXPECT_EQ(expected.text(), GetParam().next);
  EXPECT_EQ(atom_key_text(expected.atom(), "q.9"), GetParam().next);
}
INSTANTIATE_TEST_SUITE_P(Atoms, NextKey, testing::ValuesIn(next_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ExpectedAtomKey, CountsOn) {
  ExpectedAtomKey expected;
  expected.expect_after({1, "q"});
  for (std::uint64_t atom = 2; atom < 20'000; ++atom) {
    ASSERT_EQ(expected.atom(), atom);
    ASSERT_EQ(expected.text(), atom_key_text(atom, "q"));
    expected.advance();
  }
}

TEST(ExpectedAtomKey, StartsAnewAnywhere) {
  ExpectedAtomKey expected;
  for (const std::uint64_t atom : {99'999U, 4U, 9U, 12U}) {
    expected.expect_after({atom, "q"});
    expected.advance();
    EXPECT_EQ(expected.text(), atom_key_text(atom + 2, "q"));
  }
}

}  // namespace
}  // namespace vqvec
