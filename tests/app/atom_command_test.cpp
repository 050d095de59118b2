#include "app/atom_command.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/app/program_call.hpp"
#include "tests/support/environment.hpp"
#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;
using Files = std::map<std::string, std::string>;  // content by path from the working directory

// Runs `vqvec atom` beside a few tasks:
//   a    q = 1, 2   charge = 1   geometry O H
//   b    q = 3, 6                geometry O H
//   c    q = 1, 2                geometry O F
//   d    q = 1, 2                no geometry
//   big                          geometry O H H
class AtomCommandTest {
 public:
  AtomCommandTest() : environment_({}) {
    work_.write("job/a/.vorq.result.kv", "atoms.1.q=1\natoms.2.q=2\ncharge=1\natom_count=2\n");
    work_.write("job/a/last_opt.xyz", "2\n\nO 0 0 0\nH 0 0 1\n");
    work_.write("job/b/.vorq.result.kv", "atoms.1.q=3\natoms.2.q=6\n");
    work_.write("job/b/last_opt.xyz", "2\n\nO 0 0 0\nH 0 0 2\n");
    work_.write("job/c/.vorq.result.kv", "atoms.1.q=1\natoms.2.q=2\n");
    work_.write("job/c/last_opt.xyz", "2\n\nO 0 0 0\nF 0 0 1\n");
    work_.write("job/d/.vorq.result.kv", "atoms.1.q=1\natoms.2.q=2\n");
    work_.write("job/big/last_opt.xyz", "3\n\nO 0 0 0\nH 0 0 1\nH 0 1 0\n");
  }

  const WorkPlace& work() const { return work_; }

  // The words are those after `vqvec atom`.
  Outcome run(Words words) const {
    words.insert(words.begin(), {"vqvec", "atom"});
    return call(run_atom_command, words);
  }

  // All files below the working directory.
  Files files() const {
    Files found;
    const fs::path here = work_.path_of("job/here");
    for (const auto& entry : fs::recursive_directory_iterator(here)) {
      const fs::path name = entry.path().lexically_relative(here);
      if (entry.is_regular_file()) {
        found[name.string()] = work_.read("job/here" / name);
      }
    }
    return found;
  }

 private:
  TaskEnvironment environment_;
  WorkPlace work_;
};

struct RunCase {
  const char* name;
  Words words;
  Outcome expected;
  Files files;  // all that are there afterwards
};
class AtomCommand : public testing::TestWithParam<RunCase>, public AtomCommandTest {};

TEST_P(AtomCommand, EndsLikeThis) {
  EXPECT_EQ(run(GetParam().words), GetParam().expected);
  EXPECT_EQ(files(), GetParam().files);
}

const auto name_of_case = [](const auto& one) { return std::string(one.param.name); };

// Usage instead of a run

const Outcome usage_without_statement = {1, "", usage_of("vqvec"), ""};
const Outcome usage_asked_for = {0, "", usage_of("vqvec"), ""};

const std::vector<RunCase> usage_cases = {
    {"NoArguments", {}, usage_without_statement, {}},
    {"EmptyStatement", {"--dsl", ""}, usage_without_statement, {}},
    {"EmptyLooseWord", {""}, usage_without_statement, {}},
    {"LastStatementIsEmpty", {"--dsl", "x = a:q", "--dsl", ""}, usage_without_statement, {}},
    {"FilesWithoutAStatement",
     {"--values-out", "v.kv", "--record-kv", "r.kv", "--snapshot-kv", "s.kv"},
     usage_without_statement,
     {}},
    {"ShortHelp", {"-h"}, usage_asked_for, {}},
    {"LongHelp", {"--help"}, usage_asked_for, {}},
    {"HelpBeforeAStatement", {"--help", "--dsl", "x = a:q"}, usage_asked_for, {}},
    {"HelpAfterAStatement", {"--dsl", "x = a:q", "-h"}, usage_asked_for, {}},
    {"HelpAfterABadStatement", {"--dsl", "nonsense", "--help"}, usage_asked_for, {}},
    {"HelpAmongLooseWords", {"x", "=", "-h", "a:q"}, usage_asked_for, {}},
    {"HelpHidesAMissingValueAfterIt", {"-h", "--dsl"}, usage_asked_for, {}},
    {"HelpText", {"--dsl", "__HELP__"}, usage_asked_for, {}},
    {"HelpTextAsALooseWord", {"__HELP__"}, usage_asked_for, {}},
    {"HelpTextAndLooseWords", {"--dsl", "__HELP__", "x = a:q"}, usage_asked_for, {}},
};
INSTANTIATE_TEST_SUITE_P(Usage, AtomCommand, testing::ValuesIn(usage_cases), name_of_case);

// Failures of the command line; nothing is written

const std::vector<RunCase> word_failures = {
    {"NoValueOfDsl", {"--dsl"}, {-1, "--dsl requires a value", "", ""}, {}},
    {"NoValueOfValuesOut",
     {"--dsl", "x = a:q", "--values-out"},
     {-1, "--values-out requires a value", "", ""},
     {}},
    {"NoValueOfRecord",
     {"--dsl", "x = a:q", "--record-kv"},
     {-1, "--record-kv requires a value", "", ""},
     {}},
    {"NoValueOfSnapshot",
     {"--dsl", "x = a:q", "--snapshot-kv"},
     {-1, "--snapshot-kv requires a value", "", ""},
     {}},
    {"NoValueOfDslWithoutAStatement",
     {"x = a:q", "--dsl"},
     {-1, "--dsl requires a value", "", ""},
     {}},
    {"NoValueComesBeforeABadStatement",
     {"--dsl", "nonsense", "--record-kv"},
     {-1, "--record-kv requires a value", "", ""},
     {}},
    {"HelpAsAValue",
     {"--dsl", "-h"},
     {-1, "atomvec syntax requires '<target> = <expr>': -h", "", ""},
     {}},
    {"OptionAsAValue",
     {"--dsl", "--values-out", "x = a:q"},
     {-1, "atomvec syntax requires '<target> = <expr>': --values-out", "", ""},
     {}},
    {"BlankStatement",
     {"--dsl", " "},
     {-1, "atomvec syntax requires '<target> = <expr>':  ", "", ""},
     {}},
    {"StatementIsHandedOverAsItStands",
     {"--dsl", " \tx\n"},
     {-1, "atomvec syntax requires '<target> = <expr>':  \tx\n", "", ""},
     {}},
    {"TwoEmptyLooseWordsMakeASpace",
     {"", ""},
     {-1, "atomvec syntax requires '<target> = <expr>':  ", "", ""},
     {}},
    {"HelpTextBetweenSpacesIsAStatement",
     {"--dsl", " __HELP__"},
     {-1, "atomvec syntax requires '<target> = <expr>':  __HELP__", "", ""},
     {}},
    {"HelpTextAndMoreLooseWords",
     {"__HELP__", "x"},
     {-1, "atomvec syntax requires '<target> = <expr>': __HELP__ x", "", ""},
     {}},
    {"NoEqualsForm",
     {"--dsl=x = a:q"},
     {-1, "task 'x = a' does not contain atom vector 'q'", "", ""},
     {}},
    {"OptionsAreCaseSensitive",
     {"--DSL", "x = a:q"},
     {-1, "atomvec property contains an unsafe character: --DSL x", "", ""},
     {}},
    {"StatementOptionBeforeTheStatement",
     {"--sum", "0", "x = a:q"},
     {-1, "atomvec property contains an unsafe character: --sum 0 x", "", ""},
     {}},
    {"UnknownOptionAfterLooseWords",
     {"x = a:q", "--verbose"},
     {-1, "unknown atomvec option: --verbose", "", ""},
     {}},
    {"StrayWordAfterLooseOptions",
     {"x = a:q", "--sum", "0", "stray"},
     {-1, "unknown atomvec option: stray", "", ""},
     {}},
};
INSTANTIATE_TEST_SUITE_P(CommandLineFailures, AtomCommand, testing::ValuesIn(word_failures),
                         name_of_case);

// Runs

const Outcome wrote_x = {0, "", "atomvec wrote 2 atom values for 'x'\n", ""};
const std::string x_lines = "atoms.1.x=1\natoms.2.x=2\n";

const std::string a_as_extxyz =
    "2\nProperties=species:S:1:pos:R:3:x:R:1 generated_by=vqvec\n"
    "O 0.0000000000 0.0000000000 0.0000000000 1\n"
    "H 0.0000000000 0.0000000000 1.0000000000 2\n";
const std::string a_as_chg =
    "O       0.0000000000     0.0000000000     0.0000000000  1.0000000000\n"
    "H       0.0000000000     0.0000000000     1.0000000000  2.0000000000\n";
const std::string snapshot_of_two =
    "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=2\n"
    "geometry.atom_count=2\n";

const std::vector<RunCase> run_cases = {
    {"Statement", {"--dsl", "x = a:q"}, wrote_x, {{".vorq.values.kv", x_lines}}},
    {"LooseWords", {"x", "=", "a:q"}, wrote_x, {{".vorq.values.kv", x_lines}}},
    {"OneLooseWord", {"x=a:q"}, wrote_x, {{".vorq.values.kv", x_lines}}},
    {"EmptyWordsAmongLooseOnes",
     {"", "x", "", "=", "", "a:q", ""},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"LooseWordsBesideAnEmptyStatement",
     {"--dsl", "", "x", "= a:q"},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"LooseWordsAroundOptions",
     {"x", "--values-out", "v.kv", "=", "a:q"},
     wrote_x,
     {{"v.kv", x_lines}}},
    {"LooseWordsBesideAStatementAreDropped",
     {"--dsl", "x = a:q", "stray", "words"},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"LooseOptionsBesideAStatementAreDropped",
     {"--check", "nonsense", "--dsl", "x = a:q", "--out", "r.extxyz"},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"LastStatementWins",
     {"--dsl", "y = b:q", "--dsl", "x = a:q"},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"StatementAfterAnEmptyOne",
     {"--dsl", "", "--dsl", "x = a:q", "y = b:q"},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"TargetIsReportedAsParsed",
     {"--dsl", " atoms[].charge:resp. = a:q"},
     {0, "", "atomvec wrote 2 atom values for 'charge:resp'\n", ""},
     {{".vorq.values.kv", "atoms.1.charge:resp=1\natoms.2.charge:resp=2\n"}}},
    {"ValuesFile", {"--dsl", "x = a:q", "--values-out", "v.kv"}, wrote_x, {{"v.kv", x_lines}}},
    {"LastValuesFileWins",
     {"--dsl", "x = a:q", "--values-out", "u.kv", "--values-out", "v.kv"},
     wrote_x,
     {{"v.kv", x_lines}}},
    {"ValuesFileInMissingDirectories",
     {"--dsl", "x = a:q", "--values-out", "out/sub/v.kv"},
     wrote_x,
     {{"out/sub/v.kv", x_lines}}},
    {"ValuesFileNamedLikeAnOption",
     {"--dsl", "x = a:q", "--values-out", "--record-kv"},
     wrote_x,
     {{"--record-kv", x_lines}}},
    {"ValuesFileNamedLikeHelp",
     {"--dsl", "x = a:q", "--values-out", "-h"},
     wrote_x,
     {{"-h", x_lines}}},
    {"NoValuesFile", {"--dsl", "x = a:q", "--values-out", ""}, wrote_x, {}},
    {"RecordFile",
     {"--dsl", "x = a:q", "--record-kv", "r.kv"},
     wrote_x,
     {{".vorq.values.kv", x_lines}, {"r.kv", x_lines}}},
    {"LastRecordFileWins",
     {"--record-kv", "q.kv", "--dsl", "x = a:q", "--record-kv", "r.kv"},
     wrote_x,
     {{".vorq.values.kv", x_lines}, {"r.kv", x_lines}}},
    {"EmptyRecordFileIsNone",
     {"--dsl", "x = a:q", "--record-kv", "r.kv", "--record-kv", ""},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"RecordFileWithoutValuesFile",
     {"--dsl", "x = a:q", "--values-out", "", "--record-kv", "r.kv"},
     wrote_x,
     {{"r.kv", x_lines}}},
    {"RecordAndValuesFileInOne",
     {"--dsl", "x = a:q", "--values-out", "v.kv", "--record-kv", "v.kv"},
     wrote_x,
     {{"v.kv", x_lines + x_lines}}},
    {"Snapshot",
     {"--dsl", "x = a:q", "--snapshot-kv", "s.kv"},
     wrote_x,
     {{".vorq.values.kv", x_lines}, {"s.kv", snapshot_of_two}}},
    {"LastSnapshotWins",
     {"--snapshot-kv", "t.kv", "--snapshot-kv", "s.kv", "--dsl", "x = a:q"},
     wrote_x,
     {{".vorq.values.kv", x_lines}, {"s.kv", snapshot_of_two}}},
    {"EmptySnapshotIsNone",
     {"--dsl", "x = a:q", "--snapshot-kv", "s.kv", "--snapshot-kv", ""},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"SnapshotInThePlaceOfTheValues",
     {"--dsl", "x = a:q", "--values-out", "v.kv", "--snapshot-kv", "v.kv"},
     wrote_x,
     {{"v.kv", snapshot_of_two}}},
    {"Extxyz",
     {"--dsl", "x = a:q --out r.extxyz"},
     {0, "", "atomvec wrote 2 atom values for 'x' and extxyz r.extxyz\n", ""},
     {{".vorq.values.kv", x_lines}, {"r.extxyz", a_as_extxyz}}},
    {"ExtxyzByLooseWords",
     {"x", "=", "a:q", "--out", "x.extxyz"},
     {0, "", "atomvec wrote 2 atom values for 'x' and extxyz x.extxyz\n", ""},
     {{".vorq.values.kv", x_lines}, {"x.extxyz", a_as_extxyz}}},
    {"Charges",
     {"--dsl", "x = a:q --chg r.chg"},
     {0, "", "atomvec wrote 2 atom values for 'x' and chg r.chg\n", ""},
     {{".vorq.values.kv", x_lines}, {"r.chg", a_as_chg}}},
    {"ExtxyzAndCharges",
     {"--dsl", "x = a:q --chg 'my r.chg' --extxyz=r.extxyz"},
     {0, "", "atomvec wrote 2 atom values for 'x' and extxyz r.extxyz and chg my r.chg\n", ""},
     {{".vorq.values.kv", x_lines}, {"r.extxyz", a_as_extxyz}, {"my r.chg", a_as_chg}}},
    {"EverythingAtOnce",
     {"--snapshot-kv", "s.kv", "--record-kv", "r.kv", "--values-out", "v.kv", "--dsl",
      "x = a:q --check same_atoms --out r.extxyz --chg r.chg --geom a"},
     {0, "", "atomvec wrote 2 atom values for 'x' and extxyz r.extxyz and chg r.chg\n", ""},
     {{"v.kv", x_lines},
      {"r.kv", x_lines},
      {"s.kv", snapshot_of_two},
      {"r.extxyz", a_as_extxyz},
      {"r.chg", a_as_chg}}},
    {"GeometryOfTheFirstTaskUsed",
     {"--dsl", "x = sub(b:q, sub(b:q, a:q)) --chg r.chg"},
     {0, "", "atomvec wrote 2 atom values for 'x' and chg r.chg\n", ""},
     {{".vorq.values.kv", x_lines},
      {"r.chg",
       "O       0.0000000000     0.0000000000     0.0000000000  1.0000000000\n"
       "H       0.0000000000     0.0000000000     2.0000000000  2.0000000000\n"}}},
    {"Mean",
     {"--dsl", "x = mean(a:q, b:q)"},
     wrote_x,
     {{".vorq.values.kv", "atoms.1.x=2\natoms.2.x=4\n"}}},
    {"SumIsShifted",
     {"--dsl", "x = mean(a:q, b:q) --check same_atoms --sum 1"},
     wrote_x,
     {{".vorq.values.kv", "atoms.1.x=-0.5\natoms.2.x=1.5\n"}}},
    {"SumByLooseWords",
     {"x = mean(a:q, b:q)", "--check", "same_atoms", "--sum", "1"},
     wrote_x,
     {{".vorq.values.kv", "atoms.1.x=-0.5\natoms.2.x=1.5\n"}}},
    {"SumOfATask",
     {"--dsl", "x = mean(a:q, b:q) --renorm @a.charge"},
     wrote_x,
     {{".vorq.values.kv", "atoms.1.x=-0.5\natoms.2.x=1.5\n"}}},
    {"SumThatIsEmptyIsNone",
     {"--dsl", "x = a:q --sum ''"},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"SumOfZeroIsASum",
     {"--dsl", "x = a:q --sum 0"},
     wrote_x,
     {{".vorq.values.kv", "atoms.1.x=-0.5\natoms.2.x=0.5\n"}}},
    {"CheckTwice",
     {"--dsl", "x = mean(a:q, b:q) --check same_atoms --check SAME_ATOMS"},
     wrote_x,
     {{".vorq.values.kv", "atoms.1.x=2\natoms.2.x=4\n"}}},
    {"ScalarsOfAnotherTaskAreNotChecked",
     {"--dsl", "x = c:q --check same_atoms --sum @a.charge"},
     wrote_x,
     {{".vorq.values.kv", "atoms.1.x=0\natoms.2.x=1\n"}}},
    {"OnlyTheFirstTaskOfAGlobIsChecked",
     {"--dsl", "x = first(?:q) --check same_atoms"},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
    {"WithoutCheckTasksMayDiffer",
     {"--dsl", "x = mean(a:q, c:q)"},
     wrote_x,
     {{".vorq.values.kv", x_lines}}},
};
INSTANTIATE_TEST_SUITE_P(Runs, AtomCommand, testing::ValuesIn(run_cases), name_of_case);

// Failures of a run, in the order of its steps

const std::vector<RunCase> run_failures = {
    {"StatementBeforeEverything",
     {"--dsl", "x = none:q --unknown"},
     {-1, "unknown atomvec option: --unknown", "", ""},
     {}},
    {"Vector",
     {"--dsl", "x = none:q --sum nonsense --check same_atoms"},
     {-1, "task 'none' does not contain atom vector 'q'", "", ""},
     {}},
    {"SumBeforeTheCheck",
     {"--dsl", "x = mean(a:q, c:q) --sum nonsense --check same_atoms"},
     {-1, "unsupported scalar expression: nonsense", "", ""},
     {}},
    {"CheckBeforeTheFiles",
     {"--dsl", "x = mean(a:q, c:q) --check same_atoms --out r.extxyz", "--values-out", "/dev/full",
      "--record-kv", "r.kv", "--snapshot-kv", "s.kv"},
     {-1, "same_atoms failed: atom 2 symbol mismatch between 'a' (H) and 'c' (F)", "", ""},
     {}},
    {"RepeatedCheckFailsAsWell",
     {"--dsl", "x = mean(a:q, c:q) --check same_atoms --check same_atoms"},
     {-1, "same_atoms failed: atom 2 symbol mismatch between 'a' (H) and 'c' (F)", "", ""},
     {}},
    {"AllTasksOfAGlobAreChecked",
     {"--dsl", "x = mean(?:q) --check same_atoms"},
     {-1, "same_atoms failed: atom 2 symbol mismatch between 'a' (H) and 'c' (F)", "", ""},
     {}},
    {"ValuesFileBeforeTheOthers",
     {"--dsl", "x = a:q --out r.extxyz", "--values-out", "/dev/full", "--record-kv", "r.kv",
      "--snapshot-kv", "s.kv"},
     {-1, "could not write file: /dev/full", "", ""},
     {}},
    {"RecordFileLeavesTheValues",
     {"--dsl", "x = a:q --out r.extxyz", "--record-kv", "/dev/full", "--snapshot-kv", "s.kv"},
     {-1, "could not write file: /dev/full", "", ""},
     {{".vorq.values.kv", x_lines}}},
    {"RecordFileThatIsADirectory",
     {"--dsl", "x = a:q", "--record-kv", "..", "--snapshot-kv", "s.kv"},
     {-1, "could not open file for appending: ..", "", ""},
     {{".vorq.values.kv", x_lines}}},
    {"RecordFileBelowTheValuesFile",
     {"--dsl", "x = a:q", "--values-out", "v.kv", "--record-kv", "v.kv/r.kv"},
     {-1, "could not create parent directory for 'v.kv/r.kv': Not a directory", "", ""},
     {{"v.kv", x_lines}}},
    {"SnapshotLeavesValuesAndRecord",
     {"--dsl", "x = a:q --out r.extxyz", "--record-kv", "r.kv", "--snapshot-kv", "."},
     {-1, "could not open file for writing: .", "", ""},
     {{".vorq.values.kv", x_lines}, {"r.kv", x_lines}}},
    {"ExtxyzLeavesTheKeyValueFiles",
     {"--dsl", "x = a:q --out r.extxyz --chg r.chg --geom big", "--record-kv", "r.kv",
      "--snapshot-kv", "s.kv"},
     {-1, "cannot write extxyz: geometry atom count 3 does not match vector length 2", "", ""},
     {{".vorq.values.kv", x_lines}, {"r.kv", x_lines}, {"s.kv", snapshot_of_two}}},
    {"ChargesLeaveTheExtxyz",
     {"--dsl", "x = a:q --out r.extxyz --chg /dev/full"},
     {-1, "could not write file: /dev/full", "", ""},
     {{".vorq.values.kv", x_lines}, {"r.extxyz", a_as_extxyz}}},
    {"ChargesLeaveTheKeyValueFiles",
     {"--dsl", "x = a:q --chg r.chg --geom big"},
     {-1, "cannot write chg: geometry atom count 3 does not match vector length 2", "", ""},
     {{".vorq.values.kv", x_lines}}},
};
INSTANTIATE_TEST_SUITE_P(RunFailures, AtomCommand, testing::ValuesIn(run_failures), name_of_case);

// What does not fit into the table

class AtomCommandRun : public testing::Test, public AtomCommandTest {};

TEST_F(AtomCommandRun, NamesTheDirectoryWithoutGeometry) {
  const Outcome expected = {
      -1,
      "cannot write atom vector geometry output: no geometry file found in task directory " +
          work().path_of("job/d").string(),
      "", ""};
  EXPECT_EQ(run({"--dsl", "x = d:q --chg r.chg"}), expected);
  EXPECT_EQ(files(), (Files{{".vorq.values.kv", x_lines}}));
}

// The argument is first tried as a reference of the task `neg(a`, which stays the first task used.
TEST_F(AtomCommandRun, CountsTheTaskOfAFailedAttemptAsTheFirstOneUsed) {
  const Outcome expected = {
      -1,
      "cannot write atom vector geometry output: no geometry file found in task directory " +
          work().path_of("job/neg(a").string(),
      "", ""};
  EXPECT_EQ(run({"--dsl", "x = mean(neg(a:q)) --out r.extxyz"}), expected);
  EXPECT_EQ(files(), (Files{{".vorq.values.kv", "atoms.1.x=-1\natoms.2.x=-2\n"}}));
}

TEST_F(AtomCommandRun, AppendsValuesAndRecordAndReplacesTheRest) {
  const Words words = {"--dsl",         "x = a:q --out r.extxyz --chg r.chg",
                       "--record-kv",   "r.kv",
                       "--snapshot-kv", "s.kv"};
  run(words);
  EXPECT_EQ(run(words).status, 0);
  EXPECT_EQ(files(), (Files{{".vorq.values.kv", x_lines + x_lines},
                            {"r.kv", x_lines + x_lines},
                            {"s.kv", snapshot_of_two},
                            {"r.extxyz", a_as_extxyz},
                            {"r.chg", a_as_chg}}));
}

TEST_F(AtomCommandRun, KeepsWhatTheValuesFileHeld) {
  work().write("job/here/.vorq.values.kv", "no line end");
  EXPECT_EQ(run({"--dsl", "x = a:q"}), wrote_x);
  EXPECT_EQ(files(), (Files{{".vorq.values.kv", "no line end" + x_lines}}));
}

TEST_F(AtomCommandRun, ReadsTheResultOfAnEarlierRun) {
  run({"--dsl", "y = b:q"});
  EXPECT_EQ(run({"--dsl", "x = sub(self:y, a:q)"}), wrote_x);
  EXPECT_EQ(files(),
            (Files{{".vorq.values.kv", "atoms.1.y=3\natoms.2.y=6\natoms.1.x=2\natoms.2.x=4\n"}}));
}

TEST_F(AtomCommandRun, PutsTheEnvironmentIntoTheSnapshot) {
  const TaskEnvironment environment({"scrf", "", "s7"});
  EXPECT_EQ(run({"--dsl", "x = a:q", "--values-out", "", "--snapshot-kv", "s.kv"}), wrote_x);
  EXPECT_EQ(files(),
            (Files{{"s.kv", snapshot_of_two + "task_name=scrf\nstruc_id=s7\nstrucId=s7\n"}}));
}

TEST_F(AtomCommandRun, LeavesTheSnapshotOfTheLastRunWhenItFailsBefore) {
  work().write("job/here/s.kv", "old\n");
  EXPECT_EQ(run({"--dsl", "x = none:q", "--snapshot-kv", "s.kv"}).failure,
            "task 'none' does not contain atom vector 'q'");
  EXPECT_EQ(files(), (Files{{"s.kv", "old\n"}}));
}

TEST_F(AtomCommandRun, TakesALongStatement) {
  std::string sum = "a:q";
  for (int i = 0; i < 20'000; ++i) {
    sum += ", a:q";
  }
  EXPECT_EQ(run({"--dsl", "x = mean(" + sum + ")"}), wrote_x);
  EXPECT_EQ(files(), (Files{{".vorq.values.kv", x_lines}}));
}

TEST_F(AtomCommandRun, NamesTheProgramInTheUsageAsItWasStarted) {
  const Outcome expected = {0, "", usage_of("../bin/av"), ""};
  EXPECT_EQ(call(run_atom_command, {"../bin/av", "atom", "-h"}), expected);
}

}  // namespace
}  // namespace vqvec
