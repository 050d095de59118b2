#include "output/same_atoms_check.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "taskstore/atom_vector.hpp"
#include "tests/support/failure.hpp"
#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

const std::string no_failure = "(no failure)";

// A geometry of these symbols; the positions do not matter.
std::string xyz(const std::vector<std::string>& symbols) {
  std::string text = std::to_string(symbols.size()) + "\n\n";
  for (const std::string& symbol : symbols) {
    text += symbol + " 0 0 " + std::to_string(text.size()) + "\n";
  }
  return text;
}

struct Task {
  std::string name;
  std::string counts;    // lines of its result file
  std::string geometry;  // empty: none
};

struct CheckCase {
  const char* name;
  std::vector<Task> tasks;  // all used, in this order
  std::size_t result_length;
  std::string message;
};
const std::vector<CheckCase> check_cases = {
    {"NoTasks", {}, 4, no_failure},
    {"OneTaskWithoutCounts", {{"a", "", ""}}, 4, no_failure},
    {"OneTaskThatMatches", {{"a", "atom_count=3\n", xyz({"O", "H", "H"})}}, 3, no_failure},
    {"CountOfATaskWithoutKeysIsThatOfItsGeometry",
     {{"a", "atom_count=3\n", xyz({"O", "H", "H"})}, {"b", "", xyz({"O", "H", "H"})}},
     3,
     no_failure},
    {"OtherSymbol",
     {{"a", "atom_count=3\n", xyz({"O", "H", "H"})}, {"b", "", xyz({"O", "H", "Cl"})}},
     3,
     "same_atoms failed: atom 3 symbol mismatch between 'a' (H) and 'b' (Cl)"},
    {"FirstDifferenceIsNamed",
     {{"a", "", xyz({"O", "H", "H"})}, {"b", "", xyz({"N", "C", "Cl"})}},
     3,
     "same_atoms failed: atom 1 symbol mismatch between 'a' (O) and 'b' (N)"},
    {"SymbolsAreCaseSensitive",
     {{"a", "", xyz({"Fe"})}, {"b", "", xyz({"FE"})}},
     1,
     "same_atoms failed: atom 1 symbol mismatch between 'a' (Fe) and 'b' (FE)"},
    {"SymbolThatBeginsTheOther",
     {{"a", "", xyz({"C"})}, {"b", "", xyz({"Cl"})}},
     1,
     "same_atoms failed: atom 1 symbol mismatch between 'a' (C) and 'b' (Cl)"},
    {"LongSymbols",
     {{"a", "", xyz({"carbon-in-a-ring-1"})}, {"b", "", xyz({"carbon-in-a-ring-2"})}},
     1,
     "same_atoms failed: atom 1 symbol mismatch between 'a' (carbon-in-a-ring-1) and 'b' "
     "(carbon-in-a-ring-2)"},
    {"LongSymbolsThatAreEqual",
     {{"a", "", xyz({"carbon-in-a-ring"})}, {"b", "", xyz({"carbon-in-a-ring"})}},
     1,
     no_failure},
    {"CountOtherThanTheResult",
     {{"a", "atom_count=5\n", ""}},
     4,
     "same_atoms failed: task 'a' has atom_count 5 but output vector length is 4"},
    {"GeometryKeyOtherThanTheResult",
     {{"a", "geometry.atom_count=5\n", ""}},
     4,
     "same_atoms failed: task 'a' has atom_count 5 but output vector length is 4"},
    {"GeometryOtherThanTheResult",
     {{"a", "", xyz({"O", "H"})}},
     3,
     "same_atoms failed: task 'a' has atom_count 2 but output vector length is 3"},
    {"ResultWithoutAtoms",
     {{"a", "", xyz({"O"})}},
     0,
     "same_atoms failed: task 'a' has atom_count 1 but output vector length is 0"},
    {"NegativeCountWrapsAround",
     {{"a", "atom_count=-1\n", ""}},
     4,
     "same_atoms failed: task 'a' has atom_count 18446744073709551615 but output vector length is "
     "4"},
    {"LaterTaskOtherThanTheResult",
     {{"a", "atom_count=4\n", ""}, {"b", "atom_count=5\n", ""}},
     4,
     "same_atoms failed: task 'b' has atom_count 5 but output vector length is 4"},
    {"FirstTaskThatDiffersIsNamed",
     {{"a", "", ""}, {"b", "atom_count=5\n", ""}, {"c", "atom_count=6\n", ""}},
     4,
     "same_atoms failed: task 'b' has atom_count 5 but output vector length is 4"},
    {"CountComesBeforeSymbols",
     {{"a", "", xyz({"O", "H"})}, {"b", "atom_count=3\n", xyz({"N", "H"})}},
     2,
     "same_atoms failed: task 'b' has atom_count 3 but output vector length is 2"},
    {"SymbolsComeBeforeTheCountOfALaterTask",
     {{"a", "", xyz({"O", "H"})}, {"b", "", xyz({"N", "H"})}, {"c", "atom_count=3\n", ""}},
     2,
     "same_atoms failed: atom 1 symbol mismatch between 'a' (O) and 'b' (N)"},
    {"CountsOfZeroFailNothing",
     {{"a", "atom_count=0\n", ""}, {"b", "atom_count=4\n", ""}, {"c", "atom_count=0\n", ""}},
     4,
     no_failure},
    {"GeometryOfAnotherSizeAfterMatchingCounts",
     {{"a", "atom_count=2\n", xyz({"O", "H", "H"})}, {"b", "atom_count=2\n", xyz({"O", "H"})}},
     2,
     "same_atoms failed: geometry size mismatch between 'a' and 'b'"},
    {"OneAtomMore",
     {{"a", "atom_count=1\n", xyz({"O"})}, {"b", "atom_count=1\n", xyz({"O", "H"})}},
     1,
     "same_atoms failed: geometry size mismatch between 'a' and 'b'"},
    {"SizeComesBeforeSymbols",
     {{"a", "atom_count=1\n", xyz({"O"})}, {"b", "atom_count=1\n", xyz({"N", "H"})}},
     1,
     "same_atoms failed: geometry size mismatch between 'a' and 'b'"},
    {"FirstGeometryIsNotComparedWithTheResultWhenThereIsACount",
     {{"a", "atom_count=2\n", xyz({"O", "H", "H"})}},
     2,
     no_failure},
    {"FirstTaskWithoutGeometry",
     {{"a", "atom_count=2\n", ""}, {"b", "", xyz({"O", "H"})}, {"c", "", xyz({"N", "H"})}},
     2,
     no_failure},
    {"LaterTaskWithoutGeometry",
     {{"a", "", xyz({"O", "H"})}, {"b", "atom_count=2\n", ""}, {"c", "", xyz({"O", "H"})}},
     2,
     no_failure},
    {"MalformedGeometryIsNone",
     {{"a", "", xyz({"O", "H"})}, {"b", "", "2\n\nN 0 0 0\nH 0 0\n"}},
     2,
     no_failure},
    {"EveryTaskIsComparedWithTheFirst",
     {{"a", "", xyz({"O", "H"})}, {"b", "", xyz({"N", "H"})}, {"d", "", xyz({"N", "H"})}},
     2,
     "same_atoms failed: atom 1 symbol mismatch between 'a' (O) and 'b' (N)"},
    {"LastTaskDiffersFromTheFirst",
     {{"a", "", xyz({"O", "H"})}, {"b", "", xyz({"O", "H"})}, {"d", "", xyz({"O", "N"})}},
     2,
     "same_atoms failed: atom 2 symbol mismatch between 'a' (H) and 'd' (N)"},
    {"TaskAfterOneWithoutGeometryDiffersFromTheFirst",
     {{"a", "", xyz({"O", "H"})}, {"b", "", ""}, {"d", "", xyz({"O", "N"})}},
     2,
     "same_atoms failed: atom 2 symbol mismatch between 'a' (H) and 'd' (N)"},
    {"OrderOfUseDecides",
     {{"d", "", xyz({"O"})}, {"b", "", xyz({"N"})}, {"a", "", xyz({"C"})}},
     1,
     "same_atoms failed: atom 1 symbol mismatch between 'd' (O) and 'b' (N)"},
};
class SameAtoms : public testing::TestWithParam<CheckCase> {
 protected:
  SameAtoms() {
    for (const Task& task : GetParam().tasks) {
      work_.write("job/" + task.name + "/.vorq.result.kv", task.counts);
      if (!task.geometry.empty()) {
        work_.write("job/" + task.name + "/a.xyz", task.geometry);
      }
      context_.add_used_task(task.name);
    }
  }

  std::string failure() {
    return failure_of([this] { check_same_atoms(context_, GetParam().result_length); });
  }

  WorkPlace work_;
  EvalContext context_;
};

TEST_P(SameAtoms, AreRequiredOfAllTasks) {
  EXPECT_EQ(failure(), GetParam().message);
}

TEST_P(SameAtoms, AreRequiredAgainByASecondCheck) {
  failure();
  EXPECT_EQ(failure(), GetParam().message);
  EXPECT_EQ(context_.used_tasks().size(), GetParam().tasks.size());
}
INSTANTIATE_TEST_SUITE_P(Tasks, SameAtoms, testing::ValuesIn(check_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// How tasks are named

TEST(SameAtomsCheck, NamesTheTaskTextInTheListBesideTheResult) {
  const WorkPlace work;
  work.write("job/a/.vorq.result.kv", "atom_count=5\n");
  EvalContext context;
  context.add_used_task(" ./a ");
  EXPECT_EQ(failure_of([&] { check_same_atoms(context, 4); }),
            "same_atoms failed: task ' ./a ' has atom_count 5 but output vector length is 4");
}

TEST(SameAtomsCheck, NamesTheTrimmedTaskTextsBesideOneAnother) {
  const WorkPlace work;
  work.write("job/a/a.xyz", xyz({"O"}));
  work.write("job/b/a.xyz", xyz({"N"}));
  EvalContext context;
  context.add_used_task(" ./a\t");
  context.add_used_task("\r\nb");
  EXPECT_EQ(failure_of([&] { check_same_atoms(context, 1); }),
            "same_atoms failed: atom 1 symbol mismatch between './a' (O) and 'b' (N)");
}

TEST(SameAtomsCheck, ComparesTheWorkingDirectoryLikeAnyTask) {
  const WorkPlace work;
  work.write("job/here/a.xyz", xyz({"O", "H"}));
  work.write("job/b/a.xyz", xyz({"O", "F"}));
  EvalContext context;
  context.add_used_task("self");
  context.add_used_task("");
  context.add_used_task("b");
  EXPECT_EQ(failure_of([&] { check_same_atoms(context, 2); }),
            "same_atoms failed: atom 2 symbol mismatch between 'self' (H) and 'b' (F)");
}

TEST(SameAtomsCheck, PassesTasksThatAreNowhere) {
  const WorkPlace work;
  work.write("job/b/a.xyz", xyz({"O", "H"}));
  EvalContext context;
  context.add_used_task("neg(a");
  context.add_used_task("b");
  EXPECT_EQ(failure_of([&] { check_same_atoms(context, 2); }), no_failure);
  EXPECT_EQ(failure_of([&] { check_same_atoms(context, 3); }),
            "same_atoms failed: task 'b' has atom_count 2 but output vector length is 3");
}

TEST(SameAtomsCheck, DoesNotLookAtTasksThatGaveOnlyScalars) {
  const WorkPlace work;
  work.write("job/a/.vorq.result.kv", "atoms.1.q=1\natoms.2.q=2\n");
  work.write("job/a/a.xyz", xyz({"O", "H"}));
  work.write("job/ref/.vorq.result.kv", "charge=1\natom_count=7\n");
  EvalContext context;
  load_atom_vector(context, "a", "q");
  load_task_scalar(context, "ref", "charge", "wmean()");
  EXPECT_EQ(failure_of([&] { check_same_atoms(context, 2); }), no_failure);
}

}  // namespace
}  // namespace vqvec
