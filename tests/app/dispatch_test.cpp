#include "app/dispatch.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/app/program_call.hpp"
#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

using Words = std::vector<std::string>;

struct DispatchCase {
  const char* name;
  Words words;
  Outcome expected;
};
const std::vector<DispatchCase> dispatch_cases = {
    {"NoProgramName", {}, {1, "", usage_of("vqvec"), ""}},
    {"NoArguments", {"vqvec"}, {1, "", usage_of("vqvec"), ""}},
    {"NoArgumentsOfAnotherName", {"./bin/av"}, {1, "", usage_of("./bin/av"), ""}},
    {"NoArgumentsOfAnEmptyName", {""}, {1, "", usage_of(""), ""}},
    {"ShortHelp", {"vqvec", "-h"}, {0, "", usage_of("vqvec"), ""}},
    {"LongHelp", {"vqvec", "--help"}, {0, "", usage_of("vqvec"), ""}},
    {"HelpOfAnotherName", {"/opt/vqvec", "--help"}, {0, "", usage_of("/opt/vqvec"), ""}},
    {"HelpBeforeAMode", {"vqvec", "--help", "atom", "--dsl"}, {0, "", usage_of("vqvec"), ""}},
    {"HelpBeforeAnUnknownMode", {"vqvec", "-h", "ATOM"}, {0, "", usage_of("vqvec"), ""}},
    {"ModeAlone", {"vqvec", "atom"}, {1, "", usage_of("vqvec"), ""}},
    {"ModeAloneOfAnotherName", {"av", "atom"}, {1, "", usage_of("av"), ""}},
    {"ModeAndShortHelp", {"vqvec", "atom", "-h"}, {0, "", usage_of("vqvec"), ""}},
    {"ModeAndLongHelp", {"vqvec", "atom", "--help"}, {0, "", usage_of("vqvec"), ""}},
    {"ModeFails", {"vqvec", "atom", "--dsl"}, {-1, "--dsl requires a value", "", ""}},
    {"ModeInCapitals",
     {"vqvec", "ATOM", "--dsl", "x = a:q"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: ATOM\n"}},
    {"ModeThatIsLonger",
     {"vqvec", "atoms"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: atoms\n"}},
    {"ModeThatIsShorter",
     {"vqvec", "ato"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: ato\n"}},
    {"ModeBetweenSpaces",
     {"vqvec", " atom "},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode:  atom \n"}},
    {"EmptyMode", {"vqvec", ""}, {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: \n"}},
    {"HelpInCapitals",
     {"vqvec", "--HELP"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: --HELP\n"}},
    {"HelpWithOneDash",
     {"vqvec", "-help"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: -help\n"}},
    {"HelpWithoutDashes",
     {"vqvec", "help"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: help\n"}},
    {"HelpAfterAnUnknownMode",
     {"vqvec", "bond", "--help"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: bond\n"}},
    {"VersionIsNoOption",
     {"vqvec", "--version"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: --version\n"}},
    {"StatementWithoutMode",
     {"vqvec", "--dsl", "x = a:q"},
     {1, "", usage_of("vqvec"), "错误: unknown vqvec mode: --dsl\n"}},
    {"ModeOfAnyBytes",
     {"av", "電荷\xff%s\n"},
     {1, "", usage_of("av"), "错误: unknown vqvec mode: 電荷\xff%s\n\n"}},
};
class Dispatch : public testing::TestWithParam<DispatchCase> {};

TEST_P(Dispatch, ChoosesByTheFirstArgument) {
  const WorkPlace work;
  EXPECT_EQ(call(dispatch, GetParam().words), GetParam().expected);
  EXPECT_TRUE(std::filesystem::is_empty(work.path_of("job/here")));
}
INSTANTIATE_TEST_SUITE_P(CommandLines, Dispatch, testing::ValuesIn(dispatch_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(DispatchToAtom, HandsOverTheWholeCommandLine) {
  const WorkPlace work;
  work.write("job/a/.vorq.result.kv", "atoms.1.q=0.5\n");
  const Outcome expected = {0, "", "atomvec wrote 1 atom values for 'x'\n", ""};
  EXPECT_EQ(call(dispatch, {"vqvec", "atom", "--dsl", "x = a:q"}), expected);
  EXPECT_EQ(work.read("job/here/.vorq.values.kv"), "atoms.1.x=0.5\n");
}

TEST(DispatchToAtom, LetsItsFailuresThrough) {
  const WorkPlace work;
  const Outcome expected = {-1, "task 'a' does not contain atom vector 'q'", "", ""};
  EXPECT_EQ(call(dispatch, {"vqvec", "atom", "--dsl", "x = a:q"}), expected);
}

}  // namespace
}  // namespace vqvec
