#include "output/geometry_outputs.hpp"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "dsl/lexical.hpp"
#include "output/number_format.hpp"
#include "output/text_file.hpp"

namespace vqvec {
namespace {

// The text of the task that supplies the geometry.
std::string_view choose_geometry_task(const std::string& geom_path, const EvalContext& context) {
  const std::string_view named = trim(geom_path);
  const std::string word = to_lower(named);
  if (!word.empty() && word != "first" && word != "auto") {
    return named;
  }
  return context.used_tasks().empty() ? "." : context.used_tasks().front();
}

const Geometry& find_geometry(const std::string& geom_path, EvalContext& context) {
  const TaskDir& task = resolve_task(context, choose_geometry_task(geom_path, context));
  if (task.atoms.empty()) {
    throw std::runtime_error(
        "cannot write atom vector geometry output: no geometry file found in task directory " +
        task.dir());
  }
  return task.atoms;
}

void require_equal_counts(const std::string& kind, const Geometry& geometry,
                          const AtomVector& result) {
  if (geometry.size() != result.size()) {
    throw std::runtime_error("cannot write " + kind + ": geometry atom count " +
                             std::to_string(geometry.size()) + " does not match vector length " +
                             std::to_string(result.size()));
  }
}

// The property name without the bytes that would break the header of an extended-XYZ file.
std::string extxyz_label(std::string_view target) {
  std::string label(target);
  const auto breaks_header = [](char c) { return c == ':' || c == '=' || is_space(c); };
  std::replace_if(label.begin(), label.end(), breaks_header, '_');
  return label;
}

std::string extxyz_text(std::string_view target, const Geometry& geometry,
                        const AtomVector& result) {
  constexpr std::size_t usual_line = 72;
  std::string text = std::to_string(result.size()) + "\n";
  text.reserve(result.size() * usual_line);
  text += "Properties=species:S:1:pos:R:3:" + extxyz_label(target) + ":R:1 generated_by=vqvec\n";
  for (std::size_t i = 0; i < result.size(); ++i) {
    const GeomAtom atom = geometry[i];
    text += atom.symbol;
    for (const double coordinate : {atom.x, atom.y, atom.z}) {
      text += ' ';
      append_fixed10(text, coordinate);
    }
    text += ' ';
    append_value15(text, result[i]);
    text += '\n';
  }
  return text;
}

// Pads with spaces on the right or on the left; a longer field is not cut.
void append_left_aligned(std::string& text, std::string_view field, std::size_t width) {
  text += field;
  text.append(width - std::min(width, field.size()), ' ');
}
void append_right_aligned(std::string& text, std::string_view field, std::size_t width) {
  text.append(width - std::min(width, field.size()), ' ');
  text += field;
}

std::string chg_text(const Geometry& geometry, const AtomVector& result) {
  constexpr std::size_t symbol_width = 3;
  constexpr std::size_t coordinate_width = 16;
  std::string text;
  for (std::size_t i = 0; i < result.size(); ++i) {
    const GeomAtom atom = geometry[i];
    append_left_aligned(text, atom.symbol, symbol_width);
    for (const double coordinate : {atom.x, atom.y, atom.z}) {
      text += ' ';
      append_right_aligned(text, format_fixed10(coordinate), coordinate_width);
    }
    text += ' ';
    if (result[i] >= 0.0) {  // including -0, which gets a space and its sign
      text += ' ';
    }
    append_fixed10(text, result[i]);
    text += '\n';
  }
  return text;
}

}  // namespace

void write_geometry_outputs(const DslStatement& statement, const AtomVector& result,
                            EvalContext& context) {
  const Geometry& geometry = find_geometry(statement.geom_path, context);
  if (!statement.out_path.empty()) {
    require_equal_counts("extxyz", geometry, result);
    write_text_file(statement.out_path, extxyz_text(statement.target, geometry, result));
  }
  if (!statement.chg_path.empty()) {
    require_equal_counts("chg", geometry, result);
    write_text_file(statement.chg_path, chg_text(geometry, result));
  }
}

}  // namespace vqvec
