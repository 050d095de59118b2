#include "taskstore/kv_map.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/kv_pairs.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

using Pairs = std::vector<std::pair<std::string, std::string>>;

// As a line of a file is assigned.
void assign_pair(KvMap& map, const std::string& key, const std::string& value) {
  if (!map.assign_expected(key + "=" + value)) {
    map.assign(key, value);
  }
}

KvMap map_of(const Pairs& assigned) {
  KvMap map;
  for (const auto& [key, value] : assigned) {
    assign_pair(map, key, value);
  }
  return map;
}

// What a map holds

struct AssignCase {
  const char* name;
  Pairs assigned;
  Pairs expected;  // in bytewise order of the keys
};
const std::vector<AssignCase> assign_cases = {
    {"Nothing", {}, {}},
    {"OneKey", {{"charge", "-1"}}, {{"charge", "-1"}}},
    {"LastValueCounts", {{"k", "1"}, {"k", "2"}}, {{"k", "2"}}},
    {"LastValueOfAnAtomCounts", {{"atoms.1.q", "1"}, {"atoms.1.q", "2"}}, {{"atoms.1.q", "2"}}},
    {"PrefixComesFirst", {{"ab", "2"}, {"a", "1"}}, {{"a", "1"}, {"ab", "2"}}},
    {"UpperCaseComesFirst", {{"a", "1"}, {"B", "2"}}, {{"B", "2"}, {"a", "1"}}},
    {"BytesAbove127ComeLast",
     {{"\xc3\xa9", "1"}, {"z", "2"}, {"\xff", "3"}},
     {{"z", "2"}, {"\xc3\xa9", "1"}, {"\xff", "3"}}},
    {"AtomsAreOrderedAsTexts",
     {{"atoms.1.q", "a"}, {"atoms.2.q", "b"}, {"atoms.10.q", "c"}},
     {{"atoms.1.q", "a"}, {"atoms.10.q", "c"}, {"atoms.2.q", "b"}}},
    {"AtomsAmongOtherKeys",
     {{"b", "3"}, {"atoms.1.q", "2"}, {"atoms", "0"}, {"atoms.", "1"}},
     {{"atoms", "0"}, {"atoms.", "1"}, {"atoms.1.q", "2"}, {"b", "3"}}},
    {"PropertiesAreApart",
     {{"atoms.1.p", "1"}, {"atoms.1.q", "2"}, {"atoms.2.p", "3"}, {"atoms.2.q", "4"}},
     {{"atoms.1.p", "1"}, {"atoms.1.q", "2"}, {"atoms.2.p", "3"}, {"atoms.2.q", "4"}}},
    {"PropertyThatBeginsWithANumber",
     {{"atoms.1.2.q", "1"}, {"atoms.1.q", "2"}, {"atoms.2.q", "3"}},
     {{"atoms.1.2.q", "1"}, {"atoms.1.q", "2"}, {"atoms.2.q", "3"}}},
    {"LeadingZeroIsAnotherKey",
     {{"atoms.01.q", "zero"}, {"atoms.1.q", "one"}},
     {{"atoms.01.q", "zero"}, {"atoms.1.q", "one"}}},
    {"AtomZeroIsAnOrdinaryKey", {{"atoms.0.q", "1"}}, {{"atoms.0.q", "1"}}},
    {"SignedNumbersAreOrdinaryKeys",
     {{"atoms.+1.q", "1"}, {"atoms.-1.q", "2"}, {"atoms. 1.q", "3"}},
     {{"atoms. 1.q", "3"}, {"atoms.+1.q", "1"}, {"atoms.-1.q", "2"}}},
    {"NumbersOfAnyLength",
     {{"atoms.18446744073709551615.q", "1"},
      {"atoms.18446744073709551616.q", "2"},
      {"atoms.1000000000000000000000000000001.q", "3"}},
     {{"atoms.1000000000000000000000000000001.q", "3"},
      {"atoms.18446744073709551615.q", "1"},
      {"atoms.18446744073709551616.q", "2"}}},
    {"NumberThatWouldWrapAroundToOne",
     {{"atoms.18446744073709551617.q", "far"}, {"atoms.1.q", "near"}},
     {{"atoms.1.q", "near"}, {"atoms.18446744073709551617.q", "far"}}},
    {"NoAtomAfterTheLargestNumber",
     {{"atoms.18446744073709551614.q", "0"},
      {"atoms.18446744073709551615.q", "1"},
      {"atoms.18446744073709551615.q", "2"},
      {"atoms.18446744073709551616.q", "3"},
      {"atoms.0.q", "4"}},
     {{"atoms.0.q", "4"},
      {"atoms.18446744073709551614.q", "0"},
      {"atoms.18446744073709551615.q", "2"},
      {"atoms.18446744073709551616.q", "3"}}},
    {"NothingAfterTheNumber",
     {{"atoms.1", "1"}, {"atoms.1.", "2"}, {"atoms.1.q", "3"}},
     {{"atoms.1", "1"}, {"atoms.1.", "2"}, {"atoms.1.q", "3"}}},
    {"EmptyPropertyForSeveralAtoms",
     {{"atoms.2.", "b"}, {"atoms.1.", "a"}, {"atoms.2.", "c"}},
     {{"atoms.1.", "a"}, {"atoms.2.", "c"}}},
    {"PropertyOfDots",
     {{"atoms.1..", "1"}, {"atoms.1...", "2"}},
     {{"atoms.1..", "1"}, {"atoms.1...", "2"}}},
    {"OtherCaseOfAtoms",
     {{"Atoms.1.q", "1"}, {"atoms.1.q", "2"}},
     {{"Atoms.1.q", "1"}, {"atoms.1.q", "2"}}},
    {"LetterAfterTheNumber",
     {{"atoms.1x.q", "1"}, {"atoms.0x1.q", "2"}},
     {{"atoms.0x1.q", "2"}, {"atoms.1x.q", "1"}}},
    {"NulInKeyAndValue",
     {{"k\0a"s, "1\0"s}, {"k\0b"s, "\0"s}},
     {{"k\0a"s, "1\0"s}, {"k\0b"s, "\0"s}}},
    {"NulInAProperty",
     {{"atoms.1.q\0"s, "1"}, {"atoms.1.q", "2"}},
     {{"atoms.1.q", "2"}, {"atoms.1.q\0"s, "1"}}},
    {"EmptyValue", {{"k", ""}, {"atoms.1.q", ""}}, {{"atoms.1.q", ""}, {"k", ""}}},
    {"EmptyKey", {{"", "v"}}, {{"", "v"}}},
};
class AssignedMap : public testing::TestWithParam<AssignCase> {};

TEST_P(AssignedMap, ListsItsPairsInOrder) {
  EXPECT_EQ(pairs_of(map_of(GetParam().assigned)), GetParam().expected);
}

TEST_P(AssignedMap, FindsEachOfItsKeys) {
  const KvMap map = map_of(GetParam().assigned);
  for (const auto& [key, value] : GetParam().expected) {
    EXPECT_EQ(map.find(key), value) << "key " << key;
  }
}

TEST_P(AssignedMap, KeepsItsPairsWhenItIsMoved) {
  KvMap map = map_of(GetParam().assigned);
  KvMap other = map_of({{"atoms.1.q", "old"}, {"other", "old"}});
  other = std::move(map);
  EXPECT_EQ(pairs_of(other), GetParam().expected);
  assign_pair(other, "atoms.1.new", "1");
  EXPECT_EQ(other.find("atoms.1.new"), "1");
}

TEST_P(AssignedMap, CanBeUsedAgainAfterItWasMoved) {
  KvMap map = map_of(GetParam().assigned);
  const KvMap other = std::move(map);
  const Pairs later = {{"atoms.1.p", "1"}, {"atoms.1.r", std::string(30, 'x')}, {"k", "v"}};
  for (const auto& [key, value] : later) {
    assign_pair(map, key, value);  // NOLINT(bugprone-use-after-move)
  }
  EXPECT_EQ(pairs_of(map), later);
  EXPECT_EQ(pairs_of(other), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Maps, AssignedMap, testing::ValuesIn(assign_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(KvMap, HoldsTextsOfMegabytes) {
  const std::string long_key(100'000, 'k');
  const std::string long_value(3'000'000, 'v');
  const Pairs pairs = {{"atoms.1." + long_key, long_value}, {long_key, long_value}};
  const KvMap map = map_of(pairs);
  EXPECT_EQ(pairs_of(map), pairs);
  EXPECT_EQ(map.find(long_key), long_value);
}

// What a map does not hold

struct MissingCase {
  const char* name;
  Pairs assigned;
  std::string key;
};
const std::vector<MissingCase> missing_cases = {
    {"EmptyMap", {}, "k"},
    {"EmptyKey", {{"k", "v"}}, ""},
    {"PrefixOfAKey", {{"charge", "1"}}, "charg"},
    {"LongerThanAKey", {{"charge", "1"}}, "charges"},
    {"OtherCase", {{"charge", "1"}}, "Charge"},
    {"SpaceAround", {{"charge", "1"}}, " charge"},
    {"AtomZero", {{"atoms.1.q", "1"}}, "atoms.0.q"},
    {"NextAtom", {{"atoms.1.q", "1"}}, "atoms.2.q"},
    {"AtomInTheGap", {{"atoms.1.q", "1"}, {"atoms.3.q", "3"}}, "atoms.2.q"},
    {"OtherProperty", {{"atoms.1.q", "1"}}, "atoms.1.p"},
    {"EmptyProperty", {{"atoms.1.q", "1"}}, "atoms.1."},
    {"NoProperty", {{"atoms.1.q", "1"}, {"atoms.1.", "2"}}, "atoms.1"},
    {"NoNumber", {{"atoms.1.q", "1"}}, "atoms..q"},
    {"LeadingZero", {{"atoms.1.q", "1"}}, "atoms.01.q"},
    {"WithoutTheLeadingZero", {{"atoms.01.q", "1"}}, "atoms.1.q"},
    {"PlusSign", {{"atoms.1.q", "1"}}, "atoms.+1.q"},
    {"WrapsAroundToOne", {{"atoms.1.q", "1"}}, "atoms.18446744073709551617.q"},
    {"WrapsAroundToZero", {{"atoms.1.q", "1"}}, "atoms.18446744073709551616.q"},
    {"LargestNumber", {{"atoms.1.q", "1"}}, "atoms.18446744073709551615.q"},
    {"JustThePrefix", {{"atoms.1.q", "1"}}, "atoms."},
    {"PropertyAlone", {{"atoms.1.q", "1"}}, "q"},
};
class MissingKey : public testing::TestWithParam<MissingCase> {};

TEST_P(MissingKey, IsNotFound) {
  EXPECT_EQ(map_of(GetParam().assigned).find(GetParam().key), std::nullopt);
}
INSTANTIATE_TEST_SUITE_P(Keys, MissingKey, testing::ValuesIn(missing_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(KvMap, LooksOnlyAtTheBytesOfAKeyThatIsPartOfALongerText) {
  const std::string text = "atoms.1.q.r";
  const std::string_view number = std::string_view(text).substr(0, 7);
  const std::string_view empty_property = std::string_view(text).substr(0, 8);
  const std::string_view property = std::string_view(text).substr(0, 9);
  const std::string_view prefix = std::string_view(text).substr(0, 6);
  KvMap map;
  map.assign(number, "number");
  map.assign(property, "property");
  EXPECT_EQ(pairs_of(map), (Pairs{{"atoms.1", "number"}, {"atoms.1.q", "property"}}));
  EXPECT_EQ(map.find(number), "number");
  EXPECT_EQ(map.find(property), "property");
  EXPECT_EQ(map.find(empty_property), std::nullopt);
  EXPECT_EQ(map.find(prefix), std::nullopt);
  EXPECT_EQ(map.find(text), std::nullopt);
}

// Lines whose key is expected

TEST(KvMap, ExpectsNoKeyAtFirst) {
  KvMap map;
  EXPECT_FALSE(map.assign_expected("atoms.1.q=1"));
  map.assign("k", "v");
  EXPECT_FALSE(map.assign_expected("k=w"));
  EXPECT_FALSE(map.assign_expected("=w"));
  EXPECT_EQ(pairs_of(map), (Pairs{{"k", "v"}}));
}

struct LineCase {
  const char* name;
  std::string line;
  std::optional<std::string> value;  // if the key is that of atom 2
};
const std::vector<LineCase> line_cases = {
    {"ExpectedKey", "atoms.2.q=0.5", "0.5"},
    {"NoValue", "atoms.2.q=", ""},
    {"ValueWithAnEqualsSign", "atoms.2.q==a=b", "=a=b"},
    {"ValueWithBlanks", "atoms.2.q= a ", " a "},
    {"NoEqualsSign", "atoms.2.q", std::nullopt},
    {"BlankBeforeTheEqualsSign", "atoms.2.q =1", std::nullopt},
    {"BlankInFront", " atoms.2.q=1", std::nullopt},
    {"LongerProperty", "atoms.2.qq=1", std::nullopt},
    {"ShorterProperty", "atoms.2.=1", std::nullopt},
    {"OtherAtom", "atoms.3.q=1", std::nullopt},
    {"SameAtomAgain", "atoms.1.q=1", std::nullopt},
    {"OtherKey", "k=1", std::nullopt},
    {"NoKey", "=1", std::nullopt},
    {"NoLine", "", std::nullopt},
};
class ExpectedLine : public testing::TestWithParam<LineCase> {};

TEST_P(ExpectedLine, IsAssignedAtOnce) {
  KvMap map;
  map.assign("atoms.1.q", "first");
  EXPECT_EQ(map.assign_expected(GetParam().line), GetParam().value.has_value());
  EXPECT_EQ(map.find("atoms.1.q"), "first");
  EXPECT_EQ(map.find("atoms.2.q"), GetParam().value);
  EXPECT_EQ(pairs_of(map).size(), GetParam().value ? 2U : 1U);
}
INSTANTIATE_TEST_SUITE_P(Lines, ExpectedLine, testing::ValuesIn(line_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Columns

TEST(KvMap, HasAColumnForEachProperty) {
  const KvMap map = map_of({{"atoms.1.charge.resp", "0.1"},
                            {"atoms.1.", "empty"},
                            {"atoms.2.charge.resp", "0.2"},
                            {"atoms.0.zero", "0"},
                            {"scalar", "1"}});
  ASSERT_NE(map.find_column("charge.resp"), nullptr);
  EXPECT_EQ(map.find_column("charge.resp")->find(1), "0.1");
  EXPECT_EQ(map.find_column("charge.resp")->find(2), "0.2");
  EXPECT_EQ(map.find_column("charge.resp")->find(3), std::nullopt);
  ASSERT_NE(map.find_column(""), nullptr);
  EXPECT_EQ(map.find_column("")->find(1), "empty");
  EXPECT_EQ(map.find_column("charge"), nullptr);
  EXPECT_EQ(map.find_column("zero"), nullptr);
  EXPECT_EQ(map.find_column("scalar"), nullptr);
}

TEST(KvMap, TakesPropertiesInAnotherOrderForEveryAtom) {
  const KvMap map = map_of({{"atoms.1.a", "a1"},
                            {"atoms.1.b", "b1"},
                            {"atoms.1.c", "c1"},
                            {"atoms.2.c", "c2"},
                            {"atoms.2.a", "a2"},
                            {"atoms.2.b", "b2"},
                            {"atoms.3.b", "b3"},
                            {"atoms.3.b", "B3"},
                            {"atoms.3.a", "a3"},
                            {"atoms.3.d", "d3"},
                            {"atoms.3.c", "c3"}});
  const Pairs expected = {{"atoms.1.a", "a1"}, {"atoms.1.b", "b1"}, {"atoms.1.c", "c1"},
                          {"atoms.2.a", "a2"}, {"atoms.2.b", "b2"}, {"atoms.2.c", "c2"},
                          {"atoms.3.a", "a3"}, {"atoms.3.b", "B3"}, {"atoms.3.c", "c3"},
                          {"atoms.3.d", "d3"}};
  EXPECT_EQ(pairs_of(map), expected);
}

TEST(KvMap, KeepsNoValuesThatItsFilterRefuses) {
  const PropertyFilter keeps = [](std::string_view property) { return property.starts_with("q"); };
  KvMap map(keeps);
  for (const char* const key : {"atoms.1.p", "atoms.1.q", "atoms.1.qq", "atoms.2.p", "atoms.2.q",
                                "atoms.2.qq", "atoms.4.p", "atoms.4.q", "p", "atoms.1.p"}) {
    assign_pair(map, key, key);
  }
  const Pairs expected = {{"atoms.1.q", "atoms.1.q"}, {"atoms.1.qq", "atoms.1.qq"},
                          {"atoms.2.q", "atoms.2.q"}, {"atoms.2.qq", "atoms.2.qq"},
                          {"atoms.4.q", "atoms.4.q"}, {"p", "p"}};
  EXPECT_EQ(pairs_of(map), expected);
  EXPECT_EQ(map.find("atoms.1.p"), std::nullopt);
}

TEST(KvMap, AsksItsFilterOnceForEachProperty) {
  std::vector<std::string> asked;
  const PropertyFilter keeps = [&asked](std::string_view property) {
    asked.emplace_back(property);
    return property != "p";
  };
  KvMap map(keeps);
  for (std::uint64_t atom = 1; atom <= 20; ++atom) {
    assign_pair(map, atom_key_text(atom, "p"), "1");
    assign_pair(map, atom_key_text(atom, "q"), "2");
    assign_pair(map, "scalar", "3");
  }
  EXPECT_EQ(asked, (std::vector<std::string>{"p", "q"}));
}

// Against an ordered map

std::string random_number(std::mt19937_64& random, std::uint64_t next) {
  static const std::vector<std::string> odd_numbers = {"0",
                                                       "00",
                                                       "01",
                                                       "007",
                                                       "+1",
                                                       "-1",
                                                       " 1",
                                                       "1 ",
                                                       "",
                                                       "x",
                                                       "1x",
                                                       "0x1",
                                                       "1e2",
                                                       "1,0",
                                                       "\0001"s,
                                                       "1\0"s,
                                                       "18446744073709551614",
                                                       "18446744073709551615",
                                                       "18446744073709551616",
                                                       "18446744073709551617",
                                                       "99999999999999999999",
                                                       "123456789012345678901234567890"};
  switch (random() % 6) {
    case 0:
      return odd_numbers[random() % odd_numbers.size()];
    case 1:
      return std::to_string(1 + random() % 1'000);
    case 2:
      return std::to_string(next);
    default:
      return std::to_string(1 + random() % 12);
  }
}

std::string random_key(std::mt19937_64& random, std::uint64_t next) {
  static const std::vector<std::string> properties = {"q",  "charge", "charge.resp", "",  "2.q",
                                                      ".q", "q.",     "\xc3\xa9",    "Q", "q\0"s};
  static const std::vector<std::string> other_keys = {
      "",           "atom_count", "charge",  "atoms",   "atoms.",    "atoms.1",
      "atoms.12",   "atoms0",     "atoms.q", "atoms..", "Atoms.1.q", "atom.1.q",
      "xatoms.1.q", "atoms.1q",   "z",       "\xff",    "k\0"s,      "geometry.atom_count"};
  if (random() % 5 == 0) {
    return other_keys[random() % other_keys.size()];
  }
  return "atoms." + random_number(random, next) + "." + properties[random() % properties.size()];
}

std::string random_value(std::mt19937_64& random) {
  return std::string(random() % 30, static_cast<char>(random() % 256));
}

void expect_same(const KvMap& map, const std::map<std::string, std::string>& expected) {
  ASSERT_EQ(pairs_of(map), Pairs(expected.begin(), expected.end()));
  for (const auto& [key, value] : expected) {
    ASSERT_EQ(map.find(key), value) << "key " << key;
  }
}

TEST(RandomMap, BehavesAsAnOrderedMap) {
  std::mt19937_64 random(20240607);
  for (int round = 0; round < 1'000; ++round) {
    KvMap map;
    std::map<std::string, std::string> expected;
    const bool looks_up_between = round % 2 == 0;
    for (auto steps = random() % 100; steps > 0; --steps) {
      const std::string key = random_key(random, expected.size() / 2 + 1);
      const std::string value = random_value(random);
      assign_pair(map, key, value);
      expected[key] = value;
      const std::string asked = random_key(random, expected.size());
      if (looks_up_between) {
        const auto found = expected.find(asked);
        ASSERT_EQ(map.find(asked),
                  found == expected.end() ? std::nullopt : std::optional(found->second))
            << "key " << asked;
      }
    }
    expect_same(map, expected);
  }
}

// The orders in which whole files list their atoms.
enum class Order { ascending, descending, by_digits, shuffled, twice, every_other };

std::vector<std::uint64_t> atoms_in(Order order, std::mt19937_64& random) {
  std::vector<std::uint64_t> atoms;
  for (std::uint64_t atom = 1; atom <= 500; atom += order == Order::every_other ? 2 : 1) {
    atoms.push_back(atom);
  }
  if (order == Order::descending) {
    std::ranges::reverse(atoms);
  } else if (order == Order::by_digits) {
    std::ranges::sort(atoms, {}, [](std::uint64_t atom) { return std::to_string(atom); });
  } else if (order == Order::shuffled) {
    std::ranges::shuffle(atoms, random);
  } else if (order == Order::twice) {
    const auto once = atoms;
    atoms.insert(atoms.end(), once.begin(), once.end());
  }
  return atoms;
}

struct OrderCase {
  const char* name;
  Order order;
};
const std::vector<OrderCase> order_cases = {
    {"Ascending", Order::ascending}, {"Descending", Order::descending},
    {"ByDigits", Order::by_digits},  {"Shuffled", Order::shuffled},
    {"Twice", Order::twice},         {"EveryOther", Order::every_other},
};
class OrderOfAtoms : public testing::TestWithParam<OrderCase> {};

TEST_P(OrderOfAtoms, MakesNoDifference) {
  std::mt19937_64 random(7);
  const auto atoms = atoms_in(GetParam().order, random);
  for (const bool property_by_property : {false, true}) {
    KvMap map;
    std::map<std::string, std::string> expected;
    const auto assign = [&](std::uint64_t atom, const char* property) {
      const std::string key = "atoms." + std::to_string(atom) + "." + property;
      const std::string value = std::to_string(random() % 1'000);
      assign_pair(map, key, value);
      expected[key] = value;
    };
    if (property_by_property) {
      for (const char* const property : {"a", "b", "c"}) {
        for (const std::uint64_t atom : atoms) {
          assign(atom, property);
        }
      }
    } else {
      for (const std::uint64_t atom : atoms) {
        for (const char* const property : {"b", "c", "a"}) {
          assign(atom, property);
        }
      }
    }
    expect_same(map, expected);
  }
}
INSTANTIATE_TEST_SUITE_P(Orders, OrderOfAtoms, testing::ValuesIn(order_cases),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace vqvec
