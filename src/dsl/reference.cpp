#include "dsl/reference.hpp"

#include <algorithm>
#include <stdexcept>

#include "dsl/lexical.hpp"

namespace vqvec {
namespace {

std::string_view without_prefix(std::string_view text, std::string_view prefix) {
  return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

std::string_view without_outer_dots(std::string_view text) {
  const auto first = text.find_first_not_of('.');
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of('.') - first + 1);
}

// Such a byte would break the line `atoms.N.<name>=value`, or be lost when the line is read back.
bool is_unsafe(char c) {
  return c == '=' || is_space(c);
}

}  // namespace

std::string_view normalize_property_name(std::string_view text) {
  const std::string_view name =
      without_outer_dots(without_prefix(without_prefix(trim(text), "atoms[]."), "atoms."));
  if (name.empty()) {
    throw std::runtime_error("atomvec target property cannot be empty");
  }
  if (std::any_of(name.begin(), name.end(), is_unsafe)) {
    throw std::runtime_error("atomvec property contains an unsafe character: " + std::string(name));
  }
  return name;
}

std::string_view normalize_property_name(const char* text) {
  return normalize_property_name(std::string_view(text));
}

AtomVecRef parse_atom_vec_ref(std::string_view text) {
  constexpr std::string_view atoms_mark = ".atoms[].";
  const std::string_view trimmed = trim(text);
  if (trimmed.empty()) {
    throw std::runtime_error("empty atom vector reference");
  }
  auto split = trimmed.find(atoms_mark);
  auto mark_length = atoms_mark.size();
  if (split == std::string_view::npos) {
    split = trimmed.find(':');
    mark_length = 1;
  }
  if (split == std::string_view::npos) {
    throw std::runtime_error("atom vector reference must use task:prop or task.atoms[].prop: " +
                             std::string(text));
  }
  return {trim(trimmed.substr(0, split)),
          normalize_property_name(trimmed.substr(split + mark_length))};
}

AtomVecRef parse_atom_vec_ref(const char* text) {
  return parse_atom_vec_ref(std::string_view(text));
}

}  // namespace vqvec
