#include "taskstore/kv_file.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/reference/files.hpp"
#include "tests/support/kv_pairs.hpp"
#include "tests/support/scratch_dir.hpp"

namespace vqvec {
namespace {

using std::string_literals::operator""s;

using Pairs = std::vector<std::pair<std::string, std::string>>;

struct ReadCase {
  const char* name;
  std::string text;  // the bytes of the file
  Pairs expected;
};
const std::vector<ReadCase> read_cases = {
    {"EmptyFile", "", {}},
    {"OneLine", "k=v\n", {{"k", "v"}}},
    {"NoFinalLineFeed", "a=1\nb=2", {{"a", "1"}, {"b", "2"}}},
    {"OneByteWithoutLineFeed", "=", {}},
    {"SeveralLines", "b=2\na=1\n", {{"a", "1"}, {"b", "2"}}},
    {"EmptyLinesAreSkipped", "\n\na=1\n\n\nb=2\n\n", {{"a", "1"}, {"b", "2"}}},
    {"LinesOfSpacesAreSkipped", "  \n\t\n \r\n\t \r \na=1\n", {{"a", "1"}}},
    {"EmptyValue", "key=\n", {{"key", ""}}},
    {"EmptyValueBecauseOfSpaces", "key=   \t\n", {{"key", ""}}},
    {"EmptyKeyIsSkipped", "=value\n", {}},
    {"BlankKeyIsSkipped", " \t =value\n", {}},
    {"OnlyEqualsSigns", "===\n", {}},
    {"NoEqualsSignIsSkipped", "a=1\nnonsense\nb=2\n", {{"a", "1"}, {"b", "2"}}},
    {"Comment", "# note=1\na=1\n", {{"a", "1"}}},
    {"CommentAfterSpaces", "   # note=1\n\t#x=2\n", {}},
    {"CommentWithoutSpace", "#k=v\n", {}},
    {"NoTrailingComment", "k=v # note\n", {{"k", "v # note"}}},
    {"HashInTheKey", "k#=v\na#b=c\n", {{"a#b", "c"}, {"k#", "v"}}},
    {"HashAsTheValue", "k=#1\n", {{"k", "#1"}}},
    {"EqualsSignsInTheValue", "k=a=b\nm==\n", {{"k", "a=b"}, {"m", "="}}},
    {"SpaceAfterEqualsIsData", "k = v\n", {{"k", " v"}}},
    {"AllSpacesAfterEqualsAreData", "k= \t\r v\n", {{"k", " \t\r v"}}},
    {"KeyIsTrimmed", " \tk\t = v\n", {{"k", " v"}}},
    {"CarriageReturnAroundKey", "\rk\r=v\n", {{"k", "v"}}},
    {"SpacesInsideAKeyStay", "a  b=1\n", {{"a  b", "1"}}},
    {"TrailingSpacesOfTheLineAreDropped", "k=v \t\r\n", {{"k", "v"}}},
    {"SpacesInsideAValueStay", "k=a \t b\n", {{"k", "a \t b"}}},
    {"PerAtomKey", "atoms.1.charge = 0.5\n", {{"atoms.1.charge", " 0.5"}}},
    {"LastLineWins", "k=1\nk=2\n", {{"k", "2"}}},
    {"LastLineWinsAlsoWhenEmpty", "k=1\nk=\n", {{"k", ""}}},
    {"LastLineOfAnAtomWins",
     "atoms.1.q=1\natoms.2.q=2\natoms.1.q=3\natoms.2.q=4\n",
     {{"atoms.1.q", "3"}, {"atoms.2.q", "4"}}},
    {"SameKeyThroughOtherSpaces", "k=1\n k =2\n", {{"k", "2"}}},
    {"SkippedLineDoesNotUnset", "k=1\nk\n#k=2\n", {{"k", "1"}}},
    {"CrLfLineEnds", "a=1\r\n\r\n# c\r\nb = 2\r\n", {{"a", "1"}, {"b", " 2"}}},
    {"CrLfWithoutTheLastLf", "a=1\r\nb=2\r", {{"a", "1"}, {"b", "2"}}},
    {"CarriageReturnAloneEndsNoLine", "a=1\rb=2\n", {{"a", "1\rb=2"}}},
    {"VerticalTabAndFormFeedStay", "\vk\f=\fv\v\n", {{"\vk\f", "\fv\v"}}},
    {"LineOfVerticalTab", "\v\n\f\n", {}},
    {"HashAfterVerticalTabIsNoComment", "\v#k=v\n", {{"\v#k", "v"}}},
    {"ByteOrderMarkBelongsToTheKey",
     "\xef\xbb\xbf"
     "a=1\nb=2\n",
     {{"b", "2"},
      {"\xef\xbb\xbf"
       "a",
       "1"}}},
    {"ByteOrderMarkBeforeAComment", "\xef\xbb\xbf# a=1\n", {{"\xef\xbb\xbf# a", "1"}}},
    {"Utf8PassesThrough", "名=電荷\n", {{"名", "電荷"}}},
    {"AnyBytesPassThrough", "\xff\xfe=\x80\n", {{"\xff\xfe", "\x80"}}},
    {"NoBreakSpaceIsNotTrimmed",
     "\xc2\xa0k\xc2\xa0=\xc2\xa0v\n",
     {{"\xc2\xa0k\xc2\xa0", "\xc2\xa0v"}}},
    {"NulInTheValue", "k=1\0002\n"s, {{"k", "1\0002"s}}},
    {"NulInTheKey", "a\0=1\n"s, {{"a\0"s, "1"}}},
    {"NulAsTheKey", "\0=1\n"s, {{"\0"s, "1"}}},
    {"NulIsNotTrimmed", " \0 \n\0k=v\0\n"s, {{"\0k"s, "v\0"s}}},
    {"QuotesAndBackslashesAreData", "k='a\\nb\"\n'q'=\\\n", {{"'q'", "\\"}, {"k", "'a\\nb\""}}},
    {"BackslashDoesNotJoinLines", "k=a\\\nb=c\n", {{"b", "c"}, {"k", "a\\"}}},
    {"KeysInOtherCasesAreApart", "K=1\nk=2\n", {{"K", "1"}, {"k", "2"}}},
    {"LongLine",
     std::string(40'000, 'k') + "=" + std::string(70'000, 'v') + "\nb=2\n",
     {{"b", "2"}, {std::string(40'000, 'k'), std::string(70'000, 'v')}}},
    {"LongLineOfSpaces", std::string(70'000, ' ') + "\nb=2\n", {{"b", "2"}}},
    {"SpacesAroundALongWay",
     std::string(40'000, ' ') + "k" + std::string(40'000, '\t') + "=v" + std::string(40'000, ' ') +
         "\nb=2\n",
     {{"b", "2"}, {"k", "v"}}},
};
class ReadKvFile : public testing::TestWithParam<ReadCase> {};

TEST_P(ReadKvFile, GivesExactlyThesePairs) {
  const ScratchDir dir;
  EXPECT_EQ(pairs_of(read_kv_file(dir.write("in.kv", GetParam().text))), GetParam().expected);
}

TEST_P(ReadKvFile, GivesTheSamePairsWithCrLfLineEnds) {
  std::string text;
  for (const char c : GetParam().text) {
    text += c == '\n' ? "\r\n"s : std::string(1, c);
  }
  const ScratchDir dir;
  EXPECT_EQ(pairs_of(read_kv_file(dir.write("in.kv", text))), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Lines, ReadKvFile, testing::ValuesIn(read_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ReadKvFileOf, ALineOfMegabytesGivesItWhole) {
  const std::string key(1'000'000, 'k');
  const std::string value(3'000'000, 'v');
  const ScratchDir dir;
  const std::string path = dir.write("in.kv", "a=1\n" + key + "=" + value + "\nz=2\n");
  EXPECT_EQ(pairs_of(read_kv_file(path)), (Pairs{{"a", "1"}, {key, value}, {"z", "2"}}));
}

// Files that are not there

TEST(ReadKvFileOf, AMissingFileGivesNothing) {
  const ScratchDir dir;
  EXPECT_EQ(pairs_of(read_kv_file(dir.path_of("none.kv"))), Pairs());
  EXPECT_EQ(pairs_of(read_kv_file(dir.path_of("none/none.kv"))), Pairs());
  EXPECT_EQ(pairs_of(read_kv_file("")), Pairs());
}

TEST(ReadKvFileOf, ADirectoryGivesNothing) {
  const ScratchDir dir;
  EXPECT_EQ(pairs_of(read_kv_file(dir.path().string())), Pairs());
}

TEST(ReadKvFileOf, ADanglingLinkGivesNothing) {
  const ScratchDir dir;
  std::filesystem::create_symlink("none", dir.path() / "link.kv");
  EXPECT_EQ(pairs_of(read_kv_file(dir.path_of("link.kv"))), Pairs());
}

TEST(ReadKvFileOf, ALinkToAFileGivesTheFile) {
  const ScratchDir dir;
  dir.write("file.kv", "k=v\n");
  std::filesystem::create_symlink("file.kv", dir.path() / "link.kv");
  EXPECT_EQ(pairs_of(read_kv_file(dir.path_of("link.kv"))), (Pairs{{"k", "v"}}));
}

TEST(ReadKvFileOf, ANameOutsideAsciiGivesTheFile) {
  const ScratchDir dir;
  EXPECT_EQ(pairs_of(read_kv_file(dir.write("電荷 é.kv", "k=v\n"))), (Pairs{{"k", "v"}}));
}

// Merging

struct MergeCase {
  const char* name;
  std::vector<std::string> files;  // merged in this order
  Pairs expected;
};
const std::vector<MergeCase> merge_cases = {
    {"LaterFileReplaces", {"charge=0\n", "charge=1\n"}, {{"charge", "1"}}},
    {"KeyOfTheFirstFileSurvives", {"a=1\nb=1\n", "b=2\n"}, {{"a", "1"}, {"b", "2"}}},
    {"LaterFileAddsKeys", {"a=1\n", "b=2\n"}, {{"a", "1"}, {"b", "2"}}},
    {"EmptyValueReplaces", {"a=1\n", "a=\n"}, {{"a", ""}}},
    {"LastLineOfTheLastFileWins", {"a=1\na=2\n", "a=3\na=4\n"}, {{"a", "4"}}},
    {"EmptyFileChangesNothing", {"a=1\n", ""}, {{"a", "1"}}},
    {"MalformedFileChangesNothing", {"a=1\n", "a\n=a\n#a=2\n"}, {{"a", "1"}}},
    {"AtomsOfSeveralFiles",
     {"atoms.1.q=1\natoms.2.q=2\natoms.3.q=3\n", "atoms.2.q=20\natoms.4.q=40\n"},
     {{"atoms.1.q", "1"}, {"atoms.2.q", "20"}, {"atoms.3.q", "3"}, {"atoms.4.q", "40"}}},
    {"FourFiles",
     {"a=1\nb=1\nc=1\nd=1\n", "b=2\nc=2\nd=2\n", "c=3\nd=3\n", "d=4\n"},
     {{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4"}}},
};
class MergeKvFiles : public testing::TestWithParam<MergeCase> {};

TEST_P(MergeKvFiles, LetsTheLaterFileWin) {
  const ScratchDir dir;
  KvMap merged;
  for (const std::string& text : GetParam().files) {
    merge_kv_file(merged, dir.write("in.kv", text));
  }
  EXPECT_EQ(pairs_of(merged), GetParam().expected);
}
INSTANTIATE_TEST_SUITE_P(Files, MergeKvFiles, testing::ValuesIn(merge_cases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(MergeKvFile, LeavesTheMapWhenTheFileIsMissing) {
  const ScratchDir dir;
  KvMap merged;
  merged.assign("k", "v");
  merge_kv_file(merged, dir.path_of("none.kv"));
  EXPECT_EQ(pairs_of(merged), (Pairs{{"k", "v"}}));
}

// Against the plain rules

Pairs plain_read(const std::string& bytes) {
  reference::KvMap pairs;
  reference::merge_kv_text(pairs, bytes);
  return {pairs.begin(), pairs.end()};
}

std::string random_file(std::mt19937_64& random) {
  static const std::vector<std::string> pieces = {
      "\n",     "\n",       "\n",       "\r\n",      "=",   "=",         "=",  " ",    "\t",
      "\r",     "\v",       "\f",       "#",         "\0"s, "0",         "1",  "23",   "a",
      "b",      "K",        "-",        ".",         "\"",  "'",         "\\", "\xff", "名",
      "atoms.", "atoms.1.", "atoms.2.", "atoms.3.q", "q",   "atoms.1.q="};
  std::string bytes;
  for (auto length = random() % 60; length > 0; --length) {
    bytes += pieces[random() % pieces.size()];
  }
  return bytes;
}

TEST(RandomKvFiles, AreReadByThePlainRules) {
  std::mt19937_64 random(271828);
  const ScratchDir dir;
  std::size_t pairs_read = 0;
  for (int i = 0; i < 6'000; ++i) {
    const std::string bytes = random_file(random);
    const Pairs expected = plain_read(bytes);
    ASSERT_EQ(pairs_of(read_kv_file(dir.write("in.kv", bytes))), expected)
        << "file [" << bytes << "]";
    pairs_read += expected.size();
  }
  EXPECT_GT(pairs_read, 6'000U);  // the files are worth the comparison
}

TEST(RandomKvFiles, AreReadByThePlainRulesWhenTheyAreLong) {
  std::mt19937_64 random(314159);
  const ScratchDir dir;
  for (int i = 0; i < 60; ++i) {
    std::string bytes;
    while (bytes.size() < 120'000) {
      bytes += random_file(random);
      if (random() % 100 == 0) {
        bytes.append(random() % 40'000, "= x"[random() % 3]);
      }
    }
    ASSERT_EQ(pairs_of(read_kv_file(dir.write("in.kv", bytes))), plain_read(bytes)) << "file " << i;
  }
}

TEST(RandomKvFiles, MergeAsOneFileAfterTheOther) {
  std::mt19937_64 random(161803);
  const ScratchDir dir;
  for (int i = 0; i < 1'000; ++i) {
    const std::string first = random_file(random);
    const std::string second = random_file(random);
    KvMap merged = read_kv_file(dir.write("first.kv", first));
    merge_kv_file(merged, dir.write("second.kv", second));
    ASSERT_EQ(pairs_of(merged), plain_read(first + "\n" + second))
        << "files [" << first << "] and [" << second << "]";
  }
}

}  // namespace
}  // namespace vqvec
