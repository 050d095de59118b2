#include "taskstore/line_reader.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/ordinary_user.hpp"
#include "tests/support/peak_memory.hpp"
#include "tests/support/scratch_dir.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

using Lines = std::vector<std::string>;

// Every line of the file; tries once more after the end.
Lines lines_of(const std::string& path) {
  LineReader reader(path);
  Lines lines;
  std::string_view line;
  while (reader.next_line(line)) {
    lines.emplace_back(line);
  }
  EXPECT_FALSE(reader.next_line(line));
  return lines;
}

// Lines of small files

struct SmallCase {
  const char* name;
  std::string text;
  Lines expected;
};
const std::vector<SmallCase> small_cases = {
    {"EmptyFile", "", {}},
    {"OnlyALineFeed", "\n", {""}},
    {"TwoLineFeeds", "\n\n", {"", ""}},
    {"OneLine", "a\n", {"a"}},
    {"NoFinalLineFeed", "a\nb", {"a", "b"}},
    {"OneByte", "a", {"a"}},
    {"EmptyLineFirst", "\na\n", {"", "a"}},
    {"EmptyLineBetween", "a\n\nb\n", {"a", "", "b"}},
    {"CarriageReturnsStay", "a\r\nb\r\n\r", {"a\r", "b\r", "\r"}},
    {"OtherWhiteSpaceStays", " a\t\n\v\f\n", {" a\t", "\v\f"}},
    {"NulsStay", "a\0b\n\0\n"s, {"a\0b"s, "\0"s}},
    {"BytesAbove127Stay", "\xff\xfe\n\x80", {"\xff\xfe", "\x80"}},
};
class SmallFile : public testing::TestWithParam<SmallCase> {};

TEST_P(SmallFile, IsReadLineByLine) {
  const ScratchDir dir;
  EXPECT_EQ(lines_of(dir.write("in", GetParam().text)), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Files, SmallFile, testing::ValuesIn(small_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Lines around the sizes at which the reader's buffers end

class LineOfSize : public testing::TestWithParam<std::size_t> {
 protected:
  // Begins and ends with another byte than the rest, so that no byte can be lost unseen.
  std::string line() const {
    std::string bytes(GetParam(), 'x');
    if (!bytes.empty()) {
      bytes.back() = 'z';
      bytes.front() = 'a';
    }
    return bytes;
  }
};

TEST_P(LineOfSize, IsReadWhole) {
  const ScratchDir dir;
  EXPECT_EQ(lines_of(dir.write("in", line() + "\n")), Lines{line()});
}

TEST_P(LineOfSize, IsReadWholeWithoutALineFeed) {
  const ScratchDir dir;
  EXPECT_EQ(lines_of(dir.write("in", line())), line().empty() ? Lines() : Lines{line()});
}

TEST_P(LineOfSize, LeavesTheLinesAfterItWhole) {
  const ScratchDir dir;
  EXPECT_EQ(lines_of(dir.write("in", line() + "\nb\n\n" + line() + "\nc")),
            (Lines{line(), "b", "", line(), "c"}));
}

TEST_P(LineOfSize, FollowsOtherLines) {
  const ScratchDir dir;
  EXPECT_EQ(lines_of(dir.write("in", "short\n\n" + line() + "\n" + line() + "\n")),
            (Lines{"short", "", line(), line()}));
}

TEST_P(LineOfSize, IsPassedOver) {
  const ScratchDir dir;
  LineReader reader(dir.write("in", line() + "\nb\n" + line() + "\nc"));
  std::string_view text;
  ASSERT_TRUE(reader.next_line(text, 0));
  ASSERT_TRUE(reader.next_line(text));
  EXPECT_EQ(text, "b");
  ASSERT_TRUE(reader.next_line(text, 0));
  ASSERT_TRUE(reader.next_line(text));
  EXPECT_EQ(text, "c");
  EXPECT_FALSE(reader.next_line(text, 0));
  EXPECT_FALSE(reader.next_line(text));
}
INSTANTIATE_TEST_SUITE_P(Sizes, LineOfSize,
                         testing::Values(0, 1, 2, 16'383, 16'384, 16'385, 32'764, 32'765, 32'766,
                                         32'767, 32'768, 32'769, 32'770, 65'534, 65'535, 65'536,
                                         65'537, 98'303, 98'304, 98'305, 131'072, 1'000'000),
                         [](const auto& one) { return std::to_string(one.param); });

TEST(LineReader, KeepsOnlyTheBeginningOfALineTooLongForItsBuffer) {
  const ScratchDir dir;
  const std::string text = "first" + std::string(100'000, '.') + "last";
  LineReader reader(dir.write("in", text + "\n" + text + "\n" + text));
  std::string_view line;
  ASSERT_TRUE(reader.next_line(line, 6));
  EXPECT_EQ(line, "first.");
  ASSERT_TRUE(reader.next_line(line, 70'000));
  EXPECT_EQ(line, text.substr(0, 70'000));
  ASSERT_TRUE(reader.next_line(line, text.size()));
  EXPECT_EQ(line, text);
  EXPECT_FALSE(reader.next_line(line, 6));
}

TEST(LineReader, KnowsHowMuchItHasInItsBuffer) {
  const ScratchDir dir;
  LineReader reader(dir.write("in", "a\nbc\n\n"));
  EXPECT_EQ(reader.buffered_size(), 0U);
  std::string_view line;
  ASSERT_TRUE(reader.next_line(line));
  EXPECT_EQ(reader.buffered_size(), 4U);
  ASSERT_TRUE(reader.next_line(line));
  EXPECT_EQ(reader.buffered_size(), 1U);
  ASSERT_TRUE(reader.next_line(line));
  EXPECT_EQ(reader.buffered_size(), 0U);
}

// Files that have no lines

struct OddFile {
  const char* name;
  std::string (*make)(const ScratchDir& dir);
};
const std::vector<OddFile> odd_files = {
    {"Missing", [](const ScratchDir& dir) { return dir.path_of("none"); }},
    {"InAMissingDirectory", [](const ScratchDir& dir) { return dir.path_of("none/none"); }},
    {"BelowAFile", [](const ScratchDir& dir) { return dir.write("file", "text\n") + "/below"; }},
    {"EmptyPath", [](const ScratchDir&) { return ""s; }},
    {"Directory", [](const ScratchDir& dir) { return dir.path().string(); }},
    {"NullDevice", [](const ScratchDir&) { return "/dev/null"s; }},
    {"DanglingLink",
     [](const ScratchDir& dir) {
       std::filesystem::create_symlink("none", dir.path() / "link");
       return dir.path_of("link");
     }},
    {"LinkToItself",
     [](const ScratchDir& dir) {
       std::filesystem::create_symlink("link", dir.path() / "link");
       return dir.path_of("link");
     }},
    {"NameOf300Bytes", [](const ScratchDir& dir) { return dir.path_of(std::string(300, 'n')); }},
    {"PathOf5000Bytes",
     [](const ScratchDir& dir) {
       std::string path = dir.path().string();
       while (path.size() < 5'000) {
         path += "/.";
       }
       return path;
     }},
};
class FileWithoutLines : public testing::TestWithParam<OddFile> {};

TEST_P(FileWithoutLines, IsNoFailure) {
  const ScratchDir dir;
  const std::string path = GetParam().make(dir);
  EXPECT_EQ(lines_of(path), Lines());
  LineReader reader(path);
  EXPECT_EQ(reader.buffered_size(), 0U);
  std::string_view line;
  EXPECT_FALSE(reader.next_line(line, 0));
  EXPECT_FALSE(reader.next_line(line));
}
INSTANTIATE_TEST_SUITE_P(Files, FileWithoutLines, testing::ValuesIn(odd_files),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(LineReader, FindsNoLinesInAFileThatCannotBeOpened) {
  const ScratchDir dir;
  const std::string path = dir.write("in", "text\n");
  std::filesystem::permissions(dir.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(path, std::filesystem::perms::none);
  const OrdinaryUser user;
  if (!user.is_one()) {
    GTEST_SKIP() << "no ordinary user";
  }
  EXPECT_EQ(lines_of(path), Lines());
}

TEST(LineReader, FindsNoLinesInAFileThatCannotBeRead) {
  const std::string path = "/proc/self/mem";  // opens, but there is nothing at its beginning
  if (!std::filesystem::is_regular_file(path)) {
    GTEST_SKIP() << "no " << path << " here";
  }
  EXPECT_EQ(lines_of(path), Lines());
}

TEST(LineReader, FollowsALinkToAFile) {
  const ScratchDir dir;
  dir.write("file", "a\nb\n");
  std::filesystem::create_symlink("file", dir.path() / "link");
  EXPECT_EQ(lines_of(dir.path_of("link")), (Lines{"a", "b"}));
}

// Against a stream

TEST(LineReader, ReadsTheLinesThatAStreamReads) {
  std::mt19937_64 random(577215);
  const ScratchDir dir;
  for (int i = 0; i < 200; ++i) {
    std::string text;
    for (auto lines = random() % 40; lines > 0; --lines) {
      const std::size_t longest = random() % 8 == 0 ? 100'000 : 200;
      text.append(random() % longest, static_cast<char>('a' + random() % 26));
      text += lines == 1 && random() % 2 == 0 ? "" : "\n";
    }
    std::istringstream stream(text);
    Lines expected;
    for (std::string line; std::getline(stream, line);) {
      expected.push_back(line);
    }
    ASSERT_EQ(lines_of(dir.write("in", text)), expected) << "file " << i;
  }
}

// Memory

TEST(LineReader, NeedsNoMemoryForALineOfWhichNothingIsKept) {
  const ScratchDir dir;
  const std::string path = dir.write("in", "a\n");
  std::filesystem::resize_file(path, 100'000'000U);  // the second line, a hole of NULs
  std::ofstream(path, std::ios::binary | std::ios::app) << "\nc\n";
  const long before = peak_kilobytes();
  LineReader reader(path);
  std::string_view line;
  ASSERT_TRUE(reader.next_line(line));
  EXPECT_EQ(line, "a");
  ASSERT_TRUE(reader.next_line(line, 0));
  ASSERT_TRUE(reader.next_line(line));
  EXPECT_EQ(line, "c");
  EXPECT_LT(peak_kilobytes() - before, 20'000);
}

}  // namespace
}  // namespace vqvec
