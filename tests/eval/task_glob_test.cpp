#include "eval/task_glob.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "tests/reference/lexing.hpp"
#include "tests/support/failure.hpp"
#include "tests/support/task_tree.hpp"
#include "tests/support/test_in_tree.hpp"

namespace vqvec {
namespace {

namespace fs = std::filesystem;
using std::string_literals::operator""s;
using Tasks = std::vector<std::string>;

// has_wildcard

TEST(HasWildcard, KnowsTwo) {
  EXPECT_TRUE(has_wildcard("*"));
  EXPECT_TRUE(has_wildcard("a?b"));
  EXPECT_TRUE(has_wildcard("neg(t*:q)"));
  EXPECT_FALSE(has_wildcard(""));
  EXPECT_FALSE(has_wildcard("[a-z]{1}+%#\\"));
}

// wildcard_match

struct MatchCase {
  const char* name;
  std::string pattern;
  std::string text;
  bool expected;
};
const std::vector<MatchCase> match_cases = {
    {"EmptyMatchesEmpty", "", "", true},
    {"EmptyMatchesNothingElse", "", "a", false},
    {"Same", "run1", "run1", true},
    {"Other", "run1", "run2", false},
    {"NameLonger", "run", "run1", false},
    {"NameShorter", "run1", "run", false},
    {"CaseMatters", "Run*", "run1", false},
    {"StarAlone", "*", "anything", true},
    {"StarMatchesEmptyName", "*", "", true},
    {"StarMatchesEmptyRun", "run*", "run", true},
    {"StarAtTheEnd", "run*", "run10", true},
    {"StarAtTheBeginning", "*1", "run1", true},
    {"StarInTheMiddle", "r*1", "run1", true},
    {"StarNeedsTheRest", "r*2", "run1", false},
    {"StarNeedsTheWholeRest", "*run", "run1", false},
    {"StarTriesAgain", "*ab", "aab", true},
    {"StarTakesTheLastChance", "*ab", "abab", true},
    {"StarPassesOverAnEarlierMatch", "*ab?", "abxabab", false},
    {"TwoStars", "*u*1", "run1", true},
    {"TwoStarsAndTooLittle", "*1*1", "run1", false},
    {"StarsInARow", "r***1", "run1", true},
    {"StarsInARowMatchEmptyRun", "**", "", true},
    {"QuestionMark", "r?n", "run", true},
    {"QuestionMarkNeedsAByte", "run?", "run", false},
    {"QuestionMarkOnEmptyName", "?", "", false},
    {"QuestionMarkTakesOneByte", "r?", "run", false},
    {"QuestionMarks", "???", "run", true},
    {"QuestionMarksTooMany", "????", "run", false},
    {"QuestionMarkAfterStar", "*?", "a", true},
    {"QuestionMarkAfterStarNeedsAByte", "*?", "", false},
    {"QuestionMarkBeforeStar", "?*", "a", true},
    {"StarQuestionStar", "*?*", "", false},
    {"QuestionMarkMatchesStar", "?", "*", true},
    {"StarMatchesStar", "a*", "a*b", true},
    {"HalfOfAUtf8CharacterIsNotEnough", "caf?", "caf\xc3\xa9", false},
    {"Utf8CharacterTakesItsBytes", "caf??", "caf\xc3\xa9", true},
    {"Utf8Literal", "*\xc3\xa9", "caf\xc3\xa9", true},
    {"HighBytesDiffer", "\xc3", "\xc4", false},
    {"BracketsAreOrdinary", "r[12]", "r1", false},
    {"BracketsMatchThemselves", "r[12]*", "r[12]x", true},
    {"BracesAreOrdinary", "{a,b}", "a", false},
    {"BracesMatchThemselves", "{a,b}", "{a,b}", true},
    {"BackslashIsOrdinary", "\\*", "\\anything", true},
    {"BackslashEscapesNothing", "\\*", "*", false},
    {"LeadingDotIsOrdinary", "*hidden", ".hidden", true},
    {"SlashIsOrdinary", "a*b", "a/b", true},
    {"NewlineIsOrdinary", "a?b*", "a\nb\n", true},
    {"NulIsOrdinary", "a\0*"s, "a\0b"s, true},
    {"NulDiffersFromEnd", "a", "a\0"s, false},
    {"ManyStarsReturnAtOnce", "*a*a*a*a*a*a*a*a*b", std::string(255, 'a'), false},
    {"ManyStarsThatMatch", "*a*a*a*a*a*a*a*a*b", std::string(255, 'a') + "b", true},
    {"ThousandsOfStars", std::string(5000, '*') + "b", std::string(5000, 'a'), false},
};
class WildcardMatch : public testing::TestWithParam<MatchCase> {};

TEST_P(WildcardMatch, IsOfTheWholeName) {
  EXPECT_EQ(wildcard_match(GetParam().pattern, GetParam().text), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Patterns, WildcardMatch, testing::ValuesIn(match_cases),
                         [](const auto& one) { return std::string(one.param.name); });

std::string random_text(std::mt19937_64& random, std::string_view alphabet, std::size_t limit) {
  std::string text;
  for (auto length = random() % limit; length > 0; --length) {
    text += alphabet[random() % alphabet.size()];
  }
  return text;
}

TEST(RandomPatterns, MatchAsWithBacktracking) {
  std::mt19937_64 random(22360679);
  int matches = 0;
  for (int i = 0; i < 200'000; ++i) {
    const std::string pattern = random_text(random, "aabb**?", 9);
    const std::string name = random_text(random, i % 8 == 0 ? "ab*?" : "aab", 10);
    long steps = 100'000;
    const bool expected = reference::wildcard_match(pattern, 0, name, 0, steps);
    ASSERT_GE(steps, 0);
    ASSERT_EQ(wildcard_match(pattern, name), expected) << "[" << pattern << "] [" << name << "]";
    matches += expected ? 1 : 0;
  }
  EXPECT_GT(matches, 20'000);  // the patterns are worth the comparison
}

// expand_task_glob

Tasks tasks_of(const std::vector<AtomVecRef>& refs) {
  Tasks tasks;
  for (const AtomVecRef& ref : refs) {
    tasks.emplace_back(ref.task);
  }
  return tasks;
}

Tasks expand(const std::string& pattern) {
  TextPool pool;
  return tasks_of(expand_task_glob(pattern, pool));
}

std::string failure_of_expanding(const std::string& pattern) {
  return failure_of([&] { expand(pattern); });
}

// The working directory is `run2`; all other names but those below it are its siblings.
class GlobTree : public TaskTree {
 public:
  GlobTree() : TaskTree("run2") {
    for (const char* name :
         {"run1", "run10", "Run3", ".run", "runA", "other/x1", "r[1]", "caf\xc3\xa9", "run2/runA",
          "run2/run_sub", "run2/.hid", "run2/calc/r1", "run2/calc/r2", "run2/calc/r10",
          "run2/calc/s", "run2/lit*/x1", "run2/literal/x2"}) {
      make(name);
    }
    write("run3", "a file");
    write("run2/run4", "a file");
    write("run2/calc/r9", "a file");
    add_link("run_link", "other");
    add_link("run_dangling", "nowhere");
    add_link("run_to_file", "run3");
    add_link("run2/calc/r3", "../../other");
  }
};

struct ExpandCase {
  const char* name;
  std::string pattern;
  Tasks expected;
};
const std::vector<ExpandCase> expand_cases = {
    // Bare patterns: siblings and children by name, in the order of their bytes
    {"SiblingsAndChildren",
     "run*:q",
     {"run1", "run10", "run2", "runA", "runA", "run_link", "run_sub"}},
    {"EveryDirectory",
     "*:q",
     {".hid", ".run", "Run3", "caf\xc3\xa9", "calc", "lit*", "literal", "other", "r[1]", "run1",
      "run10", "run2", "runA", "runA", "run_link", "run_sub"}},
    {"OneByteMore", "run?:q", {"run1", "run2", "runA", "runA"}},
    {"TwoBytesMore", "run??:q", {"run10"}},
    {"CaseMatters", "Run*:q", {"Run3"}},
    {"FirstByteOpen",
     "?un*:q",
     {"Run3", "run1", "run10", "run2", "runA", "runA", "run_link", "run_sub"}},
    {"Hidden", ".*:q", {".hid", ".run"}},
    {"HiddenByAnyFirstByte", "?run:q", {".run"}},
    {"StarsInARow", "**run1**:q", {"run1", "run10"}},
    {"BracketIsOrdinary", "r[1]*:q", {"r[1]"}},
    {"Utf8TakesItsBytes", "caf??:q", {"caf\xc3\xa9"}},
    {"Utf8InPattern", "*\xc3\xa9:q", {"caf\xc3\xa9"}},
    {"ChildOnly", "run_s*:q", {"run_sub"}},
    {"SiblingOnly", "oth*:q", {"other"}},
    {"LinkToDirectory", "run_l*:q", {"run_link"}},
    {"LiteralStarIsAWildcard", "lit*:q", {"lit*", "literal"}},
    // How the reference is written
    {"AtomsMark", "run1*.atoms[].q", {"run1", "run10"}},
    {"SpacesAround", " \trun1* : atoms.q \n", {"run1", "run10"}},
    {"SingleQuotes", "'run1*:q'", {"run1", "run10"}},
    {"DoubleQuotes", " \"run1*:q\" ", {"run1", "run10"}},
    {"SpacesInQuotes", "' run1* :q'", {"run1", "run10"}},
    {"EscapeInQuotes", R"("run1\*:q")", {"run1", "run10"}},
    // Patterns with a directory: paths as written
    {"OneByteBelow", "calc/r?:q", {"calc/r1", "calc/r2", "calc/r3"}},
    {"AnyBelow", "calc/r*:q", {"calc/r1", "calc/r10", "calc/r2", "calc/r3"}},
    {"TwoBytesBelow", "calc/r??:q", {"calc/r10"}},
    {"BelowDot", "./run*:q", {"./runA", "./run_sub"}},
    {"BelowParent", "../run1*:q", {"../run1", "../run10"}},
    {"WorkingDirectoryByItsPath", "../run?:q", {"../run1", "../run2", "../runA"}},
    {"BelowParentAndBack", "../run2/calc/s*:q", {"../run2/calc/s"}},
    {"BelowLink", "../run_link/x*:q", {"../run_link/x1"}},
    {"HiddenBelow", "./.*:q", {"./.hid"}},
    {"DirectoryPartIsLiteral", "lit*/x?:q", {"lit*/x1"}},
    // No wildcard in the task
    {"PlainReference", "run1:q", {"run1"}},
    {"PlainReferenceToNothing", " nope : q ", {"nope"}},
    {"PlainPath", "../nope/x:q", {"../nope/x"}},
    {"EmptyTask", ":q", {""}},
    {"NestedCall", "neg(run1:q)", {"neg(run1"}},
    {"BracketsOnly", "r[12]:q", {"r[12]"}},
};
class ExpandGlob : public TestInTree<GlobTree, ExpandCase> {};

TEST_P(ExpandGlob, GivesTheseTasks) {
  TextPool pool;
  const auto refs = expand_task_glob(GetParam().pattern, pool);
  EXPECT_EQ(tasks_of(refs), GetParam().expected);
  for (const AtomVecRef& ref : refs) {
    EXPECT_EQ(ref.property, GetParam().name == "NestedCall"s ? "q)" : "q");
  }
}
INSTANTIATE_TEST_SUITE_P(Patterns, ExpandGlob, testing::ValuesIn(expand_cases),
                         [](const auto& one) { return std::string(one.param.name); });

struct FailureCase {
  const char* name;
  std::string pattern;
  std::string message;
};
const std::string no_match = "atomvec glob pattern matched no task directories: ";

const std::vector<FailureCase> failure_cases = {
    {"NoSuchName", "zz*:q", no_match + "zz*"},
    {"TaskPartIsNamedTrimmed", " zz* : q ", no_match + "zz*"},
    {"TaskPartOfAtomsMark", "'zz?.atoms[].q'", no_match + "zz?"},
    {"FileOnly", "run3*:q", no_match + "run3*"},
    {"DanglingLinkOnly", "run_d*:q", no_match + "run_d*"},
    {"LinkToFileOnly", "run_t*:q", no_match + "run_t*"},
    {"OtherCase", "RUN*:q", no_match + "RUN*"},
    {"OneByteOfTwo", "caf?:q", no_match + "caf?"},
    {"DotAndParentAreNotListed", "?:q", no_match + "?"},
    {"LongerThanAnyName", "calc/r???:q", no_match + "calc/r???"},
    {"FileBelow", "calc/r9*:q", no_match + "calc/r9*"},
    {"WildcardInDirectoryPart", "r*/x:q", no_match + "r*/x"},
    {"WildcardInBothParts", "cal?/r*:q", no_match + "cal?/r*"},
    {"EmptyLastPart", "calc/*/:q", no_match + "calc/*/"},
    {"EmptyLastPartBelowLiteral", "lit*/:q", no_match + "lit*/"},
    {"MissingDirectory", "missing/r*:q", no_match + "missing/r*"},
    {"DirectoryIsAFile", "run4/r*:q", no_match + "run4/r*"},
    {"DirectoryIsALinkToAFile", "../run_to_file/r*:q", no_match + "../run_to_file/r*"},
    {"DirectoryIsADanglingLink", "../run_dangling/r*:q", no_match + "../run_dangling/r*"},
    {"NestedCall", "neg(run*:q)", no_match + "neg(run*"},
    {"MissingAbsoluteDirectory", "/no-such-directory-here/r*:q",
     no_match + "/no-such-directory-here/r*"},
    {"NoProperty", "run*", "atom vector reference must use task:prop or task.atoms[].prop: run*"},
    {"NoPropertyInQuotes", " ' run* ' ",
     "atom vector reference must use task:prop or task.atoms[].prop:  run* "},
    {"Empty", "", "empty atom vector reference"},
    {"EmptyQuotes", "''", "empty atom vector reference"},
    {"EmptyProperty", "run*:", "atomvec target property cannot be empty"},
    {"BadProperty", "run*:a b", "atomvec property contains an unsafe character: a b"},
};
class BadGlob : public TestInTree<GlobTree, FailureCase> {};

TEST_P(BadGlob, Fails) {
  EXPECT_EQ(failure_of_expanding(GetParam().pattern), GetParam().message);
}
INSTANTIATE_TEST_SUITE_P(Patterns, BadGlob, testing::ValuesIn(failure_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ExpandTaskGlob, GivesEveryMatchTheProperty) {
  const TaskTree tree;
  tree.make("t1");
  tree.make("t2");
  TextPool pool;
  EXPECT_EQ(expand_task_glob("t*:atoms[].q.x:y", pool),
            (std::vector<AtomVecRef>{{"t1", "q.x:y"}, {"t2", "q.x:y"}}));
}

TEST(ExpandTaskGlob, TakesWildcardsInThePropertyAsTheyAre) {
  const TaskTree tree;
  tree.make("t1");
  TextPool pool;
  EXPECT_EQ(expand_task_glob("t1:q*", pool), (std::vector<AtomVecRef>{{"t1", "q*"}}));
  EXPECT_EQ(expand_task_glob("C:/t?:q", pool), (std::vector<AtomVecRef>{{"C", "/t?:q"}}));
  EXPECT_EQ(expand_task_glob("t?:q?", pool), (std::vector<AtomVecRef>{{"t1", "q?"}}));
}

TEST(ExpandTaskGlob, ListsDirectoriesWithoutResultsToo) {
  const TaskTree tree;
  tree.add_task("t1", "q=1\n");
  tree.make("t2");
  EXPECT_EQ(expand("t*:q"), (Tasks{"t1", "t2"}));
}

TEST(ExpandTaskGlob, ListsTheWorkingDirectoryItself) {
  const TaskTree tree("run2");
  for (const char* name : {"run1", "run10", "other", "run2/run_sub"}) {
    tree.make(name);
  }
  EXPECT_EQ(expand("run*:q"), (Tasks{"run1", "run10", "run2", "run_sub"}));
}

TEST(ExpandTaskGlob, TakesAbsolutePatterns) {
  const TaskTree tree;
  tree.make("t2");
  tree.make("t1");
  EXPECT_EQ(expand(tree.path_of("t*:q").string()),
            (Tasks{tree.path_of("t1").string(), tree.path_of("t2").string()}));
}

TEST(ExpandTaskGlob, SortsManyNamesByTheirBytes) {
  const TaskTree tree;
  for (const char* name : {"t", "t-", "t1", "t10", "t2", "tA", "tZ", "t_", "ta", "t\xc3\xa9"}) {
    tree.make(name);
  }
  EXPECT_EQ(expand("t*:q"),
            (Tasks{"t", "t-", "t1", "t10", "t2", "tA", "tZ", "t_", "ta", "t\xc3\xa9"}));
}

TEST(ExpandTaskGlob, ListsALinkBesideItsDirectory) {
  const TaskTree tree;
  tree.make("t1");
  tree.add_link("t2", "t1");
  tree.add_link("t3", "t2");
  tree.add_link("t4", ".");
  EXPECT_EQ(expand("t*:q"), (Tasks{"t1", "t2", "t3", "t4"}));
}

TEST(ExpandTaskGlob, ListsSiblingAndChildOfOneNameTwice) {
  const TaskTree tree;
  tree.make("runA");
  tree.make("here/runA");
  EXPECT_EQ(expand("run*:q"), (Tasks{"runA", "runA"}));
}

TEST(ExpandTaskGlob, ListsEachMatchOnceInTheRootDirectory) {
  const WorkingDirectory root("/");
  const Tasks tasks = expand("et?:q");
  EXPECT_EQ(std::count(tasks.begin(), tasks.end(), "etc"), 1);
}

TEST(ExpandTaskGlob, LooksAfreshEachTime) {
  const TaskTree tree;
  tree.make("t1");
  TextPool pool;
  const auto before = expand_task_glob("t*:q", pool);
  tree.make("t2");
  const auto after = expand_task_glob("t*:q", pool);
  EXPECT_EQ(tasks_of(before), (Tasks{"t1"}));
  EXPECT_EQ(tasks_of(after), (Tasks{"t1", "t2"}));
}

TEST(ExpandTaskGlob, NeedsNoFileSystemWithoutWildcards) {
  const TaskTree tree;
  fs::remove(tree.path_of("here"));
  EXPECT_EQ(expand("t1:q"), (Tasks{"t1"}));
  EXPECT_THROW(expand("t*:q"), fs::filesystem_error);
}

TEST(ExpandTaskGlob, PassesOverADirectoryThatCannotBeRead) {
  const TaskTree tree;
  const fs::path locked = tree.path_of("locked");
  tree.make("locked/t1");
  fs::permissions(locked, fs::perms::none);
  const bool can_read_anything = access(locked.c_str(), R_OK) == 0;  // as root
  EXPECT_EQ(failure_of_expanding("../locked/t*:q"),
            can_read_anything ? "(no failure)" : no_match + "../locked/t*");
  fs::permissions(locked, fs::perms::owner_all);
  EXPECT_EQ(expand("../locked/t*:q"), (Tasks{"../locked/t1"}));
}

// The type of a link to itself cannot be found, and it is looked up before the name is compared.
struct LoopCase {
  const char* name;
  const char* loop;
  const char* pattern;
};
const std::vector<LoopCase> loop_cases = {
    {"SiblingThatMatches", "t2", "t*:q"},
    {"SiblingOfAnotherName", "loop", "t*:q"},
    {"Child", "here/t2", "t*:q"},
    {"ChildOfAnotherName", "here/loop", "t*:q"},
    {"BelowDirectory", "t1/loop", "../t1/x*:q"},
};
class LinkLoop : public testing::TestWithParam<LoopCase> {
 protected:
  LinkLoop() {
    tree_.make("t1/x1");
    tree_.add_link(GetParam().loop, fs::path(GetParam().loop).filename());
  }

 private:
  TaskTree tree_;
};

TEST_P(LinkLoop, FailsWithWhatTheSystemSays) {
  EXPECT_THROW(expand(GetParam().pattern), fs::filesystem_error);
  const auto error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  EXPECT_THAT(failure_of_expanding(GetParam().pattern), testing::HasSubstr(error.message()));
}
INSTANTIATE_TEST_SUITE_P(Links, LinkLoop, testing::ValuesIn(loop_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(LinkLoops, AreMetAmongTheSiblingsFirst) {
  const TaskTree tree;
  tree.add_link("here/loop", "loop");
  tree.add_link("loop", "loop");
  try {
    expand("t*:q");
    FAIL() << "no failure";
  } catch (const fs::filesystem_error& failure) {
    EXPECT_EQ(failure.path1(), tree.path_of("loop"));
  }
}

TEST(LinkLoopElsewhere, IsNotLookedAt) {
  const TaskTree tree;
  tree.make("t1/x1");
  tree.add_link("loop", "loop");
  EXPECT_EQ(expand("../t1/x*:q"), (Tasks{"../t1/x1"}));
  EXPECT_EQ(expand("loop:q"), (Tasks{"loop"}));
  EXPECT_EQ(failure_of_expanding("../loop/x*:q"), no_match + "../loop/x*");
}

}  // namespace
}  // namespace vqvec
