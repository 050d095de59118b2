// Runs a fuzz target over its committed corpus, without a fuzzer: what was found once is tried by
// every build.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// All files of a directory, or the one file named, in the order of their names.
std::vector<std::filesystem::path> list_inputs(const std::filesystem::path& path) {
  if (!std::filesystem::is_directory(path)) {
    return {path};
  }
  std::vector<std::filesystem::path> inputs;
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    inputs.push_back(std::filesystem::absolute(entry.path()));
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

int replay(const std::vector<std::filesystem::path>& inputs) {
  for (const std::filesystem::path& input : inputs) {
    std::ifstream file(input, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad()) {
      std::fprintf(stderr, "cannot read %s\n", input.c_str());
      return 1;
    }
    std::printf("%s, %zu bytes\n", input.filename().c_str(), bytes.size());
    std::fflush(stdout);  // if this one ends the process, its name is the last line
    const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(data.data(), data.size());
  }
  std::printf("%zu inputs\n", inputs.size());
  return inputs.empty() ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s <corpus directory or file>\n", argv[0]);
    return 1;
  }
  try {
    return replay(list_inputs(argv[1]));
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
