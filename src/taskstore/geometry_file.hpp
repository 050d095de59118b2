// Reading the atoms of an XYZ or extended-XYZ file: the first frame, by the plain XYZ rules. The
// second line and whatever follows the position columns are never looked at.
#ifndef VQVEC_TASKSTORE_GEOMETRY_FILE_HPP
#define VQVEC_TASKSTORE_GEOMETRY_FILE_HPP

#include <string>
#include <vector>

#include "taskstore/symbol.hpp"

namespace vqvec {

struct GeomAtom {
  Symbol symbol;   // first column as written, not checked against any table of elements
  double x = 0.0;  // position in the unit of the file, never converted
  double y = 0.0;
  double z = 0.0;

  bool operator==(const GeomAtom&) const = default;
};

// In the order of the file. Empty when the file holds no usable geometry for any reason: the caller
// goes on to its next candidate.
std::vector<GeomAtom> read_xyz_geometry(const std::string& path);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_GEOMETRY_FILE_HPP
