// References to per-atom properties: `task:prop` and `task.atoms[].prop`.
#ifndef VQVEC_DSL_REFERENCE_HPP
#define VQVEC_DSL_REFERENCE_HPP

#include <string>
#include <string_view>

namespace vqvec {

// Both are views of the text that was parsed.
struct AtomVecRef {
  std::string_view task;      // trimmed; a name, a path or a glob; may be empty
  std::string_view property;  // normalised, never empty

  bool operator==(const AtomVecRef&) const = default;
};

// The bare name of a property, as in the keys `atoms.N.<name>`: trimmed, without the prefixes
// "atoms[]." and "atoms." (one of each, in this order), without dots at either end. Fails with
// "atomvec target property cannot be empty" (also for the property of a reference) or, if the name
// contains '=' or white space, with "atomvec property contains an unsafe character: " + name.
std::string_view normalize_property_name(std::string_view text);
std::string_view normalize_property_name(const char* text);
std::string_view normalize_property_name(std::string&& text) = delete;

// Splits at the first ".atoms[]." or else at the first ':'. Fails with "empty atom vector
// reference", or with "atom vector reference must use task:prop or task.atoms[].prop: " + text.
AtomVecRef parse_atom_vec_ref(std::string_view text);
AtomVecRef parse_atom_vec_ref(const char* text);
AtomVecRef parse_atom_vec_ref(std::string&& text) = delete;

}  // namespace vqvec

#endif  // VQVEC_DSL_REFERENCE_HPP
