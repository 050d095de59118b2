#include "output/geometry_outputs.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/failure.hpp"
#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

const std::string water =
    "3\nwater\nO 0.0 0.0 0.1173\nH 0.0 0.7572 -0.4692\nH 0.0 -0.7572 -0.4692\n";

DslStatement statement_of(const std::string& target, const std::string& out_path,
                          const std::string& chg_path, const std::string& geom_path = "") {
  DslStatement statement;
  statement.target = target;
  statement.out_path = out_path;
  statement.chg_path = chg_path;
  statement.geom_path = geom_path;
  return statement;
}

// The two files

struct FileCase {
  const char* name;
  std::string geometry;
  std::string target;
  AtomVector result;
  std::string extxyz;
  std::string chg;
};
const std::vector<FileCase> file_cases = {
    {"OneAtom",
     "1\n\nO 0.0 0.0 0.1173\n",
     "charge.resp2",
     {-0.834},
     "1\nProperties=species:S:1:pos:R:3:charge.resp2:R:1 generated_by=vqvec\n"
     "O 0.0000000000 0.0000000000 0.1173000000 -0.834\n",
     "O       0.0000000000     0.0000000000     0.1173000000 -0.8340000000\n"},
    {"PositiveValue",
     "1\n\nO 0.0 0.0 0.1173\n",
     "q",
     {0.417},
     "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "O 0.0000000000 0.0000000000 0.1173000000 0.417\n",
     "O       0.0000000000     0.0000000000     0.1173000000  0.4170000000\n"},
    {"SeveralAtoms",
     water,
     "q",
     {-0.834, 0.417, 0.417},
     "3\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "O 0.0000000000 0.0000000000 0.1173000000 -0.834\n"
     "H 0.0000000000 0.7572000000 -0.4692000000 0.417\n"
     "H 0.0000000000 -0.7572000000 -0.4692000000 0.417\n",
     "O       0.0000000000     0.0000000000     0.1173000000 -0.8340000000\n"
     "H       0.0000000000     0.7572000000    -0.4692000000  0.4170000000\n"
     "H       0.0000000000    -0.7572000000    -0.4692000000  0.4170000000\n"},
    {"SymbolsOfTwoLetters",
     "1\n\nCl 1 2 3\n",
     "q",
     {1},
     "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "Cl 1.0000000000 2.0000000000 3.0000000000 1\n",
     "Cl      1.0000000000     2.0000000000     3.0000000000  1.0000000000\n"},
    {"SymbolsOfThreeLettersAndMore",
     "3\n\nUue 1 2 3\nCarb 1 2 3\nLongSymbol 1 2 3\n",
     "q",
     {1, 1, 1},
     "3\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "Uue 1.0000000000 2.0000000000 3.0000000000 1\n"
     "Carb 1.0000000000 2.0000000000 3.0000000000 1\n"
     "LongSymbol 1.0000000000 2.0000000000 3.0000000000 1\n",
     "Uue     1.0000000000     2.0000000000     3.0000000000  1.0000000000\n"
     "Carb     1.0000000000     2.0000000000     3.0000000000  1.0000000000\n"
     "LongSymbol     1.0000000000     2.0000000000     3.0000000000  1.0000000000\n"},
    {"SymbolWidthsAreBytes",
     "1\n\n\xc3\xa9 1 2 3\n",
     "q",
     {1},
     "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "\xc3\xa9 1.0000000000 2.0000000000 3.0000000000 1\n",
     "\xc3\xa9      1.0000000000     2.0000000000     3.0000000000  1.0000000000\n"},
    {"WideCoordinates",
     "2\n\nH 12345.678 -1234.5 99999\nH -12345.678 -99999.5 1e15\n",
     "q",
     {1, 1},
     "2\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "H 12345.6780000000 -1234.5000000000 99999.0000000000 1\n"
     "H -12345.6780000000 -99999.5000000000 1000000000000000.0000000000 1\n",
     "H   12345.6780000000 -1234.5000000000 99999.0000000000  1.0000000000\n"
     "H   -12345.6780000000 -99999.5000000000 1000000000000000.0000000000  1.0000000000\n"},
    {"Zeros",
     "1\n\nH 0 -0 -1e-400\n",
     "q",
     {0.0},
     "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "H 0.0000000000 -0.0000000000 -0.0000000000 0\n",
     "H       0.0000000000    -0.0000000000    -0.0000000000  0.0000000000\n"},
    {"NegativeZeroGetsASpaceToo",
     "1\n\nH 0 0 0\n",
     "q",
     {-0.0},
     "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "H 0.0000000000 0.0000000000 0.0000000000 -0\n",
     "H       0.0000000000     0.0000000000     0.0000000000  -0.0000000000\n"},
    {"SmallValues",
     "2\n\nH 1e-11 0 0\nH -1e-11 0 0\n",
     "q",
     {1e-20, -1e-20},
     "2\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "H 0.0000000000 0.0000000000 0.0000000000 1e-20\n"
     "H -0.0000000000 0.0000000000 0.0000000000 -1e-20\n",
     "H       0.0000000000     0.0000000000     0.0000000000  0.0000000000\n"
     "H      -0.0000000000     0.0000000000     0.0000000000 -0.0000000000\n"},
    {"ValuesHaveNoWidth",
     "2\n\nH 0 0 0\nH 0 0 0\n",
     "q",
     {1234567.5, -1e20},
     "2\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "H 0.0000000000 0.0000000000 0.0000000000 1234567.5\n"
     "H 0.0000000000 0.0000000000 0.0000000000 -1e+20\n",
     "H       0.0000000000     0.0000000000     0.0000000000  1234567.5000000000\n"
     "H       0.0000000000     0.0000000000     0.0000000000 -100000000000000000000.0000000000\n"},
    {"ValuesThatAreNotFinite",
     "3\n\nH 0 0 0\nH 0 0 0\nH 0 0 0\n",
     "q",
     {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
      std::numeric_limits<double>::quiet_NaN()},
     "3\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "H 0.0000000000 0.0000000000 0.0000000000 inf\n"
     "H 0.0000000000 0.0000000000 0.0000000000 -inf\n"
     "H 0.0000000000 0.0000000000 0.0000000000 nan\n",
     "H       0.0000000000     0.0000000000     0.0000000000  inf\n"
     "H       0.0000000000     0.0000000000     0.0000000000 -inf\n"
     "H       0.0000000000     0.0000000000     0.0000000000 nan\n"},
    {"FifteenDigitsAndTenDecimals",
     "1\n\nH 0.33333333333333333 0 0\n",
     "q",
     {2.0 / 3.0},
     "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "H 0.3333333333 0.0000000000 0.0000000000 0.666666666666667\n",
     "H       0.3333333333     0.0000000000     0.0000000000  0.6666666667\n"},
    {"FurtherColumnsAreNotCopied",
     "1\nLattice=\"5 0 0 0 5 0 0 0 5\" Properties=species:S:1:pos:R:3:q:R:1\nH 1 2 3 0.5 junk\n",
     "q",
     {1},
     "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
     "H 1.0000000000 2.0000000000 3.0000000000 1\n",
     "H       1.0000000000     2.0000000000     3.0000000000  1.0000000000\n"},
};
class GeometryFiles : public testing::TestWithParam<FileCase> {
 protected:
  GeometryFiles() { work_.write("job/here/a.xyz", GetParam().geometry); }

  void write(const DslStatement& statement) {
    EvalContext context;
    write_geometry_outputs(statement, GetParam().result, context);
  }

  WorkPlace work_;
};

TEST_P(GeometryFiles, AreWrittenTogether) {
  write(statement_of(GetParam().target, "out/r.extxyz", "out/r.chg"));
  EXPECT_EQ(work_.read("job/here/out/r.extxyz"), GetParam().extxyz);
  EXPECT_EQ(work_.read("job/here/out/r.chg"), GetParam().chg);
}

TEST_P(GeometryFiles, AreWrittenOneByOneInThePlaceOfOlderOnes) {
  work_.write("job/here/r.extxyz", "old content\n" + std::string(10'000, 'x'));
  work_.write("job/here/r.chg", "old content\n" + std::string(10'000, 'x'));
  write(statement_of(GetParam().target, "r.extxyz", ""));
  EXPECT_EQ(work_.read("job/here/r.extxyz"), GetParam().extxyz);
  EXPECT_TRUE(work_.read("job/here/r.chg").starts_with("old content\n"));
  write(statement_of(GetParam().target, "", "r.chg"));
  EXPECT_EQ(work_.read("job/here/r.chg"), GetParam().chg);
}

TEST_P(GeometryFiles, MayBeOneFileThatTheChargesGet) {
  write(statement_of(GetParam().target, "r", "r"));
  EXPECT_EQ(work_.read("job/here/r"), GetParam().chg);
}
INSTANTIATE_TEST_SUITE_P(Results, GeometryFiles, testing::ValuesIn(file_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// The label of the values in the header of the extended-XYZ file

struct LabelCase {
  const char* name;
  std::string target;
  std::string expected;
};
const std::vector<LabelCase> label_cases = {
    {"Plain", "charge.resp2", "charge.resp2"},
    {"EveryKindOfByteThatIsReplaced", "a:b=c d", "a_b_c_d"},
    {"AllWhiteSpace", " \t\n\v\f\r", "______"},
    {"OneByteForOneByte", "::==  x", "______x"},
    {"OtherPunctuationStays", "a/b*c[1]-'d'\"e\"_", "a/b*c[1]-'d'\"e\"_"},
    {"BytesAbove127Stay", "電荷\xa0\xff", "電荷\xa0\xff"},
};
class ExtxyzLabel : public testing::TestWithParam<LabelCase> {};

TEST_P(ExtxyzLabel, IsTheTargetAsFarAsTheHeaderCanCarryIt) {
  const WorkPlace work;
  work.write("job/here/a.xyz", "1\n\nH 1 2 3\n");
  const DslStatement statement = statement_of(GetParam().target, "r.extxyz", "");
  EvalContext context;
  write_geometry_outputs(statement, {1}, context);
  EXPECT_EQ(work.read("job/here/r.extxyz"),
            "1\nProperties=species:S:1:pos:R:3:" + GetParam().expected +
                ":R:1 generated_by=vqvec\n"
                "H 1.0000000000 2.0000000000 3.0000000000 1\n");
}
INSTANTIATE_TEST_SUITE_P(Targets, ExtxyzLabel, testing::ValuesIn(label_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// The choice of the geometry

struct ChoiceCase {
  const char* name;
  std::string geom_path;
  std::vector<std::string_view> used_tasks;
  std::string expected_symbol;  // of the only atom: A, B, first, auto or here
};
const std::vector<ChoiceCase> choice_cases = {
    {"FirstTaskUsed", "", {"b", "a"}, "B"},
    {"WordFirst", "first", {"b", "a"}, "B"},
    {"WordFirstInCapitals", "FIRST", {"b", "a"}, "B"},
    {"WordAuto", "auto", {"a", "b"}, "A"},
    {"WordAutoInMixedCase", "aUTo", {"a", "b"}, "A"},
    {"WordBetweenSpaces", " \tauto\r\n", {"a", "b"}, "A"},
    {"SpacesOnly", " \t\r\n ", {"b", "a"}, "B"},
    {"NoTaskUsed", "", {}, "here"},
    {"NoTaskUsedForFirst", "First", {}, "here"},
    {"NoTaskUsedForAuto", "AUTO", {}, "here"},
    {"NamedTask", "a", {"b"}, "A"},
    {"NamedTaskBetweenSpaces", " a\n", {"b"}, "A"},
    {"NamedTaskWithoutAnyUsed", "a", {}, "A"},
    {"NamedSelf", "self", {"b"}, "here"},
    {"NamedCurrent", "Current", {"b"}, "here"},
    {"NamedDot", ".", {"b"}, "here"},
    {"PathOfATask", "../b", {"a"}, "B"},
    {"ReservedWordAsAPath", "./first", {"a"}, "first"},
    {"ReservedWordWithASlash", "auto/", {"a"}, "auto"},
    {"WordThatBeginsWithAReservedOne", "first1", {"a"}, "first1"},
    {"VerticalTabIsNotTrimmed", "\vauto", {"a"}, "tab"},
    {"UsedTaskWithSpaces", "", {" b ", "a"}, "B"},
    {"UsedTaskThatIsTheWorkingDirectory", "", {"", "a"}, "here"},
    {"UsedTaskNamedLikeAReservedWord", "", {"auto", "a"}, "auto"},
};
class GeometryChoice : public testing::TestWithParam<ChoiceCase> {};

TEST_P(GeometryChoice, NamesATask) {
  const WorkPlace work;
  work.write("job/a/a.xyz", "1\n\nA 1 2 3\n");
  work.write("job/b/a.xyz", "1\n\nB 1 2 3\n");
  work.write("job/here/a.xyz", "1\n\nhere 1 2 3\n");
  work.write("job/first/a.xyz", "1\n\nfirst 1 2 3\n");
  work.write("job/first1/a.xyz", "1\n\nfirst1 1 2 3\n");
  work.write("job/auto/a.xyz", "1\n\nauto 1 2 3\n");
  work.write("job/\vauto/a.xyz", "1\n\ntab 1 2 3\n");
  const DslStatement statement = statement_of("q", "r.extxyz", "", GetParam().geom_path);
  EvalContext context;
  for (const std::string_view task_text : GetParam().used_tasks) {
    context.add_used_task(task_text);
  }
  write_geometry_outputs(statement, {1}, context);
  EXPECT_EQ(work.read("job/here/r.extxyz"),
            "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n" +
                GetParam().expected_symbol + " 1.0000000000 2.0000000000 3.0000000000 1\n");
  EXPECT_EQ(context.used_tasks(), GetParam().used_tasks);
}
INSTANTIATE_TEST_SUITE_P(Statements, GeometryChoice, testing::ValuesIn(choice_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Failures; the working directory is `here` in a directory of the test's own

struct FailureCase {
  const char* name;
  std::string geom_path;
  std::string out_path;
  std::string chg_path;
  std::size_t result_length;
  std::string message;  // up to a path
  std::string path;     // what follows, below the test's own directory; empty: nothing
};
const std::vector<FailureCase> failure_cases = {
    {"NoGeometry", "empty", "r.extxyz", "", 3,
     "cannot write atom vector geometry output: no geometry file found in task directory ",
     "job/empty"},
    {"NoGeometryForChargesAlone", "empty", "", "r.chg", 3,
     "cannot write atom vector geometry output: no geometry file found in task directory ",
     "job/empty"},
    {"MalformedGeometry", "bad", "r.extxyz", "", 3,
     "cannot write atom vector geometry output: no geometry file found in task directory ",
     "job/bad"},
    {"TaskThatIsNowhere", "nowhere", "r.extxyz", "r.chg", 3,
     "cannot write atom vector geometry output: no geometry file found in task directory ",
     "job/nowhere"},
    {"PathThatIsNowhere", "../no/where", "r.extxyz", "", 3,
     "cannot write atom vector geometry output: no geometry file found in task directory ",
     "job/../no/where"},
    {"FileInsteadOfATask", "water/last_opt.xyz", "r.extxyz", "", 3,
     "cannot write atom vector geometry output: no geometry file found in task directory ",
     "job/water/last_opt.xyz"},
    {"WorkingDirectoryWithoutGeometry", "", "r.extxyz", "", 3,
     "cannot write atom vector geometry output: no geometry file found in task directory ",
     "job/here"},
    {"NoGeometryComesBeforeTheCounts", "empty", "r.extxyz", "r.chg", 0,
     "cannot write atom vector geometry output: no geometry file found in task directory ",
     "job/empty"},
    {"OneValueTooMany", "water", "r.extxyz", "", 4,
     "cannot write extxyz: geometry atom count 3 does not match vector length 4", ""},
    {"OneValueTooFew", "water", "r.extxyz", "", 2,
     "cannot write extxyz: geometry atom count 3 does not match vector length 2", ""},
    {"NoValues", "water", "r.extxyz", "", 0,
     "cannot write extxyz: geometry atom count 3 does not match vector length 0", ""},
    {"OneChargeTooMany", "water", "", "r.chg", 4,
     "cannot write chg: geometry atom count 3 does not match vector length 4", ""},
    {"OneChargeTooFew", "water", "", "r.chg", 2,
     "cannot write chg: geometry atom count 3 does not match vector length 2", ""},
    {"ExtxyzComesBeforeCharges", "water", "r.extxyz", "r.chg", 4,
     "cannot write extxyz: geometry atom count 3 does not match vector length 4", ""},
    {"CountsComeBeforeThePath", "water", "/dev/full", "", 4,
     "cannot write extxyz: geometry atom count 3 does not match vector length 4", ""},
    {"ExtxyzThatCannotBeOpened", "water", "../water", "r.chg", 3,
     "could not open file for writing: ../water", ""},
    {"ExtxyzThatCannotBeWritten", "water", "/dev/full", "r.chg", 3,
     "could not write file: /dev/full", ""},
};
class GeometryFailure : public testing::TestWithParam<FailureCase> {};

TEST_P(GeometryFailure, IsOneMessageAndLeavesNoFile) {
  const WorkPlace work;
  work.write("job/water/last_opt.xyz", water);
  work.write("job/bad/last_opt.xyz", "3\nwater\nO 0.0 0.0\n");
  work.make("job/empty");
  const FailureCase& one = GetParam();
  const DslStatement statement = statement_of("q", one.out_path, one.chg_path, one.geom_path);
  EvalContext context;
  EXPECT_EQ(failure_of([&] {
              write_geometry_outputs(statement, AtomVector(one.result_length, 1.0), context);
            }),
            one.message + (one.path.empty() ? "" : work.path_of(one.path).string()));
  EXPECT_FALSE(work.has("job/here/r.extxyz"));
  EXPECT_FALSE(work.has("job/here/r.chg"));
}
INSTANTIATE_TEST_SUITE_P(Statements, GeometryFailure, testing::ValuesIn(failure_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(WriteGeometryOutputs, NamesTheDirectoryOfTheFirstTaskUsedThatHasNoGeometry) {
  const WorkPlace work;
  work.write("job/a/a.xyz", water);
  const DslStatement statement = statement_of("q", "r.extxyz", "");
  EvalContext context;
  context.add_used_task("neg(a");
  context.add_used_task("a");
  EXPECT_EQ(failure_of([&] {
              write_geometry_outputs(statement, {1, 2, 3}, context);
            }),
            "cannot write atom vector geometry output: no geometry file found in task directory " +
                work.path_of("job/neg(a").string());
}

TEST(WriteGeometryOutputs, LeavesTheExtxyzFileWhenTheChargesFail) {
  const WorkPlace work;
  work.write("job/here/a.xyz", "1\n\nH 1 2 3\n");
  const DslStatement statement = statement_of("q", "r.extxyz", "/dev/full");
  EvalContext context;
  EXPECT_EQ(failure_of([&] { write_geometry_outputs(statement, {1}, context); }),
            "could not write file: /dev/full");
  EXPECT_EQ(work.read("job/here/r.extxyz"),
            "1\nProperties=species:S:1:pos:R:3:q:R:1 generated_by=vqvec\n"
            "H 1.0000000000 2.0000000000 3.0000000000 1\n");
}

TEST(WriteGeometryOutputs, ReadsTheGeometryOnceForBothFiles) {
  const WorkPlace work;
  work.write("job/here/b.xyz", "1\n\nB 1 2 3\n");
  const DslStatement first = statement_of("q", "a.xyz", "");
  const DslStatement second = statement_of("q", "", "r.chg");
  EvalContext context;
  write_geometry_outputs(first, {1}, context);
  work.write("job/here/a.xyz", "1\n\nA 1 2 3\n");  // would now be the geometry
  write_geometry_outputs(second, {1}, context);
  EXPECT_EQ(work.read("job/here/r.chg"),
            "B       1.0000000000     2.0000000000     3.0000000000  1.0000000000\n");
}

}  // namespace
}  // namespace vqvec
