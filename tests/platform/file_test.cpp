#include "platform/file.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "tests/support/scratch_dir.hpp"

namespace vqvec {
namespace {

TEST(OpenFile, GivesTheBytesOfTheFile) {
  const ScratchDir dir;
  const File file = open_file(dir.write("in", "one\r\ntwo\x1a"), "rb");
  ASSERT_TRUE(file);
  char bytes[32];
  EXPECT_EQ(std::string(bytes, std::fread(bytes, 1, sizeof bytes, file.get())), "one\r\ntwo\x1a");
}

TEST(OpenFile, WritesWithoutABuffer) {
  const ScratchDir dir;
  const File file = open_file(dir.path_of("out"), "wb");
  ASSERT_TRUE(file);
  ASSERT_EQ(std::fwrite("a\n", 1, 2, file.get()), 2U);
  EXPECT_EQ(dir.read("out"), "a\n");
}

TEST(OpenFile, GivesNothingForAMissingFile) {
  const ScratchDir dir;
  errno = 0;
  EXPECT_FALSE(open_file(dir.path_of("none"), "rb"));
  EXPECT_EQ(errno, ENOENT);
}

}  // namespace
}  // namespace vqvec
