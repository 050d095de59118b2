// Any bytes as a geometry file, against the stream operators, bit for bit.
#include <cstddef>
#include <string>
#include <vector>

#include "taskstore/geometry_file.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/fuzz/require.hpp"
#include "tests/reference/files.hpp"
#include "tests/support/same_number.hpp"
#include "tests/support/scratch_dir.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vqvec::is_same_number;
  using vqvec::require;
  static const vqvec::ScratchDir dir;
  const std::string content = vqvec::file_content_of(data, size);
  const vqvec::Geometry atoms = vqvec::read_xyz_geometry(dir.write("geometry.xyz", content));
  const std::vector<vqvec::reference::Atom> expected = vqvec::reference::read_xyz_text(content);
  require(atoms.size() == expected.size(), "number of atoms");
  for (std::size_t i = 0; i < atoms.size(); ++i) {
    vqvec::require_equal(std::string(atoms[i].symbol), expected[i].symbol, "symbol of an atom");
    require(is_same_number(atoms[i].x, expected[i].x) &&
                is_same_number(atoms[i].y, expected[i].y) &&
                is_same_number(atoms[i].z, expected[i].z),
            "position of an atom");
  }
  return 0;
}
