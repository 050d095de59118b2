#include "taskstore/memory_failure.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <system_error>

namespace vqvec {
namespace {

TEST(RequireMemory, ThrowsWhenMemoryWasWhatLacked) {
  EXPECT_THROW(require_memory(std::make_error_code(std::errc::not_enough_memory)), std::bad_alloc);
  EXPECT_THROW(require_memory(std::error_code(ENOMEM, std::generic_category())), std::bad_alloc);
  EXPECT_THROW(require_memory(std::error_code(ENOMEM, std::system_category())), std::bad_alloc);
}

TEST(RequireMemory, PassesEverythingElse) {
  EXPECT_NO_THROW(require_memory(std::error_code()));
  for (const int reason : {ENOENT, ENOTDIR, EACCES, ELOOP, ENAMETOOLONG, EMFILE, EIO}) {
    EXPECT_NO_THROW(require_memory(std::error_code(reason, std::generic_category())));
    EXPECT_NO_THROW(require_memory(std::error_code(reason, std::system_category())));
  }
}

}  // namespace
}  // namespace vqvec
