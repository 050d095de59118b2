#include "taskstore/memory_failure.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace vqvec {
namespace {

TEST(ThrowIfOutOfMemory, ThrowsWhenMemoryRanOut) {
  EXPECT_THROW(throw_if_out_of_memory(std::make_error_code(std::errc::not_enough_memory)),
               std::bad_alloc);
  EXPECT_THROW(throw_if_out_of_memory(std::error_code(ENOMEM, std::generic_category())),
               std::bad_alloc);
  EXPECT_THROW(throw_if_out_of_memory(std::error_code(ENOMEM, std::system_category())),
               std::bad_alloc);
}

TEST(ThrowIfOutOfMemory, AcceptsEverythingElse) {
  EXPECT_NO_THROW(throw_if_out_of_memory(std::error_code()));
  for (const int reason : {ENOENT, ENOTDIR, EACCES, ELOOP, ENAMETOOLONG, EMFILE, EIO}) {
    EXPECT_NO_THROW(throw_if_out_of_memory(std::error_code(reason, std::generic_category())));
    EXPECT_NO_THROW(throw_if_out_of_memory(std::error_code(reason, std::system_category())));
  }
}

}  // namespace
}  // namespace vqvec
