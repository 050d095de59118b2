#include "taskstore/eval_context.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

using Texts = std::vector<std::string_view>;

struct UsedCase {
  const char* name;
  Texts added;
  Texts expected;
};
const std::vector<UsedCase> used_cases = {
    {"Nothing", {}, {}},
    {"OneTask", {"a"}, {"a"}},
    {"OrderOfFirstUse", {"c", "a", "b"}, {"c", "a", "b"}},
    {"NoDuplicates", {"b", "a", "b", "a", "c", "b"}, {"b", "a", "c"}},
    {"SpellingsAreApart",
     {"self", "Self", ".", "", "./a", "a", "a/"},
     {"self", "Self", ".", "", "./a", "a", "a/"}},
    {"SpacesAreNotTrimmed", {"a", " a", "a "}, {"a", " a", "a "}},
    {"EmptyTextTwice", {"", ""}, {""}},
};
class UsedTasks : public testing::TestWithParam<UsedCase> {};

TEST_P(UsedTasks, AreListedInOrderOfFirstUse) {
  EvalContext context;
  for (const std::string_view task_text : GetParam().added) {
    context.add_used_task(task_text);
  }
  EXPECT_EQ(context.used_tasks(), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Lists, UsedTasks, testing::ValuesIn(used_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(EvalContext, ComparesTextsAndNotTheirPlaces) {
  const std::string one = "task";
  const std::string other = "task";
  EvalContext context;
  context.add_used_task(one);
  context.add_used_task(other);
  EXPECT_EQ(context.used_tasks(), Texts{"task"});
  EXPECT_EQ(&resolve_task(context, one), &resolve_task(context, other));
}

TEST(EvalContext, NeverMovesATask) {
  std::vector<std::string> names;
  for (int i = 0; i < 2'000; ++i) {
    names.push_back("missing-task" + std::to_string(i));
  }
  EvalContext context;
  std::vector<const TaskDir*> tasks;
  for (const std::string& name : names) {
    tasks.push_back(&resolve_task(context, name));
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    ASSERT_EQ(&resolve_task(context, names[i]), tasks[i]);
    ASSERT_EQ(tasks[i]->name, names[i]);
  }
}

TEST(EvalContext, DoesNotAddAResolvedTaskToTheUsedTasks) {
  EvalContext context;
  resolve_task(context, "a");
  EXPECT_TRUE(context.used_tasks().empty());
}

TEST(EvalContext, DropsValuesButNotGeometries) {
  const TaskTree tree;
  tree.add_task("a", "atoms.1.q=1\n");
  tree.write("a/a.xyz", "1\n\nH 1 2 3\n");
  EvalContext context;
  const TaskDir& task = resolve_task(context, "a");
  ASSERT_EQ(task.kv.find("atoms.1.q"), "1");
  context.drop_values();
  EXPECT_EQ(&resolve_task(context, "a"), &task);
  EXPECT_EQ(task.kv.find("atoms.1.q"), std::nullopt);
  ASSERT_EQ(task.atoms.size(), 1U);
  EXPECT_EQ(task.atoms[0], (GeomAtom{"H", 1, 2, 3}));
}

// What a statement needs

// The positions of tasks "a" and "b", read in this order for the statement "q = a:q" with these
// options, after "a" was used or before.
std::string kept_positions(const std::string& options, bool is_used) {
  const TaskTree tree;
  tree.write("a/a.xyz", "1\n\nH 1 2 3\n");
  tree.write("b/b.xyz", "1\n\nH 1 2 3\n");
  const DslStatement statement = parse_dsl_statement("q = a:q" + options);
  EvalContext context(needs_of(statement));
  std::string kept;
  for (const char* const name : {"a", "b"}) {
    kept += resolve_task(context, name).atoms.has_positions() ? name : "";
    if (is_used) {
      context.add_used_task(name);
    }
  }
  return kept;
}

TEST(NeedsOfAStatement, AreThePositionsThatItMayWrite) {
  EXPECT_EQ(kept_positions("", true), "");
  EXPECT_EQ(kept_positions(" --out o.xyz", true), "a");
  EXPECT_EQ(kept_positions(" --chg o.chg", true), "a");
  EXPECT_EQ(kept_positions(" --out o.xyz", false), "ab");
  EXPECT_EQ(kept_positions(" --out o.xyz --geom b", true), "ab");
  EXPECT_EQ(kept_positions(" --geom b", true), "");
}

TEST(NeedsOfAStatement, AreThePropertiesThatItMayName) {
  const TaskTree tree;
  tree.add_task("a", "atoms.1.q=1\natoms.1.p=2\ncharge=3\n");
  const DslStatement statement = parse_dsl_statement("p = a:q");
  EvalContext context(needs_of(statement));
  const KvMap& pairs = resolve_task(context, "a").kv;
  EXPECT_EQ(pairs.find("atoms.1.q"), "1");
  EXPECT_EQ(pairs.find("atoms.1.p"), std::nullopt);
  EXPECT_EQ(pairs.find("charge"), "3");
}

TEST(EvalContext, KeepsEverythingUnlessToldOtherwise) {
  const TaskTree tree;
  tree.add_task("a", "atoms.1.q=1\n");
  tree.write("a/a.xyz", "1\n\nH 1 2 3\n");
  EvalContext context;
  EXPECT_TRUE(resolve_task(context, "a").atoms.has_positions());
  EXPECT_EQ(resolve_task(context, "a").kv.find("atoms.1.q"), "1");
}

TEST(EvalContext, KeepsTheSymbolsOfLikeTasksOnce) {
  const TaskTree tree;
  tree.write("a/a.xyz", "2\n\nH 1 2 3\nOxygen18 4 5 6\n");
  tree.write("b/b.xyz", "2\n\nH 1 2 4\nOxygen18 4 5 7\n");
  tree.write("c/c.xyz", "2\n\nH 1 2 4\nOxygen17 4 5 7\n");
  tree.write("d/d.xyz", "1\n\nH 1 2 4\n");
  EvalContext context;
  const Geometry& a = resolve_task(context, "a").atoms;
  const Geometry& b = resolve_task(context, "b").atoms;
  const Geometry& c = resolve_task(context, "c").atoms;
  const Geometry& d = resolve_task(context, "d").atoms;
  EXPECT_TRUE(b.shares_symbols(a));
  EXPECT_FALSE(c.shares_symbols(b));
  EXPECT_FALSE(d.shares_symbols(c));
  EXPECT_EQ(a[1], (GeomAtom{"Oxygen18", 4, 5, 6}));
  EXPECT_EQ(b[1], (GeomAtom{"Oxygen18", 4, 5, 7}));
  EXPECT_EQ(c[1], (GeomAtom{"Oxygen17", 4, 5, 7}));
  EXPECT_EQ(d[0], (GeomAtom{"H", 1, 2, 4}));
}

TEST(EvalContext, ReadsGeometriesWithoutPositionsIfTheyAreOnlyChecked) {
  const TaskTree tree;
  tree.write("a/a.xyz", "1\n\nH 1 2 x\n");
  tree.write("a/b.xyz", "1\n\nO 1 2 3\n");
  EvalContext context({.positions = PositionsOf::no_task});
  const TaskDir& task = resolve_task(context, "a");
  ASSERT_EQ(task.atoms.size(), 1U);
  EXPECT_EQ(task.atoms.symbol(0), "O");
}

TEST(EvalContext, KeepsTextsThatNobodyElseKeeps) {
  EvalContext context;
  for (int i = 0; i < 1'000; ++i) {
    context.add_used_task(context.texts.keep("task" + std::to_string(i)));
  }
  ASSERT_EQ(context.used_tasks().size(), 1'000U);
  EXPECT_EQ(context.used_tasks().front(), "task0");
  EXPECT_EQ(context.used_tasks().back(), "task999");
}

}  // namespace
}  // namespace vqvec
