#include "taskstore/geometry_file.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "dsl/number.hpp"
#include "taskstore/field_reader.hpp"
#include "taskstore/line_reader.hpp"

namespace vqvec {
namespace {

// Nothing when the line does not begin with a symbol and three coordinates.
std::optional<GeomAtom> parse_atom_line(std::string_view line) {
  FieldReader fields(line);
  const std::string_view symbol = fields.read_word();
  const auto x = fields.read_number();
  const auto y = x ? fields.read_number() : std::nullopt;
  const auto z = y ? fields.read_number() : std::nullopt;
  if (!z) {
    return std::nullopt;
  }
  return GeomAtom{symbol, *x, *y, *z};
}

// How many atoms to make room for: a count is only a claim. Each atom takes 8 bytes of its file,
// and a file without data can be of any size.
std::size_t plausible_count(std::uint64_t count, std::uintmax_t file_size) {
  constexpr std::uintmax_t shortest_line = 8;
  constexpr std::uint64_t most = 4'000'000;
  return static_cast<std::size_t>(std::min({count, file_size / shortest_line, most}));
}

}  // namespace

std::vector<GeomAtom> read_xyz_geometry(const std::string& path) {
  constexpr std::size_t count_words = 1;
  constexpr std::size_t atom_words = 4;
  LineReader reader(path);
  std::string_view line;
  if (!reader.next_line_start(count_words, line)) {
    return {};
  }
  const std::uint64_t count = read_count(line).value_or(0);
  reader.skip_line();
  std::vector<GeomAtom> atoms;
  atoms.reserve(plausible_count(count, reader.file_size()));
  while (atoms.size() < count) {
    if (!reader.next_line_start(atom_words, line)) {
      return {};
    }
    const std::optional<GeomAtom> atom = parse_atom_line(line);
    if (!atom) {
      return {};
    }
    atoms.push_back(*atom);
  }
  return atoms;
}

}  // namespace vqvec
