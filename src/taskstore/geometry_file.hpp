// Reading the atoms of an XYZ or extended-XYZ file: the first frame, by the plain XYZ rules. The
// second line and all columns after the positions are ignored.
#ifndef VQVEC_TASKSTORE_GEOMETRY_FILE_HPP
#define VQVEC_TASKSTORE_GEOMETRY_FILE_HPP

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vqvec {

struct GeomAtom {
  std::string_view symbol;  // first column as written, not checked against any table of elements
  double x = 0.0;           // position in the unit of the file, never converted
  double y = 0.0;
  double z = 0.0;

  bool operator==(const GeomAtom&) const = default;
};

// Positions are only kept for a run that writes them. They are checked in any case: a file with a
// bad one is not usable.
enum class Positions { kept, checked };

// A sequence of atoms. There may be millions, so each takes 32 bytes, or 8 without its position.
class Geometry {
 public:
  bool empty() const { return symbols_->texts.empty(); }
  std::size_t size() const { return symbols_->texts.size(); }
  bool has_positions() const { return !positions_.empty(); }

  // The symbol is valid until the next atom is added. The position must have been kept.
  GeomAtom operator[](std::size_t index) const;
  std::string_view symbol(std::size_t index) const;

  void reserve(std::size_t count, Positions positions);
  void push_back(const GeomAtom& atom);
  void push_back_symbol(std::string_view text);

  // Shares the symbols of the other geometry, until an atom is added, if they are the same. The
  // tasks of a run mostly have the same atoms; with 10,000 of them, this saves a fifth of the
  // memory.
  void share_symbols(const Geometry& other);
  bool shares_symbols(const Geometry& other) const { return symbols_ == other.symbols_; }

 private:
  static constexpr std::size_t longest_in_place = 7;

  // The text, or the index of a longer one.
  struct Symbol {
    std::array<unsigned char, longest_in_place> bytes;
    unsigned char size;  // of a text kept in place, or one more than any

    // Compilers make one comparison of this, but not of comparing bytes and size.
    bool operator==(const Symbol& other) const {
      return std::memcmp(this, &other, sizeof other) == 0;
    }
  };
  struct Symbols {
    std::vector<Symbol> texts;
    std::vector<std::string> long_texts;

    bool operator==(const Symbols&) const = default;
  };
  struct Position {
    double x;
    double y;
    double z;
  };

  Symbols& own_symbols() {
    if (symbols_.use_count() > 1) {
      copy_symbols();
    }
    return *symbols_;
  }
  void copy_symbols();

  std::shared_ptr<Symbols> symbols_ = std::make_shared<Symbols>();
  std::vector<Position> positions_;
};

// In the order of the file. Empty when the file holds no usable geometry for any reason: the caller
// goes on to its next candidate.
Geometry read_xyz_geometry(const std::string& path, Positions positions = Positions::kept);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_GEOMETRY_FILE_HPP
