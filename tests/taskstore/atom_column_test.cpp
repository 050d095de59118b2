#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "taskstore/kv_map.hpp"
#include "tests/support/kv_pairs.hpp"

namespace vqvec {
namespace {

constexpr std::uint64_t last_atom = 18'446'744'073'709'551'615U;

using Assignments = std::vector<std::pair<std::uint64_t, std::string>>;

struct AssignCase {
  const char* name;
  Assignments assigned;
  Assignments expected;  // what the column then holds
};
const std::vector<AssignCase> assign_cases = {
    {"Nothing", {}, {}},
    {"InOrder", {{1, "a"}, {2, "b"}, {3, "c"}}, {{1, "a"}, {2, "b"}, {3, "c"}}},
    {"Descending", {{3, "c"}, {2, "b"}, {1, "a"}}, {{1, "a"}, {2, "b"}, {3, "c"}}},
    {"OrderOfTheirDigits",
     {{1, "a"}, {10, "j"}, {11, "k"}, {2, "b"}, {3, "c"}},
     {{1, "a"}, {2, "b"}, {3, "c"}, {10, "j"}, {11, "k"}}},
    {"Gap", {{1, "a"}, {2, "b"}, {4, "d"}}, {{1, "a"}, {2, "b"}, {4, "d"}}},
    {"GapClosedLater",
     {{1, "a"}, {3, "c"}, {4, "d"}, {2, "b"}},
     {{1, "a"}, {2, "b"}, {3, "c"}, {4, "d"}}},
    {"NoFirstAtom", {{2, "b"}, {3, "c"}}, {{2, "b"}, {3, "c"}}},
    {"ReplacedInOrder", {{1, "a"}, {2, "b"}, {1, "x"}}, {{1, "x"}, {2, "b"}}},
    {"ReplacedByALongerText", {{1, "a"}, {2, "b"}, {1, "longer"}}, {{1, "longer"}, {2, "b"}}},
    {"ReplacedByAnEmptyText", {{1, "a"}, {1, ""}}, {{1, ""}}},
    {"EmptyTextReplaced", {{1, ""}, {1, "a"}}, {{1, "a"}}},
    {"ReplacedBeyondTheGap", {{5, "e"}, {7, "g"}, {5, "x"}}, {{5, "x"}, {7, "g"}}},
    {"StrayOvertakenByTheSequence",
     {{2, "old"}, {1, "a"}, {2, "new"}, {3, "c"}},
     {{1, "a"}, {2, "new"}, {3, "c"}}},
    {"StrayOvertakenTwice",
     {{2, "old"}, {2, "older"}, {1, "a"}, {2, "new"}, {2, "newest"}},
     {{1, "a"}, {2, "newest"}}},
    {"LargestNumber", {{last_atom, "z"}, {1, "a"}}, {{1, "a"}, {last_atom, "z"}}},
    {"TwoRunsInTurn",
     {{1, "a"}, {2, "b"}, {1, "c"}, {2, "d"}, {3, "e"}},
     {{1, "c"}, {2, "d"}, {3, "e"}}},
};
class AssignedColumn : public testing::TestWithParam<AssignCase> {
 protected:
  AssignedColumn() {
    for (const auto& [atom, value] : GetParam().assigned) {
      column_.assign(atom, value, arena_);
    }
  }

  TextArena arena_;
  AtomColumn column_;
};

TEST_P(AssignedColumn, ListsItsAtomsInOrder) {
  EXPECT_EQ(entries_of(column_), GetParam().expected);
}

TEST_P(AssignedColumn, FindsEveryAtom) {
  const std::map<std::uint64_t, std::string> expected(GetParam().expected.begin(),
                                                      GetParam().expected.end());
  for (const std::uint64_t atom : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 10U, 11U, 12U}) {
    const auto found = expected.find(atom);
    EXPECT_EQ(column_.find(atom),
              found == expected.end() ? std::nullopt : std::optional(found->second))
        << "atom " << atom;
  }
}

TEST_P(AssignedColumn, FindsTheLastAtomFirst) {
  const auto& expected = GetParam().expected;
  for (auto entry = expected.rbegin(); entry != expected.rend(); ++entry) {
    EXPECT_EQ(column_.find(entry->first), entry->second) << "atom " << entry->first;
  }
  EXPECT_EQ(column_.find(last_atom - 1), std::nullopt);
}
INSTANTIATE_TEST_SUITE_P(Columns, AssignedColumn, testing::ValuesIn(assign_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(AtomColumn, HasNoAtomZero) {
  TextArena arena;
  AtomColumn column;
  EXPECT_EQ(column.find(0), std::nullopt);
  column.assign(1, "a", arena);
  column.assign(3, "c", arena);
  EXPECT_EQ(column.find(0), std::nullopt);
}

TEST(AtomColumn, TakesAssignmentsBetweenLookUps) {
  TextArena arena;
  AtomColumn column;
  column.assign(3, "c", arena);
  EXPECT_EQ(column.find(3), "c");
  column.assign(5, "e", arena);
  column.assign(3, "C", arena);
  EXPECT_EQ(column.find(3), "C");
  EXPECT_EQ(column.find(1), std::nullopt);
  column.assign(1, "a", arena);
  EXPECT_EQ(column.find(5), "e");
  column.assign(2, "b", arena);
  EXPECT_EQ(column.find(3), "C");
  EXPECT_EQ(column.find(4), std::nullopt);
  column.assign(4, "d", arena);
  EXPECT_EQ(column.find(5), "e");
  EXPECT_EQ(column.find(6), std::nullopt);
}

TEST(AtomColumn, ListsAnAtomOnceThatWasBeyondAGapAtALookUp) {
  TextArena arena;
  AtomColumn column;
  column.assign(2, "old", arena);
  column.assign(4, "d", arena);
  EXPECT_EQ(column.find(4), "d");
  column.assign(1, "a", arena);
  column.assign(2, "new", arena);
  column.assign(3, "c", arena);
  EXPECT_EQ(entries_of(column), (Assignments{{1, "a"}, {2, "new"}, {3, "c"}, {4, "d"}}));
}

// Small numbers come often enough to fill and close gaps.
std::uint64_t random_atom(std::mt19937_64& random, std::uint64_t next) {
  switch (random() % 8) {
    case 0:
      return last_atom - random() % 3;
    case 1:
      return 1 + random() % 1'000'000'000'000;
    case 2:
    case 3:
      return next;
    default:
      return 1 + random() % 30;
  }
}

TEST(AtomColumn, BehavesAsAnOrderedMapOfItsAtoms) {
  std::mt19937_64 random(20240101);
  for (int round = 0; round < 3'000; ++round) {
    TextArena arena;
    AtomColumn column;
    std::map<std::uint64_t, std::string> expected;
    const bool looks_up_between = round % 2 == 0;
    for (auto steps = random() % 60; steps > 0; --steps) {
      // In every third round most atoms come in order.
      const std::uint64_t next = expected.size() + 1;
      const bool is_in_order = round % 3 == 0 && random() % 8 > 0;
      const std::uint64_t atom = is_in_order ? next : random_atom(random, next);
      const std::string value = std::to_string(random() % 100'000);
      column.assign(atom, value, arena);
      expected[atom] = value;
      const std::uint64_t asked = random_atom(random, expected.size());
      if (looks_up_between) {
        const auto found = expected.find(asked);
        ASSERT_EQ(column.find(asked),
                  found == expected.end() ? std::nullopt : std::optional(found->second));
      }
    }
    ASSERT_EQ(entries_of(column), Assignments(expected.begin(), expected.end()))
        << "round " << round;
    for (const auto& [atom, value] : expected) {
      ASSERT_EQ(column.find(atom), value);
    }
  }
}

// The order in which a sorted listing of the keys as texts has them, which leaves gaps at first.
TEST(AtomColumn, TakesAHundredThousandAtomsInTheOrderOfTheirDigits) {
  std::vector<std::string> numbers;
  for (std::uint64_t atom = 1; atom <= 100'000; ++atom) {
    numbers.push_back(std::to_string(atom));
  }
  std::ranges::sort(numbers);
  TextArena arena;
  AtomColumn column;
  for (const std::string& number : numbers) {
    column.assign(std::stoull(number), number, arena);
  }
  for (std::uint64_t atom = 1; atom <= 100'000; ++atom) {
    ASSERT_EQ(column.find(atom), std::to_string(atom));
  }
  EXPECT_EQ(column.find(100'001), std::nullopt);
}

}  // namespace
}  // namespace vqvec
