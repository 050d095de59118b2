#include "output/text_file.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <future>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

#include "tests/support/failure.hpp"
#include "tests/support/ordinary_user.hpp"
#include "tests/support/scratch_dir.hpp"

namespace vqvec {
namespace {

namespace fs = std::filesystem;

using std::string_literals::operator""s;

using Writer = void (*)(const std::string& path, std::string_view text);

// Texts

struct TextCase {
  const char* name;
  std::string before;
  std::string text;
};
const std::vector<TextCase> text_cases = {
    {"OneLine", "", "atoms.1.q=1\n"},
    {"EmptyText", "", ""},
    {"EmptyTextAfterAnother", "old\n", ""},
    {"AfterAnother", "old\n", "new\n"},
    {"ShorterThanBefore", "a long text that was there before\n", "new\n"},
    {"WithoutLineFeeds", "old", "new"},
    {"LineEndsAreNotTranslated", "old\r\n", "a\r\nb\nc\r"},
    {"AnyBytes", "\0\xff"s, "\0\x1a\xfe\xff電荷"s},
    {"LargerThanABuffer", std::string(10'000, 'o'), std::string(100'000, 'n')},
};
class WrittenText : public testing::TestWithParam<TextCase> {};

TEST_P(WrittenText, FollowsTheContentWhenItIsAppended) {
  const ScratchDir dir;
  append_text_file(dir.write("out.kv", GetParam().before), GetParam().text);
  EXPECT_EQ(dir.read("out.kv"), GetParam().before + GetParam().text);
}

TEST_P(WrittenText, TakesThePlaceOfTheContentOtherwise) {
  const ScratchDir dir;
  write_text_file(dir.write("out.kv", GetParam().before), GetParam().text);
  EXPECT_EQ(dir.read("out.kv"), GetParam().text);
}

TEST_P(WrittenText, MakesTheFile) {
  for (const Writer writer : {append_text_file, write_text_file}) {
    const ScratchDir dir;
    writer(dir.path_of("out.kv"), GetParam().text);
    EXPECT_EQ(dir.read("out.kv"), GetParam().text);
  }
}

TEST_P(WrittenText, MakesMissingParentDirectories) {
  for (const Writer writer : {append_text_file, write_text_file}) {
    const ScratchDir dir;
    writer(dir.path_of("out/sub/deep/v.kv"), GetParam().text);
    EXPECT_EQ(dir.read("out/sub/deep/v.kv"), GetParam().text);
  }
}
INSTANTIATE_TEST_SUITE_P(Texts, WrittenText, testing::ValuesIn(text_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(TextFile, MayHaveMegabytes) {
  const ScratchDir dir;
  const std::string text(5'000'000, 'x');
  write_text_file(dir.path_of("v.kv"), text);
  append_text_file(dir.path_of("v.kv"), text);
  EXPECT_EQ(dir.read("v.kv"), text + text);
}

TEST(AppendTextFile, PutsEveryTextAfterTheLast) {
  const ScratchDir dir;
  const std::string path = dir.path_of("v.kv");
  append_text_file(path, "atoms.1.q=1\natoms.2.q=2\n");
  append_text_file(path, "atoms.1.q=3\natoms.2.q=4\n");
  EXPECT_EQ(dir.read("v.kv"), "atoms.1.q=1\natoms.2.q=2\natoms.1.q=3\natoms.2.q=4\n");
}

TEST(WriteTextFile, LeavesOnlyTheLastText) {
  const ScratchDir dir;
  const std::string path = dir.path_of("s.kv");
  write_text_file(path, "a long first text\n");
  write_text_file(path, "last\n");
  EXPECT_EQ(dir.read("s.kv"), "last\n");
}

// Paths

TEST(TextFilePath, MayBeEmptyForNoFile) {
  const ScratchDir dir;
  const WorkingDirectory here(dir.path());
  append_text_file("", "text\n");
  write_text_file("", "text\n");
  EXPECT_TRUE(fs::is_empty(dir.path()));
}

struct PathCase {
  const char* name;
  std::string path;  // relative to the working directory, `here` below the test's own
  fs::path expected;
};
const std::vector<PathCase> path_cases = {
    {"BareName", "v.kv", "here/v.kv"},
    {"HiddenName", ".vorq.values.kv", "here/.vorq.values.kv"},
    {"InTheWorkingDirectory", "./v.kv", "here/v.kv"},
    {"InTheParent", "../v.kv", "v.kv"},
    {"InADirectoryThatIsThere", "there/v.kv", "here/there/v.kv"},
    {"InADirectoryThatIsNot", "not/there/v.kv", "here/not/there/v.kv"},
    {"DirectoryThatIsPartlyThere", "there/not/v.kv", "here/there/not/v.kv"},
    {"BesideTheWorkingDirectory", "../beside/v.kv", "beside/v.kv"},
    {"DoubleSlashes", "a//b///v.kv", "here/a/b/v.kv"},
    {"DotsOnTheWay", "./a/./b/../v.kv", "here/a/v.kv"},
    {"SpacesAreKept", " my values .kv ", "here/ my values .kv "},
    {"OutsideAscii", "電荷/é.kv", "here/電荷/é.kv"},
    {"AnyBytes", "\xff/\xfe.kv", "here/\xff/\xfe.kv"},
    {"NameLikeAnOption", "--out", "here/--out"},
    {"NameOf255Bytes", std::string(255, 'n'), "here/" + std::string(255, 'n')},
    {"ThroughALinkToADirectory", "link/v.kv", "here/there/v.kv"},
    {"BelowALinkToADirectory", "link/new/v.kv", "here/there/new/v.kv"},
};
class TextFilePath : public testing::TestWithParam<PathCase> {};

TEST_P(TextFilePath, NamesTheFile) {
  for (const Writer writer : {append_text_file, write_text_file}) {
    const ScratchDir dir;
    fs::create_directories(dir.path() / "here/there");
    fs::create_symlink("there", dir.path() / "here/link");
    const WorkingDirectory here(dir.path() / "here");
    writer(GetParam().path, "text\n");
    EXPECT_EQ(dir.read(GetParam().expected), "text\n");
  }
}
INSTANTIATE_TEST_SUITE_P(Paths, TextFilePath, testing::ValuesIn(path_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(TextFilePath, MayBeALinkToAFile) {
  const ScratchDir dir;
  dir.write("file.kv", "old\n");
  fs::create_symlink("file.kv", dir.path() / "link.kv");
  append_text_file(dir.path_of("link.kv"), "new\n");
  EXPECT_EQ(dir.read("file.kv"), "old\nnew\n");
  write_text_file(dir.path_of("link.kv"), "last\n");
  EXPECT_EQ(dir.read("file.kv"), "last\n");
  EXPECT_TRUE(fs::is_symlink(dir.path() / "link.kv"));
}

// Failures

struct FailureCase {
  const char* name;
  std::string path;  // relative to a directory that holds the file `file` and the directory `dir`
  std::string appending;
  std::string writing;
};
const std::vector<FailureCase> failure_cases = {
    {"Directory", "dir", "could not open file for appending: dir",
     "could not open file for writing: dir"},
    {"DirectoryWithASlash", "dir/", "could not open file for appending: dir/",
     "could not open file for writing: dir/"},
    {"WorkingDirectory", ".", "could not open file for appending: .",
     "could not open file for writing: ."},
    {"RootDirectory", "/", "could not open file for appending: /",
     "could not open file for writing: /"},
    {"NameThatIsTooLong", std::string(256, 'n'),
     "could not open file for appending: " + std::string(256, 'n'),
     "could not open file for writing: " + std::string(256, 'n')},
    {"FileWithASlash", "file/", "could not create parent directory for 'file/': Not a directory",
     "could not create parent directory for 'file/': Not a directory"},
    {"ParentIsAFile", "file/v.kv",
     "could not create parent directory for 'file/v.kv': Not a directory",
     "could not create parent directory for 'file/v.kv': Not a directory"},
    {"GrandparentIsAFile", "file/sub/v.kv",
     "could not create parent directory for 'file/sub/v.kv': Not a directory",
     "could not create parent directory for 'file/sub/v.kv': Not a directory"},
    {"ParentNameThatIsTooLong", std::string(256, 'p') + "/v.kv",
     "could not create parent directory for '" + std::string(256, 'p') +
         "/v.kv': File name too long",
     "could not create parent directory for '" + std::string(256, 'p') +
         "/v.kv': File name too long"},
    {"ParentIsALinkToItself", "loop/v.kv",
     "could not create parent directory for 'loop/v.kv': Too many levels of symbolic links",
     "could not create parent directory for 'loop/v.kv': Too many levels of symbolic links"},
    {"LinkToItself", "loop", "could not open file for appending: loop",
     "could not open file for writing: loop"},
    {"FullDevice", "/dev/full", "could not write file: /dev/full",
     "could not write file: /dev/full"},
};
class TextFileFailure : public testing::TestWithParam<FailureCase> {
 protected:
  TextFileFailure() {
    dir_.write("file", "old\n");
    fs::create_directory(dir_.path() / "dir");
    fs::create_symlink("loop", dir_.path() / "loop");
  }

  ScratchDir dir_;
  WorkingDirectory here_ = WorkingDirectory(dir_.path());
};

TEST_P(TextFileFailure, IsOneMessage) {
  const std::string& path = GetParam().path;
  for (const std::string& text : {"short\n"s, std::string(100'000, 'x')}) {
    EXPECT_EQ(failure_of([&] { append_text_file(path, text); }), GetParam().appending);
    EXPECT_EQ(failure_of([&] { write_text_file(path, text); }), GetParam().writing);
  }
  EXPECT_EQ(dir_.read("file"), "old\n");
}
INSTANTIATE_TEST_SUITE_P(Paths, TextFileFailure, testing::ValuesIn(failure_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(TextFile, OfNoTextIsWrittenToAFullDevice) {
  EXPECT_EQ(failure_of([] { append_text_file("/dev/full", ""); }), "(no failure)");
  EXPECT_EQ(failure_of([] { write_text_file("/dev/full", ""); }), "(no failure)");
}

TEST(TextFile, ThatMayNotBeWrittenIsAFailure) {
  const ScratchDir dir;
  fs::permissions(dir.path(), fs::perms(0755));
  const std::string path = dir.write("v.kv", "old\n");
  fs::permissions(path, fs::perms(0444));
  {
    const OrdinaryUser user;
    if (!user.is_one()) {
      GTEST_SKIP() << "no ordinary user";
    }
    EXPECT_EQ(failure_of([&] { append_text_file(path, "new\n"); }),
              "could not open file for appending: " + path);
    EXPECT_EQ(failure_of([&] { write_text_file(path, "new\n"); }),
              "could not open file for writing: " + path);
  }
  EXPECT_EQ(dir.read("v.kv"), "old\n");
}

TEST(TextFile, InADirectoryThatMayNotBeWrittenIsAFailure) {
  const ScratchDir dir;
  fs::permissions(dir.path(), fs::perms(0555));
  {
    const OrdinaryUser user;
    if (!user.is_one()) {
      GTEST_SKIP() << "no ordinary user";
    }
    const std::string path = dir.path_of("v.kv");
    EXPECT_EQ(failure_of([&] { append_text_file(path, "new\n"); }),
              "could not open file for appending: " + path);
    EXPECT_EQ(failure_of([&] { write_text_file(path, "new\n"); }),
              "could not open file for writing: " + path);
    const std::string below = dir.path_of("sub/v.kv");
    EXPECT_EQ(failure_of([&] { write_text_file(below, "new\n"); }),
              "could not create parent directory for '" + below + "': Permission denied");
  }
  fs::permissions(dir.path(), fs::perms(0755));
  EXPECT_TRUE(fs::is_empty(dir.path()));
}

// A limit on the size of every file, until the end of the scope. A write that would go beyond takes
// what there is room for; the next one fails.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_before_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit = {bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_before_);
  }

 private:
  void (*handler_before_)(int);
  rlimit before_ = {};
};

TEST(TextFile, ThatIsCutShortIsAFailure) {
  for (const Writer writer : {append_text_file, write_text_file}) {
    const ScratchDir dir;
    const std::string path = dir.path_of("v.kv");
    std::string failure;
    {
      const FileSizeLimit limit(1'000);
      failure = failure_of([&] { writer(path, std::string(3'000, 'x')); });
    }
    EXPECT_EQ(failure, "could not write file: " + path);
    EXPECT_EQ(dir.read("v.kv"), std::string(1'000, 'x'));
  }
}

// The descriptor, other than this one, by which the process has a file open; -1 when there is none.
int other_descriptor_of(const fs::path& file, int descriptor) {
  std::error_code ignored;
  for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd", ignored)) {
    const int other = std::stoi(entry.path().filename());
    if (other != descriptor && fs::read_symlink(entry, ignored) == file) {
      return other;
    }
  }
  return -1;
}

// Takes a text out of a FIFO. When it begins to come, the writer's descriptor is closed: the write
// goes on, but the writer's own close will fail. Nothing comes back if that can't be done.
std::string take_text_and_descriptor(const fs::path& fifo, int reader) {
  constexpr int patience = 10'000;  // milliseconds
  pollfd beginning = {reader, POLLIN, 0};
  if (poll(&beginning, 1, patience) != 1 || close(other_descriptor_of(fifo, reader)) != 0) {
    return "";
  }
  fcntl(reader, F_SETFL, 0);  // wait for the rest
  std::string text;
  char piece[10'000];
  for (auto size = read(reader, piece, sizeof piece); size > 0;
       size = read(reader, piece, sizeof piece)) {
    text.append(piece, static_cast<std::size_t>(size));
  }
  return text;
}

TEST(TextFile, ThatFailsOnlyWhenItIsClosedIsWritten) {
  const std::string text(1'000'000, 'x');  // more than a FIFO holds, so the write waits
  for (const Writer writer : {append_text_file, write_text_file}) {
    const ScratchDir dir;
    const std::string fifo = dir.path_of("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
    auto taken = std::async(std::launch::async, take_text_and_descriptor, fifo, reader);
    EXPECT_EQ(failure_of([&] { writer(fifo, text); }), "(no failure)");
    EXPECT_TRUE(taken.get() == text);
    close(reader);
  }
}

// Runs side by side

TEST(AppendTextFile, DoesNotTearTheLinesOfOtherWriters) {
  constexpr int texts_each = 40;
  const ScratchDir dir;
  const std::string path = dir.path_of("v.kv");
  std::vector<std::thread> writers;
  for (const char letter : {'a', 'b', 'c'}) {
    writers.emplace_back([&path, letter] {
      const std::string text = std::string(50'000, letter) + "\n";
      for (int i = 0; i < texts_each; ++i) {
        append_text_file(path, text);
      }
    });
  }
  for (std::thread& writer : writers) {
    writer.join();
  }
  const std::string content = dir.read("v.kv");
  ASSERT_EQ(content.size(), 3U * texts_each * 50'001U);
  for (std::size_t begin = 0; begin < content.size(); begin += 50'001) {
    ASSERT_EQ(content.substr(begin, 50'001), std::string(50'000, content[begin]) + "\n");
  }
}

}  // namespace
}  // namespace vqvec
