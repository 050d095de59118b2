#include "taskstore/atom_vector.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/exactly.hpp"
#include "tests/support/failure.hpp"
#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

using UsedTasks = std::vector<std::string_view>;

const std::string two_atoms = "2\n\nO 0 0 0\nH 0 0 1\n";

// A task with these files, beside the working directory.
struct TaskFiles {
  std::string result_kv;
  std::string geometry;     // empty: none
  std::string user_values;  // empty: none
};

void write_task(const WorkPlace& work, const std::string& name, const TaskFiles& files) {
  const std::string dir = "job/" + name;
  work.write(dir + "/.vorq.result.kv", files.result_kv);
  if (!files.geometry.empty()) {
    work.write(dir + "/a.xyz", files.geometry);
  }
  if (!files.user_values.empty()) {
    work.write(dir + "/.vorq.values.user.kv", files.user_values);
  }
}

// Vectors that are there

struct VectorCase {
  const char* name;
  TaskFiles files;
  std::string property;
  AtomVector expected;
};
const std::vector<VectorCase> vector_cases = {
    {"OneAtom", {"atoms.1.q=0.5\n", "", ""}, "q", {0.5}},
    {"SeveralAtoms", {"atoms.1.q=1\natoms.2.q=-2\natoms.3.q=3e-1\n", "", ""}, "q", {1, -2, 0.3}},
    {"KeysOutOfOrder", {"atoms.3.q=3\natoms.1.q=1\natoms.2.q=2\n", "", ""}, "q", {1, 2, 3}},
    {"KeysDescending", {"atoms.3.q=3\natoms.2.q=2\natoms.1.q=1\n", "", ""}, "q", {1, 2, 3}},
    {"KeysInTheOrderOfTheirDigits",
     {"atoms.1.q=1\natoms.10.q=10\natoms.11.q=11\natoms.2.q=2\natoms.3.q=3\natoms.4.q=4\n"
      "atoms.5.q=5\natoms.6.q=6\natoms.7.q=7\natoms.8.q=8\natoms.9.q=9\n",
      "", ""},
     "q",
     {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
    {"LastLineOfAnAtomWins", {"atoms.1.q=1\natoms.2.q=2\natoms.1.q=3\n", "", ""}, "q", {3, 2}},
    {"FirstGapEndsTheVector", {"atoms.1.q=1\natoms.2.q=2\natoms.4.q=4\n", "", ""}, "q", {1, 2}},
    {"ValuesAfterTheGapAreNotRead", {"atoms.1.q=1\natoms.3.q=nonsense\n", "", ""}, "q", {1}},
    {"AtomZeroIsIgnored", {"atoms.0.q=9\natoms.1.q=1\n", "", ""}, "q", {1}},
    {"LeadingZeroIsAnotherKey", {"atoms.01.q=9\natoms.1.q=1\natoms.02.q=9\n", "", ""}, "q", {1}},
    {"SignedNumberIsAnotherKey", {"atoms.1.q=1\natoms.+2.q=9\n", "", ""}, "q", {1}},
    {"OtherPropertiesDoNotMatter",
     {"atoms.1.p=8\natoms.1.q=1\natoms.2.p=9\natoms.1.qq=7\natoms.1.Q=6\n", "", ""},
     "q",
     {1}},
    {"PropertyWithDots",
     {"atoms.1.charge.resp=0.25\natoms.1.charge=7\natoms.2.charge.resp=-0.25\n", "", ""},
     "charge.resp",
     {0.25, -0.25}},
    {"PropertyThatLooksLikeANumber", {"atoms.1.2=0.5\natoms.2.2=1.5\n", "", ""}, "2", {0.5, 1.5}},
    {"PropertyThatBeginsWithANumber", {"atoms.1.2.q=0.5\natoms.2.q=9\n", "", ""}, "2.q", {0.5}},
    {"PropertyOfAnyBytes", {"atoms.1.電荷:*/[]=0.5\n", "", ""}, "電荷:*/[]", {0.5}},
    {"EmptyProperty", {"atoms.1.=0.5\natoms.1=9\n", "", ""}, "", {0.5}},
    {"ValueBeginsWithSpaces", {"atoms.1.q =  \t0.5\natoms.2.q=\r 1\n", "", ""}, "q", {0.5, 1}},
    {"ValueAfterVerticalTab", {"atoms.1.q=\v0.5\natoms.2.q=\f1\n", "", ""}, "q", {0.5, 1}},
    {"ValuesOfEverySpelling",
     {"atoms.1.q=+1.5\natoms.2.q=.5\natoms.3.q=5.\natoms.4.q=1E2\natoms.5.q=007\n", "", ""},
     "q",
     {1.5, 0.5, 5, 100, 7}},
    {"HexadecimalValues", {"atoms.1.q=0x10\natoms.2.q=-0x1.8p1\n", "", ""}, "q", {16, -3}},
    {"SmallValues", {"atoms.1.q=1e-400\natoms.2.q=5e-324\n", "", ""}, "q", {0, 5e-324}},
    {"NegativeZero", {"atoms.1.q=-0\natoms.2.q=-1e-400\n", "", ""}, "q", {-0.0, -0.0}},
    {"LargestValue", {"atoms.1.q=1.7976931348623157e308\n", "", ""}, "q", {1.7976931348623157e308}},
    {"CrLfLineEnds", {"atoms.1.q=1\r\natoms.2.q=2\r\natom_count=2\r\n", "", ""}, "q", {1, 2}},
    {"UserOverridesOneAtom",
     {"atoms.1.q=1\natoms.2.q=2\natoms.3.q=3\n", "", "atoms.2.q=20\n"},
     "q",
     {1, 20, 3}},
    {"UserClosesAGap", {"atoms.1.q=1\natoms.3.q=3\n", "", "atoms.2.q=2\n"}, "q", {1, 2, 3}},
    {"UserOverridesABadValue", {"atoms.1.q=bad\n", "", "atoms.1.q=1\n"}, "q", {1}},
    {"CountThatMatches", {"atoms.1.q=1\natoms.2.q=2\natom_count=2\n", "", ""}, "q", {1, 2}},
    {"GeometryThatMatches", {"atoms.1.q=1\natoms.2.q=2\n", two_atoms, ""}, "q", {1, 2}},
    {"CountWinsOverTheGeometry", {"atoms.1.q=1\natom_count=1\n", two_atoms, ""}, "q", {1}},
    {"GeometryCountThatMatches", {"atoms.1.q=1\ngeometry.atom_count=1\n", "", ""}, "q", {1}},
    {"CountOfZeroIsUnknown", {"atoms.1.q=1\natom_count=0\n", "", ""}, "q", {1}},
    {"CountThatIsNoNumberIsUnknown", {"atoms.1.q=1\natom_count=many\n", "", ""}, "q", {1}},
    {"UserOverridesTheCount", {"atoms.1.q=1\natom_count=7\n", "", "atom_count=1\n"}, "q", {1}},
};
class LoadedVector : public testing::TestWithParam<VectorCase> {};

TEST_P(LoadedVector, HoldsTheValuesInOrderOfTheAtoms) {
  const WorkPlace work;
  write_task(work, "t", GetParam().files);
  EvalContext context;
  EXPECT_THAT(load_atom_vector(context, "t", GetParam().property), exactly(GetParam().expected));
  EXPECT_EQ(context.used_tasks(), UsedTasks{"t"});
}
INSTANTIATE_TEST_SUITE_P(Tasks, LoadedVector, testing::ValuesIn(vector_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Vectors that are not

struct FailureCase {
  const char* name;
  TaskFiles files;
  std::string property;
  std::string message;
};
const std::vector<FailureCase> vector_failures = {
    {"NoData", {"", "", ""}, "q", "task 't' does not contain atom vector 'q'"},
    {"OtherProperty", {"atoms.1.p=1\n", "", ""}, "q", "task 't' does not contain atom vector 'q'"},
    {"OtherCase", {"atoms.1.q=1\n", "", ""}, "Q", "task 't' does not contain atom vector 'Q'"},
    {"OnlyAtomZero", {"atoms.0.q=1\n", "", ""}, "q", "task 't' does not contain atom vector 'q'"},
    {"NoFirstAtom",
     {"atoms.2.q=1\natoms.3.q=2\n", "", ""},
     "q",
     "task 't' does not contain atom vector 'q'"},
    {"OnlyALeadingZero",
     {"atoms.01.q=1\n", "", ""},
     "q",
     "task 't' does not contain atom vector 'q'"},
    {"ScalarOfThatName", {"q=1\n", "", ""}, "q", "task 't' does not contain atom vector 'q'"},
    {"EmptyProperty", {"atoms.1=1\n", "", ""}, "", "task 't' does not contain atom vector ''"},
    {"MissingVectorComesBeforeTheCount",
     {"atom_count=2\n", two_atoms, ""},
     "q",
     "task 't' does not contain atom vector 'q'"},
    {"Word", {"atoms.1.q=abc\n", "", ""}, "q", "t:q atom 1 is not a finite number: abc"},
    {"EmptyValue", {"atoms.1.q=\n", "", ""}, "q", "t:q atom 1 is not a finite number: "},
    {"Nan",
     {"atoms.1.q=1\natoms.2.q=nan\n", "", ""},
     "q",
     "t:q atom 2 is not a finite number: nan"},
    {"Infinity", {"atoms.1.q=-inf\n", "", ""}, "q", "t:q atom 1 is not a finite number: -inf"},
    {"TooLarge", {"atoms.1.q=1e999\n", "", ""}, "q", "t:q atom 1 is not a finite number: 1e999"},
    {"Comma", {"atoms.1.q=1,5\n", "", ""}, "q", "t:q atom 1 is not a finite number: 1,5"},
    {"TwoNumbers", {"atoms.1.q=1 2\n", "", ""}, "q", "t:q atom 1 is not a finite number: 1 2"},
    {"FortranExponent", {"atoms.1.q=1D5\n", "", ""}, "q", "t:q atom 1 is not a finite number: 1D5"},
    {"CommentAfterTheValue",
     {"atoms.1.q=1 # e\n", "", ""},
     "q",
     "t:q atom 1 is not a finite number: 1 # e"},
    {"SpacesOfTheValueAreShown",
     {"atoms.1.q = \tabc \n", "", ""},
     "q",
     "t:q atom 1 is not a finite number:  \tabc"},
    {"NulAfterTheNumber",
     {"atoms.1.q=1\0\n"s, "", ""},
     "q",
     "t:q atom 1 is not a finite number: 1"},
    {"NulInTheNumber",
     {"atoms.1.q=1\0002\n"s, "", ""},
     "q",
     "t:q atom 1 is not a finite number: 1"},
    {"NulOnly", {"atoms.1.q=\0\n"s, "", ""}, "q", "t:q atom 1 is not a finite number: "},
    {"BadValueOfATenthAtom",
     {"atoms.1.q=1\natoms.2.q=1\natoms.3.q=1\natoms.4.q=1\natoms.5.q=1\natoms.6.q=1\n"
      "atoms.7.q=1\natoms.8.q=1\natoms.9.q=1\natoms.10.q=x\n",
      "", ""},
     "q",
     "t:q atom 10 is not a finite number: x"},
    {"FirstBadValueIsReported",
     {"atoms.3.q=z\natoms.2.q=y\natoms.1.q=1\n", "", ""},
     "q",
     "t:q atom 2 is not a finite number: y"},
    {"BadValueComesBeforeTheCount",
     {"atoms.1.q=x\natom_count=7\n", "", ""},
     "q",
     "t:q atom 1 is not a finite number: x"},
    {"UserOverridesWithABadValue",
     {"atoms.1.q=1\n", "", "atoms.1.q=x\n"},
     "q",
     "t:q atom 1 is not a finite number: x"},
    {"ShorterThanTheCount",
     {"atoms.1.q=1\natoms.2.q=2\natoms.4.q=4\natom_count=4\n", "", ""},
     "q",
     "task 't' vector 'q' length 2 does not match atom_count 4"},
    {"LongerThanTheCount",
     {"atoms.1.q=1\natoms.2.q=2\natom_count=1\n", "", ""},
     "q",
     "task 't' vector 'q' length 2 does not match atom_count 1"},
    {"OtherThanTheGeometryCount",
     {"atoms.1.charge.resp=1\ngeometry.atom_count=3\n", "", ""},
     "charge.resp",
     "task 't' vector 'charge.resp' length 1 does not match atom_count 3"},
    {"OtherThanTheGeometry",
     {"atoms.1.q=1\natoms.2.q=2\natoms.3.q=3\n", two_atoms, ""},
     "q",
     "task 't' vector 'q' length 3 does not match atom_count 2"},
    {"CountWinsOverAGeometryThatMatches",
     {"atoms.1.q=1\natoms.2.q=2\natom_count=3\n", two_atoms, ""},
     "q",
     "task 't' vector 'q' length 2 does not match atom_count 3"},
    {"CountWinsOverAGeometryCountThatMatches",
     {"atoms.1.q=1\natom_count=3\ngeometry.atom_count=1\n", "", ""},
     "q",
     "task 't' vector 'q' length 1 does not match atom_count 3"},
    {"NegativeCountWrapsAround",
     {"atoms.1.q=1\natoms.2.q=2\natom_count=-1\n", "", ""},
     "q",
     "task 't' vector 'q' length 2 does not match atom_count 18446744073709551615"},
    {"LargestCount",
     {"atoms.1.q=1\natom_count=18446744073709551615\n", "", ""},
     "q",
     "task 't' vector 'q' length 1 does not match atom_count 18446744073709551615"},
};
class VectorFailure : public testing::TestWithParam<FailureCase> {};

TEST_P(VectorFailure, IsOneMessage) {
  const WorkPlace work;
  write_task(work, "t", GetParam().files);
  EvalContext context;
  EXPECT_EQ(failure_of([&] { load_atom_vector(context, "t", GetParam().property); }),
            GetParam().message);
}

TEST_P(VectorFailure, LeavesTheTaskAmongTheUsedOnes) {
  const WorkPlace work;
  write_task(work, "t", GetParam().files);
  EvalContext context;
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_NE(failure_of([&] { load_atom_vector(context, "t", GetParam().property); }),
              "(no failure)");
    EXPECT_EQ(context.used_tasks(), UsedTasks{"t"});
  }
}
INSTANTIATE_TEST_SUITE_P(Tasks, VectorFailure, testing::ValuesIn(vector_failures),
                         [](const auto& one) { return std::string(one.param.name); });

// Task texts

TEST(LoadAtomVector, NamesTheTaskAsItIsWritten) {
  const WorkPlace work;
  work.write("job/t/.vorq.result.kv", "atoms.1.q=x\natoms.1.r=1\natom_count=2\n");
  EvalContext context;
  EXPECT_EQ(failure_of([&] { load_atom_vector(context, "./t", "q"); }),
            "./t:q atom 1 is not a finite number: x");
  EXPECT_EQ(failure_of([&] { load_atom_vector(context, " t ", "q"); }),
            " t :q atom 1 is not a finite number: x");
  EXPECT_EQ(failure_of([&] { load_atom_vector(context, " t ", "p"); }),
            "task ' t ' does not contain atom vector 'p'");
  EXPECT_EQ(failure_of([&] { load_atom_vector(context, "../here/../t", "r"); }),
            "task '../here/../t' vector 'r' length 1 does not match atom_count 2");
}

TEST(LoadAtomVector, FailsForATaskThatIsNowhere) {
  const WorkPlace work;
  EvalContext context;
  EXPECT_EQ(failure_of([&] { load_atom_vector(context, "none", "q"); }),
            "task 'none' does not contain atom vector 'q'");
  EXPECT_EQ(failure_of([&] { load_atom_vector(context, "", "q"); }),
            "task '' does not contain atom vector 'q'");
}

TEST(LoadAtomVector, ListsTasksInOrderOfFirstUse) {
  const WorkPlace work;
  for (const char* const name : {"a", "b", "here"}) {
    write_task(work, name, {"atoms.1.q=1\natoms.1.p=2\n", "", ""});
  }
  EvalContext context;
  for (const char* const task_text : {"b", "self", "a", "b", "", "a", " a", "Self"}) {
    EXPECT_EQ(load_atom_vector(context, task_text, "q"), AtomVector{1});
  }
  EXPECT_EQ(load_atom_vector(context, "b", "p"), AtomVector{2});
  EXPECT_EQ(context.used_tasks(), (UsedTasks{"b", "self", "a", "", " a", "Self"}));
}

TEST(LoadAtomVector, ReadsTheSameValuesAgain) {
  const WorkPlace work;
  write_task(work, "t", {"atoms.2.q=2\natoms.1.q=1\natoms.4.q=4\n", "", ""});
  EvalContext context;
  EXPECT_EQ(load_atom_vector(context, "t", "q"), (AtomVector{1, 2}));
  write_task(work, "t", {"atoms.1.q=9\n", "", ""});
  EXPECT_EQ(load_atom_vector(context, "t", "q"), (AtomVector{1, 2}));
}

TEST(LoadAtomVector, TakesAHundredThousandAtoms) {
  std::string lines = "atom_count=100000\n";
  AtomVector expected;
  for (int atom = 1; atom <= 100'000; ++atom) {
    lines += "atoms." + std::to_string(atom) + ".q=" + std::to_string(atom) + ".5\n";
    expected.push_back(atom + 0.5);
  }
  const WorkPlace work;
  write_task(work, "t", {lines, "", ""});
  EvalContext context;
  EXPECT_EQ(load_atom_vector(context, "t", "q"), expected);
}

// Scalars

struct ScalarCase {
  const char* name;
  std::string result_kv;
  std::string key;
  double expected;
};
const std::vector<ScalarCase> scalar_cases = {
    {"Plain", "weight=2.5\n", "weight", 2.5},
    {"Negative", "weight=-1\n", "weight", -1},
    {"SpacesBeforeTheValue", "weight = \t 2.5\n", "weight", 2.5},
    {"Hexadecimal", "weight=0x10\n", "weight", 16},
    {"KeyWithDots", "a.b.c=3\n", "a.b.c", 3},
    {"KeyOfAnAtom", "atoms.2.q=7\n", "atoms.2.q", 7},
    {"KeyWithASpaceInside", "my weight=4\n", "my weight", 4},
    {"KeyOfAnyBytes", "電荷:*=5\n", "電荷:*", 5},
    {"KeyOfVerticalTab", "\v=6\n", "\v", 6},
    {"LastLineWins", "w=1\nw=2\n", "w", 2},
    {"CountAsAScalar", "atom_count=3\n", "atom_count", 3},
};
class LoadedScalar : public testing::TestWithParam<ScalarCase> {};

TEST_P(LoadedScalar, IsTheNumberOfTheKey) {
  const WorkPlace work;
  write_task(work, "t", {GetParam().result_kv, "", ""});
  EvalContext context;
  EXPECT_EQ(load_task_scalar(context, "t", GetParam().key, "wmean()"), GetParam().expected);
  EXPECT_TRUE(context.used_tasks().empty());
}
INSTANTIATE_TEST_SUITE_P(Keys, LoadedScalar, testing::ValuesIn(scalar_cases),
                         [](const auto& one) { return std::string(one.param.name); });

struct ScalarFailureCase {
  const char* name;
  std::string result_kv;
  std::string key;
  std::string message;  // with the label "wmean()" and the task 't1'
};
const std::vector<ScalarFailureCase> scalar_failures = {
    {"EmptyKey", "=1\n", "", "wmean() scalar key cannot be empty"},
    {"KeyOfSpaces", "w=1\n", "  ", "wmean() scalar key cannot be empty"},
    {"KeyOfAllSpaces", "w=1\n", " \t\r\n", "wmean() scalar key cannot be empty"},
    {"Missing", "", "weight", "task 't1' does not contain scalar 'weight' for wmean()"},
    {"OtherCase", "Weight=1\n", "weight", "task 't1' does not contain scalar 'weight' for wmean()"},
    {"KeyIsNotTrimmed", "weight=1\n", " weight ",
     "task 't1' does not contain scalar ' weight ' for wmean()"},
    {"VectorOfThatName", "atoms.1.weight=1\n", "weight",
     "task 't1' does not contain scalar 'weight' for wmean()"},
    {"Word", "weight=abc\n", "weight", "wmean() t1.weight is not a finite number: abc"},
    {"EmptyValue", "weight=\n", "weight", "wmean() t1.weight is not a finite number: "},
    {"Nan", "weight=nan\n", "weight", "wmean() t1.weight is not a finite number: nan"},
    {"Infinity", "weight=inf\n", "weight", "wmean() t1.weight is not a finite number: inf"},
    {"TooLarge", "weight=-1e999\n", "weight", "wmean() t1.weight is not a finite number: -1e999"},
    {"SpacesOfTheValueAreShown", "weight =  1 2\n", "weight",
     "wmean() t1.weight is not a finite number:   1 2"},
    {"Nul", "weight=1\0\n"s, "weight", "wmean() t1.weight is not a finite number: 1"},
    {"KeyWithDots", "a.b=x\n", "a.b", "wmean() t1.a.b is not a finite number: x"},
};
class ScalarFailure : public testing::TestWithParam<ScalarFailureCase> {};

TEST_P(ScalarFailure, IsOneMessage) {
  const WorkPlace work;
  write_task(work, "t1", {GetParam().result_kv, "", ""});
  EvalContext context;
  EXPECT_EQ(failure_of([&] { load_task_scalar(context, "t1", GetParam().key, "wmean()"); }),
            GetParam().message);
  EXPECT_TRUE(context.used_tasks().empty());
}
INSTANTIATE_TEST_SUITE_P(Keys, ScalarFailure, testing::ValuesIn(scalar_failures),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(LoadTaskScalar, NamesTheCallerAndTheTaskAsWritten) {
  const WorkPlace work;
  write_task(work, "t1", {"w=x\n", "", ""});
  EvalContext context;
  EXPECT_EQ(failure_of([&] { load_task_scalar(context, "./t1", "w", "wsum()"); }),
            "wsum() ./t1.w is not a finite number: x");
  EXPECT_EQ(failure_of([&] { load_task_scalar(context, "none", "w", "wavg()"); }),
            "task 'none' does not contain scalar 'w' for wavg()");
  EXPECT_EQ(failure_of([&] { load_task_scalar(context, "t1", " ", "any label"); }),
            "any label scalar key cannot be empty");
}

TEST(LoadTaskScalar, DoesNotLookAtTheTaskForAnEmptyKey) {
  const WorkPlace work;
  EvalContext context;
  EXPECT_EQ(failure_of([&] { load_task_scalar(context, "late", "", "wmean()"); }),
            "wmean() scalar key cannot be empty");
  write_task(work, "late", {"w=1\n", "", ""});
  EXPECT_EQ(load_task_scalar(context, "late", "w", "wmean()"), 1.0);
}

TEST(LoadTaskScalar, LeavesTheListOfUsedTasksAsItWas) {
  const WorkPlace work;
  write_task(work, "a", {"atoms.1.q=1\nw=2\n", "", ""});
  write_task(work, "b", {"w=3\n", "", ""});
  EvalContext context;
  load_atom_vector(context, "a", "q");
  load_task_scalar(context, "b", "w", "wmean()");
  load_task_scalar(context, "a", "w", "wmean()");
  EXPECT_EQ(context.used_tasks(), UsedTasks{"a"});
}

// Atom counts

struct CountCase {
  const char* name;
  std::vector<std::pair<std::string, std::string>> pairs;
  std::size_t geometry_size;
  std::uint64_t expected;
};
const std::vector<CountCase> count_cases = {
    {"NothingIsKnown", {}, 0, 0},
    {"Plain", {{"atom_count", "3"}}, 0, 3},
    {"Geometry", {}, 3, 3},
    {"GeometryKey", {{"geometry.atom_count", "5"}}, 0, 5},
    {"FirstKeyWins", {{"atom_count", "3"}, {"geometry.atom_count", "5"}}, 7, 3},
    {"SecondKeyWinsOverTheGeometry", {{"geometry.atom_count", "5"}}, 7, 5},
    {"ZeroIsIgnored", {{"atom_count", "0"}, {"geometry.atom_count", "5"}}, 7, 5},
    {"ZerosAreIgnored", {{"atom_count", "000"}, {"geometry.atom_count", "-0"}}, 7, 7},
    {"ZerosAndNoGeometry", {{"atom_count", "0"}, {"geometry.atom_count", "0"}}, 0, 0},
    {"WordIsIgnored", {{"atom_count", "abc"}, {"geometry.atom_count", "5"}}, 7, 5},
    {"WordsAreIgnored", {{"atom_count", "abc"}, {"geometry.atom_count", "x5"}}, 7, 7},
    {"EmptyIsIgnored", {{"atom_count", ""}}, 7, 7},
    {"SpacesAreIgnored", {{"atom_count", " \t "}}, 7, 7},
    {"SpacesAround", {{"atom_count", " \t3\r\n "}}, 0, 3},
    {"VerticalTabBefore", {{"atom_count", "\v\f3"}}, 0, 3},
    {"VerticalTabAfterIt", {{"atom_count", "3\v"}}, 0, 3},
    {"Plus", {{"atom_count", "+3"}}, 0, 3},
    {"MinusWrapsAround", {{"atom_count", "-1"}}, 7, 18446744073709551615U},
    {"MinusWrapsAroundToOne", {{"atom_count", "-18446744073709551615"}}, 7, 1},
    {"LeadingZeros", {{"atom_count", "0003"}}, 0, 3},
    {"LeadingZeroIsNotOctal", {{"atom_count", "010"}}, 0, 10},
    {"HexadecimalIsZero", {{"atom_count", "0x10"}}, 7, 7},
    {"TextAfterItIsIgnored", {{"atom_count", "3 atoms"}}, 0, 3},
    {"TextGluedOnIsIgnored", {{"atom_count", "3atoms"}}, 0, 3},
    {"FractionIsIgnored", {{"atom_count", "3.9"}}, 0, 3},
    {"FractionOfZeroIsZero", {{"atom_count", "0.9"}}, 7, 7},
    {"ExponentIsIgnored", {{"atom_count", "1e3"}}, 0, 1},
    {"NulEndsTheDigits", {{"atom_count", "3\0004"s}}, 0, 3},
    {"SignOnly", {{"atom_count", "-"}}, 7, 7},
    {"TwoSigns", {{"atom_count", "--3"}}, 7, 7},
    {"SpaceAfterTheSign", {{"atom_count", "- 3"}}, 7, 7},
    {"Largest", {{"atom_count", "18446744073709551615"}}, 7, 18446744073709551615U},
    {"OutOfRange", {{"atom_count", "18446744073709551616"}}, 7, 7},
    {"FarOutOfRange",
     {{"atom_count", std::string(1'000, '9')}, {"geometry.atom_count", "5"}},
     7,
     5},
    {"OtherKeysAreIgnored",
     {{"Atom_count", "1"}, {"atoms.count", "2"}, {"natoms", "3"}, {"geometry.count", "4"}},
     7,
     7},
    {"KeysOfAtomsAreIgnored", {{"atoms.1.q", "1"}, {"atoms.2.q", "2"}}, 0, 0},
};
class AtomCount : public testing::TestWithParam<CountCase> {};

TEST_P(AtomCount, IsTheFirstThatIsKnown) {
  TaskDir task;
  for (const auto& [key, value] : GetParam().pairs) {
    task.kv.assign(key, value);
  }
  for (std::size_t i = 0; i < GetParam().geometry_size; ++i) {
    task.atoms.push_back({"H", 0, 0, 0});
  }
  EXPECT_EQ(read_atom_count(task), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Tasks, AtomCount, testing::ValuesIn(count_cases),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace vqvec
