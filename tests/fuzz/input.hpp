// The bytes that a fuzz target is given, as texts of the kinds that the program reads.
#ifndef VQVEC_TESTS_FUZZ_INPUT_HPP
#define VQVEC_TESTS_FUZZ_INPUT_HPP

#include <cstddef>
#include <cstdint>
#include <string>

namespace vqvec {

inline std::string text_of(const std::uint8_t* data, std::size_t size) {
  return {data, data + size};
}

// A file's content, long lines included, from a small input: the first two bytes name a length, and
// the bytes FC, FD and FE after them stand for runs of that many digits, spaces and letters.
inline std::string file_content_of(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t longest = std::size_t{1} << 17;
  if (size < 2) {
    return {};
  }
  const std::size_t run = 256 * std::size_t{data[0]} + data[1];
  std::string content;
  for (std::size_t i = 2; i < size && content.size() < longest; ++i) {
    switch (data[i]) {
      case 0xFC:
        content.append(run, '0');
        break;
      case 0xFD:
        content.append(run, ' ');
        break;
      case 0xFE:
        content.append(run, 'x');
        break;
      default:
        content += static_cast<char>(data[i]);
    }
  }
  return content;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_FUZZ_INPUT_HPP
