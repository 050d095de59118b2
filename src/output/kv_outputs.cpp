#include "output/kv_outputs.hpp"

#include <cstdlib>

#include "output/number_format.hpp"

namespace vqvec {
namespace {

void append_variable(std::string& text, const std::string& key, const char* variable) {
  const char* const value = std::getenv(variable);
  if (value != nullptr && *value != '\0') {
    text += key + "=" + value + "\n";
  }
}

}  // namespace

std::string values_text(std::string_view target, const AtomVector& result) {
  constexpr std::size_t longest_rest = 40;  // of most lines: "atoms.", an atom's number, a value
  std::string text;
  text.reserve(result.size() * (target.size() + longest_rest));
  for (std::size_t i = 0; i < result.size(); ++i) {
    text += "atoms.";
    text += std::to_string(i + 1);
    text += '.';
    text += target;
    text += '=';
    append_value15(text, result[i]);
    text += '\n';
  }
  return text;
}

std::string snapshot_text(std::size_t atom_count) {
  const std::string count = std::to_string(atom_count);
  std::string text =
      "# Vorquil lightweight result snapshot\n"
      "schema_version=1\n"
      "status=done\n";
  text += "atom_count=" + count + "\n";
  text += "geometry.atom_count=" + count + "\n";
  append_variable(text, "task_name", "VORQUIL_TASKNAME");
  append_variable(text, "input_name", "VORQUIL_INPUTNAME");
  append_variable(text, "struc_id", "VORQUIL_STRUCID");
  append_variable(text, "strucId", "VORQUIL_STRUCID");  // both spellings are in use
  return text;
}

}  // namespace vqvec
