#include "taskstore/geometry_file.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>

#include "dsl/number.hpp"
#include "platform/path_text.hpp"
#include "taskstore/field_reader.hpp"
#include "taskstore/line_reader.hpp"

namespace vqvec {
namespace {

// Bounds the memory for a line without end.
constexpr std::size_t longest_line = std::size_t{128} * 1024 * 1024;

// Adds the atom of a line. False when the line does not begin with a symbol and three coordinates.
bool add_atom(std::string_view line, Positions positions, Geometry& atoms) {
  FieldReader fields(line);
  const std::string_view symbol = fields.read_word();
  if (positions == Positions::kept) {
    const auto x = fields.read_number();
    const auto y = x ? fields.read_number() : std::nullopt;
    const auto z = y ? fields.read_number() : std::nullopt;
    if (!z) {
      return false;
    }
    atoms.push_back({symbol, *x, *y, *z});
  } else {
    if (!fields.skip_number() || !fields.skip_number() || !fields.skip_number()) {
      return false;
    }
    atoms.push_back_symbol(symbol);
  }
  const bool may_be_cut = line.size() == longest_line && fields.rest().empty();
  return !may_be_cut;
}

// An estimate of what is left to read. A small file is in the buffer, which spares a system call.
std::uintmax_t size_of_rest(const LineReader& reader, const std::string& path) {
  constexpr std::size_t largest_small_file = 16384;
  if (reader.buffered_size() < largest_small_file) {
    return reader.buffered_size();
  }
  std::error_code error;  // gives the largest number
  return std::filesystem::file_size(to_path(path), error);
}

// How many atoms to reserve memory for: the count is untrusted. Each atom takes at least 8 bytes of
// its file, and a file of holes can have any size.
std::size_t plausible_count(std::uint64_t count, std::uintmax_t file_size) {
  constexpr std::uintmax_t shortest_line = 8;
  constexpr std::uint64_t most = 4'000'000;
  return static_cast<std::size_t>(std::min({count, file_size / shortest_line, most}));
}

}  // namespace

GeomAtom Geometry::operator[](std::size_t index) const {
  const Position& position = positions_[index];
  return {symbol(index), position.x, position.y, position.z};
}

std::string_view Geometry::symbol(std::size_t index) const {
  const Symbol& symbol = symbols_->texts[index];
  if (symbol.size <= longest_in_place) {
    return {reinterpret_cast<const char*>(symbol.bytes.data()), symbol.size};
  }
  std::uint32_t place = 0;
  std::memcpy(&place, symbol.bytes.data(), sizeof place);
  return symbols_->long_texts[place];
}

void Geometry::reserve(std::size_t count, Positions positions) {
  own_symbols().texts.reserve(count);
  positions_.reserve(positions == Positions::kept ? count : 0);
}

void Geometry::push_back(const GeomAtom& atom) {
  push_back_symbol(atom.symbol);
  positions_.push_back({atom.x, atom.y, atom.z});
}

void Geometry::push_back_symbol(std::string_view text) {
  Symbols& symbols = own_symbols();
  Symbol& symbol = symbols.texts.emplace_back();
  if (text.size() <= longest_in_place) {
    std::copy(text.begin(), text.end(), symbol.bytes.begin());
    symbol.size = static_cast<unsigned char>(text.size());
    return;
  }
  const auto place = static_cast<std::uint32_t>(symbols.long_texts.size());
  symbols.long_texts.emplace_back(text);
  std::memcpy(symbol.bytes.data(), &place, sizeof place);
  symbol.size = longest_in_place + 1;
}

void Geometry::copy_symbols() {
  symbols_ = std::make_shared<Symbols>(*symbols_);
}

void Geometry::share_symbols(const Geometry& other) {
  if (*symbols_ == *other.symbols_) {
    symbols_ = other.symbols_;
  }
}

Geometry read_xyz_geometry(const std::string& path, Positions positions) {
  LineReader reader(path);
  std::string_view line;
  const bool has_count_line = reader.next_line(line, longest_line);
  if (!has_count_line || line.size() == longest_line) {  // the count may be cut
    return {};
  }
  const std::uint64_t count = read_count(line).value_or(0);
  if (!reader.next_line(line, 0)) {  // the comment
    return {};
  }
  Geometry atoms;
  atoms.reserve(plausible_count(count, size_of_rest(reader, path)), positions);
  while (atoms.size() < count) {
    if (!reader.next_line(line, longest_line) || !add_atom(line, positions, atoms)) {
      return {};
    }
  }
  return atoms;
}

}  // namespace vqvec
