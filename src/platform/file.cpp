#include "platform/file.hpp"

namespace vqvec {

File open_file(const std::string& path, const char* mode) {
  File file(std::fopen(path.c_str(), mode));
  if (file) {
    static_cast<void>(std::setvbuf(file.get(), nullptr, _IONBF, 0));
  }
  return file;
}

}  // namespace vqvec
