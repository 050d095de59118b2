#include "platform/path_text.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vqvec {
namespace {

struct PathCase {
  const char* name;
  std::string text;
  bool has_root;
};
const std::vector<PathCase> path_cases = {
    {"Empty", "", false},
    {"Name", "conf01", false},
    {"NameWithAnExtension", "water.xyz", false},
    {"Below", "calc/conf01", false},
    {"Above", "../calc", false},
    {"Absolute", "/calc/conf01", true},
    {"Root", "/", true},
    {"SlashesStay", "a//b/./c/", false},
    {"BackslashesStay", "a\\b", false},
    {"ADriveIsAName", "C:/calc", false},
    {"Utf8", "水/π", false},
    {"AnyBytes", "a\xff\x01\xc3/b", false},
};
class PathText : public testing::TestWithParam<PathCase> {};

TEST_P(PathText, NamesTheSamePath) {
  const std::filesystem::path path = to_path(GetParam().text);
  EXPECT_EQ(path.native(), GetParam().text);
  EXPECT_EQ(to_text(path), GetParam().text);
}

TEST_P(PathText, HasARootOrNot) {
  EXPECT_EQ(has_root(GetParam().text), GetParam().has_root);
}
INSTANTIATE_TEST_SUITE_P(Paths, PathText, testing::ValuesIn(path_cases),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace vqvec
