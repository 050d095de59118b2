// Preloaded into a dynamic build: makes one allocation of a run fail, or all from one on.
//
//   FAIL_AT=N      the N-th allocation fails (from 1; 0 or unset: none)
//   FAIL_ON=1      so do all after it
//   COUNT_TO=FILE  writes the number of allocations to FILE when the process ends
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

extern "C" {

// The C library's own functions, under names that stay available.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

}  // extern "C"

namespace {

unsigned long number_in(const char* variable) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? 0 : std::strtoul(text, nullptr, 10);
}

unsigned long allocations = 0;

bool fails() {
  static const unsigned long fail_at = number_in("FAIL_AT");
  static const bool fail_on = number_in("FAIL_ON") != 0;
  ++allocations;
  const bool is_failing =
      fail_at != 0 && (fail_on ? allocations >= fail_at : allocations == fail_at);
  if (is_failing) {
    errno = ENOMEM;
  }
  return is_failing;
}

__attribute__((destructor)) void write_count() {
  const char* const path = std::getenv("COUNT_TO");
  if (path == nullptr) {
    return;
  }
  const unsigned long count = allocations;
  std::FILE* const file = std::fopen(path, "w");
  if (file != nullptr) {
    std::fprintf(file, "%lu\n", count);
    std::fclose(file);
  }
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
  return fails() ? nullptr : __libc_realloc(block, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return fails() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}

}  // extern "C"
