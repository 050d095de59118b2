#include "output/kv_outputs.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "taskstore/kv_file.hpp"
#include "tests/support/environment.hpp"
#include "tests/support/kv_pairs.hpp"
#include "tests/support/scratch_dir.hpp"

namespace vqvec {
namespace {

// Values

struct ValuesCase {
  const char* name;
  std::string target;
  AtomVector result;
  std::string expected;
};
const std::vector<ValuesCase> values_cases = {
    {"EmptyResult", "q", {}, ""},
    {"OneAtom", "q", {1.5}, "atoms.1.q=1.5\n"},
    {"SeveralAtoms", "q", {0.1, -2, 1e-20}, "atoms.1.q=0.1\natoms.2.q=-2\natoms.3.q=1e-20\n"},
    {"EveryNotation",
     "charge.resp2",
     {0.0, -0.0, 1e-5, 1e20, 1.0 / 3.0, 1234567.0},
     "atoms.1.charge.resp2=0\natoms.2.charge.resp2=-0\natoms.3.charge.resp2=1e-05\n"
     "atoms.4.charge.resp2=1e+20\natoms.5.charge.resp2=0.333333333333333\n"
     "atoms.6.charge.resp2=1234567\n"},
    {"NumbersThatAreNotFinite",
     "q",
     {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
      std::numeric_limits<double>::quiet_NaN()},
     "atoms.1.q=inf\natoms.2.q=-inf\natoms.3.q=nan\n"},
    {"TargetIsInsertedAsItIs", "a:b*[1]\\'\"", {1}, "atoms.1.a:b*[1]\\'\"=1\n"},
    {"TargetOutsideAscii", "電荷\xff", {1}, "atoms.1.電荷\xff=1\n"},
    {"TargetThatLooksLikeANumber", "2.q", {1}, "atoms.1.2.q=1\n"},
    {"LongTarget", std::string(1'000, 't'), {1}, "atoms.1." + std::string(1'000, 't') + "=1\n"},
    {"AtomsOfTwoDigits",
     "q",
     {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11},
     "atoms.1.q=1\natoms.2.q=2\natoms.3.q=3\natoms.4.q=4\natoms.5.q=5\natoms.6.q=6\n"
     "atoms.7.q=7\natoms.8.q=8\natoms.9.q=9\natoms.10.q=10\natoms.11.q=11\n"},
};
class ValuesText : public testing::TestWithParam<ValuesCase> {};

TEST_P(ValuesText, HasALineForEveryAtom) {
  EXPECT_EQ(values_text(GetParam().target, GetParam().result), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Results, ValuesText, testing::ValuesIn(values_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ValuesText, OfManyAtomsEndsWithTheLast) {
  const std::string text = values_text("q", AtomVector(100'000, 0.5));
  EXPECT_TRUE(text.starts_with("atoms.1.q=0.5\natoms.2.q=0.5\n"));
  EXPECT_TRUE(text.ends_with("\natoms.99999.q=0.5\natoms.100000.q=0.5\n"));
}

TEST(ValuesText, ReadsBackAsTheKeysOfATask) {
  const ScratchDir dir;
  const std::string path =
      dir.write("v.kv", values_text("q", {9, 9, 9}) + values_text("q", {0.5, -2}));
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"atoms.1.q", "0.5"}, {"atoms.2.q", "-2"}, {"atoms.3.q", "9"}};
  EXPECT_EQ(pairs_of(read_kv_file(path)), expected);
}

// Snapshot

struct SnapshotCase {
  const char* name;
  TaskVariables variables;
  std::size_t atom_count;
  std::string expected;
};
const std::vector<SnapshotCase> snapshot_cases = {
    {"NothingSet",
     {},
     12,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=12\n"
     "geometry.atom_count=12\n"},
    {"EverythingEmpty",
     {"", "", ""},
     12,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=12\n"
     "geometry.atom_count=12\n"},
    {"EverythingSet",
     {"scrf", "water.inp", "s7"},
     3,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=3\n"
     "geometry.atom_count=3\ntask_name=scrf\ninput_name=water.inp\nstruc_id=s7\nstrucId=s7\n"},
    {"NoAtoms",
     {},
     0,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=0\n"
     "geometry.atom_count=0\n"},
    {"TaskNameOnly",
     {"scrf", {}, ""},
     1,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=1\n"
     "geometry.atom_count=1\ntask_name=scrf\n"},
    {"InputNameOnly",
     {"", "water.inp", {}},
     1,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=1\n"
     "geometry.atom_count=1\ninput_name=water.inp\n"},
    {"StructureIdOnly",
     {{}, "", "s7"},
     1,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=1\n"
     "geometry.atom_count=1\nstruc_id=s7\nstrucId=s7\n"},
    {"AllButTheStructureId",
     {"scrf", "water.inp", {}},
     1,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=1\n"
     "geometry.atom_count=1\ntask_name=scrf\ninput_name=water.inp\n"},
    {"ValuesAreCopiedByteForByte",
     {" a = b # ", "x\ny\r", "電荷\xff\"'\\"},
     1,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=1\n"
     "geometry.atom_count=1\ntask_name= a = b # \ninput_name=x\ny\r\nstruc_id=電荷\xff\"'\\\n"
     "strucId=電荷\xff\"'\\\n"},
    {"ValueOfASpace",
     {" ", {}, {}},
     1,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\natom_count=1\n"
     "geometry.atom_count=1\ntask_name= \n"},
    {"LargestCount",
     {},
     18'446'744'073'709'551'615U,
     "# Vorquil lightweight result snapshot\nschema_version=1\nstatus=done\n"
     "atom_count=18446744073709551615\ngeometry.atom_count=18446744073709551615\n"},
};
class SnapshotText : public testing::TestWithParam<SnapshotCase> {};

TEST_P(SnapshotText, NamesWhatTheEnvironmentNames) {
  const TaskEnvironment environment(GetParam().variables);
  EXPECT_EQ(snapshot_text(GetParam().atom_count), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Environments, SnapshotText, testing::ValuesIn(snapshot_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(SnapshotText, ReadsTheEnvironmentEveryTime) {
  const TaskEnvironment nothing({});
  const std::string before = snapshot_text(1);
  {
    const TaskEnvironment environment({{}, {}, "s7"});
    EXPECT_EQ(snapshot_text(1), before + "struc_id=s7\nstrucId=s7\n");
  }
  EXPECT_EQ(snapshot_text(1), before);
}

}  // namespace
}  // namespace vqvec
