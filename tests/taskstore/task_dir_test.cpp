#include "taskstore/task_dir.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "taskstore/eval_context.hpp"
#include "tests/support/kv_pairs.hpp"
#include "tests/support/ordinary_user.hpp"
#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

namespace fs = std::filesystem;

std::string one_atom(const std::string& symbol) {
  return "1\n\n" + symbol + " 0 0 0\n";
}

// The symbol of a geometry of one atom.
std::string only_symbol(const TaskDir& task) {
  return task.atoms.size() == 1 ? std::string(task.atoms.symbol(0)) : "(no geometry)";
}

// The directory of a task text

struct PlaceCase {
  const char* name;
  std::vector<fs::path> directories;  // each says in its data which one it is
  std::string text;
  fs::path expected_dir;
  std::optional<std::string> expected_place;  // nothing: there is no such directory
};
const std::vector<PlaceCase> place_cases = {
    {"Sibling", {"job/scrf"}, "scrf", "job/scrf", "job/scrf"},
    {"Child", {"job/here/scrf"}, "scrf", "job/here/scrf", "job/here/scrf"},
    {"SiblingWinsOverChild", {"job/scrf", "job/here/scrf"}, "scrf", "job/scrf", "job/scrf"},
    {"NowhereIsASibling", {}, "scrf", "job/scrf", std::nullopt},
    {"ParentsChildIsNoCandidate", {"scrf"}, "scrf", "job/scrf", std::nullopt},
    {"RootsChildIsNoCandidate", {}, "usr", "job/usr", std::nullopt},
    {"GrandchildIsNoCandidate", {"job/here/sub/scrf"}, "scrf", "job/scrf", std::nullopt},
    {"Dot", {}, ".", "job/here", "job/here"},
    {"EmptyText", {}, "", "job/here", "job/here"},
    {"TextOfSpaces", {}, " \t\r\n ", "job/here", "job/here"},
    {"DotBetweenSpaces", {}, " .\n", "job/here", "job/here"},
    {"Self", {"job/self", "job/here/self"}, "self", "job/here", "job/here"},
    {"SelfCapital", {"job/SELF"}, "SELF", "job/here", "job/here"},
    {"SelfMixed", {"job/sElF"}, "sElF", "job/here", "job/here"},
    {"SelfBetweenSpaces", {"job/self"}, "\t self \r\n", "job/here", "job/here"},
    {"Current", {"job/current"}, "current", "job/here", "job/here"},
    {"CurrentCapitalised", {"job/Current"}, "Current", "job/here", "job/here"},
    {"CurrentCapital", {"job/CURRENT"}, "CURRENT", "job/here", "job/here"},
    {"LongerThanAReservedWord",
     {"job/selfish", "job/currents"},
     "selfish",
     "job/selfish",
     "job/selfish"},
    {"ShorterThanAReservedWord", {"job/curren"}, "curren", "job/curren", "job/curren"},
    {"AutoIsNoReservedWord", {"job/auto"}, "auto", "job/auto", "job/auto"},
    {"ReservedWordAsAPath", {"job/self"}, "./self", "job/./self", "job/self"},
    {"ReservedWordWithASlash", {"job/self"}, "self/", "job/self/", "job/self"},
    {"ReservedWordNowhereAsAPath", {}, "./self", "job/./self", std::nullopt},
    {"NamesAreCaseSensitive", {"job/scrf"}, "SCRF", "job/SCRF", std::nullopt},
    {"SpacesAreTrimmed", {"job/scrf"}, " \tscrf\r\n", "job/scrf", "job/scrf"},
    {"VerticalTabIsNotTrimmed", {"job/scrf", "job/\vscrf"}, "\vscrf", "job/\vscrf", "job/\vscrf"},
    {"SpaceInside", {"job/my task"}, "my task", "job/my task", "job/my task"},
    {"NameOutsideAscii", {"job/電荷 é"}, "電荷 é", "job/電荷 é", "job/電荷 é"},
    {"NameOfAnyBytes", {"job/\xff\xfe"}, "\xff\xfe", "job/\xff\xfe", "job/\xff\xfe"},
    {"WildcardsAreOrdinaryBytes", {"job/t*", "job/t1"}, "t*", "job/t*", "job/t*"},
    {"WildcardsDoNotMatch", {"job/t1"}, "t?", "job/t?", std::nullopt},
    {"CallAsAName", {"job/neg(a"}, "neg(a", "job/neg(a", "job/neg(a"},
    {"ThePlaceItselfAsASibling", {}, "here", "job/here", "job/here"},
    {"TrailingSlash", {"job/scrf"}, "scrf/", "job/scrf/", "job/scrf"},
    {"PathBelowASibling", {"job/a/b"}, "a/b", "job/a/b", "job/a/b"},
    {"PathBelowAChild", {"job/a", "job/here/a/b"}, "a/b", "job/here/a/b", "job/here/a/b"},
    {"DotSlash", {}, "./", "job/./", "job"},
    {"DotSlashName", {"job/scrf", "job/here/scrf"}, "./scrf", "job/./scrf", "job/scrf"},
    {"DotSlashNameOfAChild", {"job/here/scrf"}, "./scrf", "job/here/./scrf", "job/here/scrf"},
    {"TwoDotsAreThoseOfTheParent", {}, "..", "job/..", "."},
    {"PathThroughTwoDots", {"scrf", "job/scrf"}, "../scrf", "job/../scrf", "scrf"},
    {"PathThroughTwoDotsFromHere", {"job/scrf"}, "../scrf", "job/here/../scrf", "job/scrf"},
    {"DoubleSlash", {"job/a/b"}, "a//b", "job/a//b", "job/a/b"},
};
class TaskText : public testing::TestWithParam<PlaceCase> {
 protected:
  TaskText() {
    for (const fs::path place : {".", "job", "job/here"}) {
      work_.write(place / ".vorq.result.kv", "place=" + place.string() + "\n");
    }
    for (const fs::path& place : GetParam().directories) {
      work_.write(place / ".vorq.result.kv", "place=" + place.string() + "\n");
    }
  }

  WorkPlace work_;
  EvalContext context_;
};

TEST_P(TaskText, StandsForADirectory) {
  const TaskDir& task = resolve_task(context_, GetParam().text);
  EXPECT_EQ(task.dir(), work_.path_of(GetParam().expected_dir).string());
  EXPECT_EQ(task.kv.find("place"), GetParam().expected_place);
}

TEST_P(TaskText, WithoutSpacesAroundItIsTheName) {
  const TaskDir& task = resolve_task(context_, GetParam().text);
  const auto& text = GetParam().text;
  const auto first = std::min(text.find_first_not_of(" \t\r\n"), text.size());
  EXPECT_EQ(task.name, text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

TEST_P(TaskText, AsAnAbsolutePathStandsForItself) {
  const std::string path = work_.path_of(GetParam().expected_dir).string();
  const TaskDir& task = resolve_task(context_, path);
  EXPECT_EQ(task.name, path);
  EXPECT_EQ(task.dir(), path);
  EXPECT_EQ(task.kv.find("place"), GetParam().expected_place);
}
INSTANTIATE_TEST_SUITE_P(Texts, TaskText, testing::ValuesIn(place_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ResolveTask, FindsSiblingsOfTheRootDirectoryInTheRootDirectory) {
  const ScratchDir top;
  top.write("scrf/.vorq.result.kv", "k=v\n");
  const WorkingDirectory here("/");
  const std::string text = (top.path().relative_path() / "scrf").string();
  EvalContext context;
  const TaskDir& task = resolve_task(context, text);
  EXPECT_EQ(task.dir(), top.path_of("scrf"));
  EXPECT_EQ(task.kv.find("k"), "v");
}

TEST(ResolveTask, TakesTheWorkingDirectoryAnewForEveryEntry) {
  const ScratchDir top;
  top.write("one/.vorq.result.kv", "k=1\n");
  top.write("two/.vorq.result.kv", "k=2\n");
  EvalContext context;
  {
    const WorkingDirectory here(top.path() / "one");
    EXPECT_EQ(resolve_task(context, "self").kv.find("k"), "1");
  }
  {
    const WorkingDirectory here(top.path() / "two");
    EXPECT_EQ(resolve_task(context, "current").kv.find("k"), "2");
    EXPECT_EQ(resolve_task(context, "self").kv.find("k"), "1");
  }
}

// Long texts are long only together with what they are joined to.
TEST(ResolveTask, FindsDirectoriesByLongPaths) {
  const WorkPlace work;
  work.write("job/scrf/.vorq.result.kv", "k=v\n");
  const WorkingDirectory deep(work.make("job/here/" + std::string(200, 'd') + "/here"));
  constexpr std::size_t longest_dir = 4'060;  // leaves room for the names of its files
  std::string path = work.path_of("job/scrf").string();
  while (path.size() + 2 <= longest_dir) {
    path += "/.";
  }
  const std::size_t sibling_base = work.path_of("job/here/").string().size() + 201;
  std::string sibling = "../../scrf";
  while (sibling_base + sibling.size() + 2 <= longest_dir) {
    sibling += "/.";
  }
  EvalContext context;
  EXPECT_EQ(resolve_task(context, path).dir(), path);
  EXPECT_EQ(resolve_task(context, path).kv.find("k"), "v");
  EXPECT_EQ(resolve_task(context, sibling).kv.find("k"), "v");
}

// Other things in place of a sibling directory

struct PlaceTaken {
  const char* name;
  void (*take)(const fs::path& sibling);
  fs::path expected_dir;
};
const std::vector<PlaceTaken> places_taken = {
    {"File", [](const fs::path& path) { std::ofstream(path) << "text"; }, "job/here/scrf"},
    {"Fifo", [](const fs::path& path) { EXPECT_EQ(mkfifo(path.c_str(), 0600), 0); },
     "job/here/scrf"},
    {"DanglingLink", [](const fs::path& path) { fs::create_symlink("none", path); },
     "job/here/scrf"},
    {"LinkToItself", [](const fs::path& path) { fs::create_symlink("scrf", path); },
     "job/here/scrf"},
    {"LinkToAFile",
     [](const fs::path& path) {
       std::ofstream(path.parent_path() / "file") << "text";
       fs::create_symlink("file", path);
     },
     "job/here/scrf"},
    {"LinkToADirectory", [](const fs::path& path) { fs::create_symlink("here/scrf", path); },
     "job/scrf"},
    {"LinkToTheWorkingDirectory", [](const fs::path& path) { fs::create_symlink("here", path); },
     "job/scrf"},
};
class SiblingsPlace : public testing::TestWithParam<PlaceTaken> {};

TEST_P(SiblingsPlace, LeavesItToTheChildUnlessItIsADirectory) {
  const WorkPlace work;
  work.make("job/here/scrf");
  GetParam().take(work.path_of("job/scrf"));
  EvalContext context;
  EXPECT_EQ(resolve_task(context, "scrf").dir(), work.path_of(GetParam().expected_dir).string());
}

TEST_P(SiblingsPlace, IsThatOfTheTaskWhenThereIsNoChild) {
  const WorkPlace work;
  GetParam().take(work.path_of("job/scrf"));
  EvalContext context;
  const TaskDir& task = resolve_task(context, "scrf");
  EXPECT_EQ(task.dir(), work.path_of("job/scrf").string());
  EXPECT_TRUE(pairs_of(task.kv).empty());
  EXPECT_TRUE(task.atoms.empty());
}
INSTANTIATE_TEST_SUITE_P(Places, SiblingsPlace, testing::ValuesIn(places_taken),
                         [](const auto& one) { return std::string(one.param.name); });

// Texts that can be no directory

struct ImpossibleCase {
  const char* name;
  std::string text;
};
const std::vector<ImpossibleCase> impossible_cases = {
    {"NameOf300Bytes", std::string(300, 'n')},
    {"NameOf5000Bytes", std::string(5'000, 'n')},
    {"NameOf10000Bytes", std::string(10'000, 'n')},
    {"PathOf5000Bytes",
     [] {
       std::string path = "scrf";
       while (path.size() < 5'000) {
         path += "/.";
       }
       return path;
     }()},
    {"AbsolutePathOf5000Bytes",
     [] {
       std::string path = "/";
       while (path.size() < 5'000) {
         path += "./";
       }
       return path;
     }()},
    {"BelowADevice", "/dev/null/scrf"},
};
class ImpossibleText : public testing::TestWithParam<ImpossibleCase> {};

TEST_P(ImpossibleText, IsNotThere) {
  const WorkPlace work;
  work.write("job/scrf/.vorq.result.kv", "k=v\n");
  const std::string& text = GetParam().text;
  EvalContext context;
  const TaskDir& task = resolve_task(context, text);
  EXPECT_EQ(task.name, text);
  EXPECT_EQ(task.dir(), text[0] == '/' ? text : work.path_of("job").string() + "/" + text);
  EXPECT_TRUE(pairs_of(task.kv).empty());
  EXPECT_TRUE(task.atoms.empty());
  EXPECT_EQ(&resolve_task(context, text), &task);
}
INSTANTIATE_TEST_SUITE_P(Texts, ImpossibleText, testing::ValuesIn(impossible_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// The four key-value files

using Pairs = std::vector<std::pair<std::string, std::string>>;
using Files = std::vector<std::pair<std::string, std::string>>;

struct MergeCase {
  const char* name;
  Files files;
  Pairs expected;
};
const std::vector<MergeCase> merge_cases = {
    {"NoFiles", {}, {}},
    {"ResultAlone", {{".vorq.result.kv", "k=1\n"}}, {{"k", "1"}}},
    {"ValuesAlone", {{".vorq.values.kv", "k=2\n"}}, {{"k", "2"}}},
    {"CollectUserAlone", {{".vorq.dbcollect.user.kv", "k=3\n"}}, {{"k", "3"}}},
    {"ValuesUserAlone", {{".vorq.values.user.kv", "k=4\n"}}, {{"k", "4"}}},
    {"EachReplacesTheEarlierOnes",
     {{".vorq.result.kv", "a=1\nb=1\nc=1\nd=1\n"},
      {".vorq.values.kv", "b=2\nc=2\nd=2\n"},
      {".vorq.dbcollect.user.kv", "c=3\nd=3\n"},
      {".vorq.values.user.kv", "d=4\n"}},
     {{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4"}}},
    {"UserReplacesTheResult",
     {{".vorq.result.kv", "charge=0\n"}, {".vorq.values.user.kv", "charge=1\n"}},
     {{"charge", "1"}}},
    {"CollectUserReplacesValues",
     {{".vorq.values.kv", "k=2\n"}, {".vorq.dbcollect.user.kv", "k=3\n"}},
     {{"k", "3"}}},
    {"EmptyValueReplaces",
     {{".vorq.result.kv", "k=1\n"}, {".vorq.values.kv", "k=\n"}},
     {{"k", ""}}},
    {"AtomsAreReplacedOneByOne",
     {{".vorq.result.kv", "atoms.1.q=1\natoms.2.q=2\n"},
      {".vorq.values.user.kv", "atoms.2.q=20\natoms.3.q=30\n"}},
     {{"atoms.1.q", "1"}, {"atoms.2.q", "20"}, {"atoms.3.q", "30"}}},
    {"OtherFilesAreNotRead",
     {{".vorq.kv", "a=1\n"},
      {"vorq.result.kv", "b=1\n"},
      {".vorq.result.kv.bak", "c=1\n"},
      {".VORQ.RESULT.KV", "d=1\n"},
      {".vorq.result.user.kv", "e=1\n"},
      {"sub/.vorq.result.kv", "f=1\n"}},
     {}},
    {"MalformedFileIsSkipped",
     {{".vorq.result.kv", "k=1\n"}, {".vorq.values.kv", "no pair\n\xff\n"}},
     {{"k", "1"}}},
};
class MergedData : public testing::TestWithParam<MergeCase> {};

TEST_P(MergedData, FollowTheOrderOfTheFiles) {
  const WorkPlace work;
  work.make("job/scrf");
  for (const auto& [name, text] : GetParam().files) {
    work.write(fs::path("job/scrf") / name, text);
  }
  EvalContext context;
  EXPECT_EQ(pairs_of(resolve_task(context, "scrf").kv), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Files, MergedData, testing::ValuesIn(merge_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// The geometry file that is chosen

struct GeometryCase {
  const char* name;
  Files files;  // the good ones hold one atom each
  std::string expected_symbol;
};
const std::vector<GeometryCase> geometry_cases = {
    {"NoFiles", {}, "(no geometry)"},
    {"XyzAlone", {{"a.xyz", one_atom("A")}}, "A"},
    {"ExtxyzAlone", {{"a.extxyz", one_atom("A")}}, "A"},
    {"PreferredAlone", {{"last_a.xyz", one_atom("A")}}, "A"},
    {"PreferredWins",
     {{"b.xyz", one_atom("B")}, {"a.extxyz", one_atom("A")}, {"last_opt.xyz", one_atom("L")}},
     "L"},
    {"MalformedPreferredLoses",
     {{"b.xyz", one_atom("B")}, {"a.extxyz", one_atom("A")}, {"last_opt.xyz", "1\n\nC 0 abc 1\n"}},
     "A"},
    {"PreferredWithoutAtomsLoses",
     {{"b.xyz", one_atom("B")}, {"a.extxyz", one_atom("A")}, {"last_opt.xyz", "0\n\n"}},
     "A"},
    {"ThirdChoice",
     {{"b.xyz", one_atom("B")}, {"a.extxyz", "nonsense\n"}, {"last_opt.xyz", ""}},
     "B"},
    {"AllMalformed", {{"b.xyz", "x"}, {"a.extxyz", "0\n"}, {"last_opt.xyz", ""}}, "(no geometry)"},
    {"FileThatIsTooShortLoses", {{"a.xyz", "2\n\nA 0 0 0\n"}, {"b.xyz", one_atom("B")}}, "B"},
    {"PreferredAreSortedByName",
     {{"last_2.xyz", one_atom("B")}, {"last_1.xyz", one_atom("A")}, {"last_3.xyz", one_atom("C")}},
     "A"},
    {"SecondPreferredWinsOverOrdinary",
     {{"last_1.xyz", "x"}, {"last_2.xyz", one_atom("B")}, {"a.xyz", one_atom("A")}},
     "B"},
    {"PreferredExtxyzIsOrdinary",
     {{"last_opt.extxyz", one_atom("L")}, {"a.xyz", one_atom("A")}},
     "A"},
    {"PreferredExtxyzIsOrdinaryAlsoWhenItComesFirst",
     {{"last_opt.extxyz", one_atom("L")}, {"m.xyz", one_atom("M")}},
     "L"},
    {"PreferredXyzWinsOverPreferredExtxyz",
     {{"last_a.extxyz", one_atom("A")}, {"last_b.xyz", one_atom("B")}},
     "B"},
    {"CapitalPrefixIsOrdinary", {{"LAST_opt.xyz", one_atom("L")}, {"A.xyz", one_atom("A")}}, "A"},
    {"CapitalPrefixIsOrdinaryAlsoWhenItComesFirst",
     {{"LAST_opt.xyz", one_atom("L")}, {"a.xyz", one_atom("A")}},
     "L"},
    {"PrefixMustBeWhole", {{"last.xyz", one_atom("L")}, {"a.xyz", one_atom("A")}}, "A"},
    {"PrefixMustComeFirst", {{"my_last_opt.xyz", one_atom("M")}, {"a.xyz", one_atom("A")}}, "A"},
    {"PrefixAlone", {{"last_.xyz", one_atom("L")}, {"a.xyz", one_atom("A")}}, "L"},
    {"PreferredWithCapitalExtension",
     {{"last_opt.XYZ", one_atom("L")}, {"a.xyz", one_atom("A")}},
     "L"},
    {"CapitalExtension", {{"GEOM.XYZ", one_atom("G")}}, "G"},
    {"MixedExtension", {{"geom.ExtXYZ", one_atom("G")}}, "G"},
    {"CapitalsComeFirst", {{"a.xyz", one_atom("A")}, {"GEOM.XYZ", one_atom("G")}}, "G"},
    {"SortedByBytes", {{"9.xyz", one_atom("N")}, {"10.xyz", one_atom("T")}}, "T"},
    {"MinusComesBeforePoint", {{"a.xyz", one_atom("P")}, {"a-b.xyz", one_atom("M")}}, "M"},
    {"UnderscoreComesAfterPoint", {{"a.xyz", one_atom("P")}, {"a_b.xyz", one_atom("U")}}, "P"},
    {"ExtxyzComesBeforeXyz", {{"a.xyz", one_atom("X")}, {"a.extxyz", one_atom("E")}}, "E"},
    {"NamesOutsideAsciiComeLast",
     {{"\xc3\xa9.xyz", one_atom("E")}, {"z.xyz", one_atom("Z")}, {"\xff.xyz", one_atom("F")}},
     "Z"},
    {"NameOutsideAsciiAlone", {{"水.xyz", one_atom("W")}}, "W"},
    {"OnlyTheExtensionIsNoExtension",
     {{".xyz", one_atom("A")}, {".extxyz", one_atom("B")}},
     "(no geometry)"},
    {"HiddenFileWithExtension", {{".a.xyz", one_atom("A")}}, "A"},
    {"TwoDotsInFront", {{"..xyz", one_atom("A")}}, "A"},
    {"LastOfSeveralExtensionsCounts",
     {{"a.xyz.bak", one_atom("A")}, {"b.bak.xyz", one_atom("B")}},
     "B"},
    {"OtherExtensions",
     {{"a.xyzz", one_atom("A")},
      {"b.xy", one_atom("B")},
      {"c.pdb", one_atom("C")},
      {"d.exyz", one_atom("D")},
      {"e.xyz~", one_atom("E")},
      {"f.xyz.", one_atom("F")},
      {"g.xyz ", one_atom("G")},
      {"xyz", one_atom("H")},
      {"last_xyz", one_atom("I")}},
     "(no geometry)"},
    {"SpaceInTheName", {{"my geometry.xyz", one_atom("M")}}, "M"},
    {"NoRecursion", {{"sub/a.xyz", one_atom("A")}}, "(no geometry)"},
};
class ChosenGeometry : public testing::TestWithParam<GeometryCase> {
 protected:
  ChosenGeometry() {
    work_.make("job/scrf");
    for (const auto& [name, text] : GetParam().files) {
      work_.write(fs::path("job/scrf") / name, text);
    }
  }

  WorkPlace work_;
  EvalContext context_;
};

TEST_P(ChosenGeometry, IsTheBestThatCanBeUsed) {
  EXPECT_EQ(only_symbol(resolve_task(context_, "scrf")), GetParam().expected_symbol);
}

TEST_P(ChosenGeometry, IsNotAffectedByASlashAfterTheName) {
  EXPECT_EQ(only_symbol(resolve_task(context_, "scrf//")), GetParam().expected_symbol);
}

TEST_P(ChosenGeometry, IsFoundThroughLinks) {
  fs::rename(work_.path_of("job/scrf"), work_.path_of("elsewhere"));
  work_.make("job/scrf");
  for (const auto& [name, text] : GetParam().files) {
    if (!text.empty() && name.find('/') == std::string::npos) {
      fs::create_symlink(work_.path_of("elsewhere") / name, work_.path_of("job/scrf") / name);
    }
  }
  EXPECT_EQ(only_symbol(resolve_task(context_, "scrf")), GetParam().expected_symbol);
}
INSTANTIATE_TEST_SUITE_P(Files, ChosenGeometry, testing::ValuesIn(geometry_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ResolveTask, KeepsAllAtomsOfTheGeometryInOrder) {
  const WorkPlace work;
  work.write("job/scrf/last_opt.xyz",
             "3\nwater\nO 0.0 0.0 0.1173\nH 0.0 0.7572 -0.4692\nH 0.0 -0.7572 -0.4692\n");
  EvalContext context;
  const Geometry& atoms = resolve_task(context, "scrf").atoms;
  ASSERT_EQ(atoms.size(), 3U);
  EXPECT_EQ(atoms[0], (GeomAtom{"O", 0, 0, 0.1173}));
  EXPECT_EQ(atoms[1], (GeomAtom{"H", 0, 0.7572, -0.4692}));
  EXPECT_EQ(atoms[2], (GeomAtom{"H", 0, -0.7572, -0.4692}));
}

TEST(ResolveTask, FindsTheGeometryOfTheWorkingDirectory) {
  const WorkPlace work;
  work.write("job/here/a.xyz", one_atom("A"));
  EvalContext context;
  EXPECT_EQ(only_symbol(resolve_task(context, ".")), "A");
}

// Other things in place of the task's files

struct Intruder {
  const char* name;
  void (*make)(const fs::path& path);
};
const std::vector<Intruder> intruders = {
    {"Directory", [](const fs::path& path) { fs::create_directory(path); }},
    {"DirectoryWithFiles",
     [](const fs::path& path) {
       fs::create_directory(path);
       std::ofstream(path / "a.xyz") << one_atom("X");
       std::ofstream(path / ".vorq.result.kv") << "k=x\n";
     }},
    {"Fifo", [](const fs::path& path) { EXPECT_EQ(mkfifo(path.c_str(), 0600), 0); }},
    {"DanglingLink", [](const fs::path& path) { fs::create_symlink("none", path); }},
    {"LinkToItself", [](const fs::path& path) { fs::create_symlink(path.filename(), path); }},
    {"LinkToADirectory", [](const fs::path& path) { fs::create_symlink(".", path); }},
    {"LinkToADevice", [](const fs::path& path) { fs::create_symlink("/dev/null", path); }},
    {"EmptyFile", [](const fs::path& path) { std::ofstream(path).flush(); }},
};
class IntruderInATask : public testing::TestWithParam<Intruder> {};

TEST_P(IntruderInATask, IsPassedOver) {
  const WorkPlace work;
  work.write("job/scrf/.vorq.values.kv", "k=2\n");
  work.write("job/scrf/b.xyz", one_atom("B"));
  for (const char* const name : {".vorq.result.kv", ".vorq.dbcollect.user.kv",
                                 ".vorq.values.user.kv", "last_opt.xyz", "a.xyz", "a.extxyz"}) {
    GetParam().make(work.path_of("job/scrf") / name);
  }
  EvalContext context;
  const TaskDir& task = resolve_task(context, "scrf");
  EXPECT_EQ(pairs_of(task.kv), (Pairs{{"k", "2"}}));
  EXPECT_EQ(only_symbol(task), "B");
}
INSTANTIATE_TEST_SUITE_P(Intruders, IntruderInATask, testing::ValuesIn(intruders),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ResolveTask, FollowsLinksToKeyValueFiles) {
  const WorkPlace work;
  work.make("job/scrf");
  work.write("elsewhere.kv", "k=v\n");
  fs::create_symlink(work.path_of("elsewhere.kv"), work.path_of("job/scrf/.vorq.result.kv"));
  EvalContext context;
  EXPECT_EQ(resolve_task(context, "scrf").kv.find("k"), "v");
}

// Permissions

class Permissions : public testing::Test {
 protected:
  Permissions() {
    fs::permissions(work_.path_of("."), fs::perms(0755));
    work_.write("job/scrf/.vorq.result.kv", "k=1\n");
    work_.write("job/scrf/.vorq.values.kv", "k=2\n");
    work_.write("job/scrf/a.xyz", one_atom("A"));
    work_.write("job/scrf/b.xyz", one_atom("B"));
  }
  ~Permissions() override {
    fs::permissions(work_.path_of("job/scrf"), fs::perms(0755));
    umask(umask_before_);
  }

  // Gives the path these permissions and looks at the task as an ordinary user; null when there is
  // none, or none that can come here.
  const TaskDir* resolve_with(const fs::path& name, fs::perms permissions) {
    fs::permissions(work_.path_of(name), permissions);
    const OrdinaryUser user;
    std::error_code ignored;
    const bool can_come_here = user.is_one() && fs::exists(work_.path_of("job"), ignored);
    return can_come_here ? &resolve_task(context_, "scrf") : nullptr;
  }

  const mode_t umask_before_ = umask(022);
  WorkPlace work_;
  EvalContext context_;
};

TEST_F(Permissions, UnreadableKeyValueFileContributesNothing) {
  const TaskDir* const task = resolve_with("job/scrf/.vorq.values.kv", fs::perms::none);
  if (task == nullptr) {
    GTEST_SKIP() << "no ordinary user";
  }
  EXPECT_EQ(pairs_of(task->kv), (Pairs{{"k", "1"}}));
}

TEST_F(Permissions, UnreadableGeometryLosesToTheNext) {
  const TaskDir* const task = resolve_with("job/scrf/a.xyz", fs::perms::none);
  if (task == nullptr) {
    GTEST_SKIP() << "no ordinary user";
  }
  EXPECT_EQ(only_symbol(*task), "B");
}

TEST_F(Permissions, DirectoryThatCannotBeListedHasNoGeometry) {
  const TaskDir* const task = resolve_with("job/scrf", fs::perms(0111));
  if (task == nullptr) {
    GTEST_SKIP() << "no ordinary user";
  }
  EXPECT_EQ(pairs_of(task->kv), (Pairs{{"k", "2"}}));
  EXPECT_EQ(only_symbol(*task), "(no geometry)");
}

TEST_F(Permissions, DirectoryThatCannotBeEnteredHasNoData) {
  const TaskDir* const task = resolve_with("job/scrf", fs::perms::none);
  if (task == nullptr) {
    GTEST_SKIP() << "no ordinary user";
  }
  EXPECT_EQ(task->dir(), work_.path_of("job/scrf").string());
  EXPECT_TRUE(pairs_of(task->kv).empty());
  EXPECT_EQ(only_symbol(*task), "(no geometry)");
}

TEST_F(Permissions, DirectoryThatCanBeListedButNotEnteredHasNoData) {
  const TaskDir* const task = resolve_with("job/scrf", fs::perms(0444));
  if (task == nullptr) {
    GTEST_SKIP() << "no ordinary user";
  }
  EXPECT_TRUE(pairs_of(task->kv).empty());
  EXPECT_EQ(only_symbol(*task), "(no geometry)");
}

// Entries

TEST(ResolveTask, ReadsATaskOnce) {
  const WorkPlace work;
  work.write("job/scrf/.vorq.result.kv", "k=1\n");
  work.write("job/scrf/b.xyz", one_atom("B"));
  EvalContext context;
  const TaskDir& task = resolve_task(context, "scrf");
  work.write("job/scrf/.vorq.result.kv", "k=2\n");
  work.write("job/scrf/.vorq.values.kv", "k=3\n");
  work.write("job/scrf/a.xyz", one_atom("A"));
  EXPECT_EQ(&resolve_task(context, "scrf"), &task);
  EXPECT_EQ(task.kv.find("k"), "1");
  EXPECT_EQ(only_symbol(task), "B");
  fs::remove_all(work.path_of("job/scrf"));
  EXPECT_EQ(&resolve_task(context, "scrf"), &task);
  EXPECT_EQ(task.kv.find("k"), "1");
}

TEST(ResolveTask, DoesNotSeeADirectoryThatIsMadeLater) {
  const WorkPlace work;
  EvalContext context;
  const TaskDir& task = resolve_task(context, "scrf");
  work.write("job/scrf/.vorq.result.kv", "k=1\n");
  EXPECT_EQ(&resolve_task(context, "scrf"), &task);
  EXPECT_TRUE(pairs_of(task.kv).empty());
}

TEST(ResolveTask, GivesOneEntryForATextAndTheSameBetweenSpaces) {
  const WorkPlace work;
  EvalContext context;
  const TaskDir& task = resolve_task(context, "scrf");
  EXPECT_EQ(&resolve_task(context, " scrf\t\r\n"), &task);
  const TaskDir& here = resolve_task(context, "");
  EXPECT_EQ(&resolve_task(context, " \n "), &here);
}

TEST(ResolveTask, GivesAnEntryForEachSpelling) {
  const WorkPlace work;
  work.write("job/here/.vorq.result.kv", "k=v\n");
  EvalContext context;
  std::vector<const TaskDir*> entries;
  for (const char* const text : {"self", "Self", "current", ".", "", "here", "./here", "here/"}) {
    const TaskDir& task = resolve_task(context, text);
    EXPECT_EQ(task.name, text);
    EXPECT_EQ(task.kv.find("k"), "v");
    entries.push_back(&task);
  }
  std::ranges::sort(entries);
  EXPECT_EQ(std::ranges::adjacent_find(entries), entries.end());
}

TEST(ResolveTask, KeepsReferencesValidWhileItResolvesOthers) {
  const WorkPlace work;
  work.write("job/first/.vorq.result.kv", "k=first\n");
  work.write("job/first/a.xyz", one_atom("A"));
  std::vector<std::string> names;
  for (int i = 0; i < 1'000; ++i) {
    names.push_back("task" + std::to_string(i));
  }
  EvalContext context;
  const TaskDir& first = resolve_task(context, "first");
  for (const std::string& name : names) {
    resolve_task(context, name);
  }
  EXPECT_EQ(&resolve_task(context, "first"), &first);
  EXPECT_EQ(first.kv.find("k"), "first");
  EXPECT_EQ(only_symbol(first), "A");
}

TEST(ResolveTask, DoesNotCountATaskAsUsed) {
  const WorkPlace work;
  EvalContext context;
  resolve_task(context, "scrf");
  EXPECT_TRUE(context.used_tasks().empty());
}

}  // namespace
}  // namespace vqvec
