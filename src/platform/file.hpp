// Files without a buffer of their own: each call reads or writes what it is given at once.
#ifndef VQVEC_PLATFORM_FILE_HPP
#define VQVEC_PLATFORM_FILE_HPP

#include <cstdio>
#include <memory>
#include <string>

namespace vqvec {

struct CloseFile {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// The mode is one of fopen(). Null with errno set if the file can't be opened.
File open_file(const std::string& path, const char* mode);

}  // namespace vqvec

#endif  // VQVEC_PLATFORM_FILE_HPP
