// A whole statement over a small tree of tasks, from its text to the bytes written: against plain
// recursion over the rules.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dsl/number.hpp"
#include "dsl/statement.hpp"
#include "eval/scalar_expression.hpp"
#include "eval/vector_expression.hpp"
#include "eval/vector_functions.hpp"
#include "output/geometry_outputs.hpp"
#include "output/kv_outputs.hpp"
#include "output/same_atoms_check.hpp"
#include "output/text_file.hpp"
#include "taskstore/kv_file.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/fuzz/require.hpp"
#include "tests/reference/evaluation.hpp"
#include "tests/reference/print.hpp"
#include "tests/reference/statement.hpp"
#include "tests/support/kv_pairs.hpp"
#include "tests/support/same_number.hpp"
#include "tests/support/scratch_dir.hpp"
#include "tests/support/task_tree.hpp"

namespace vqvec {
namespace {

using reference::print;

// The tasks that statements can name. They are some levels down, so that a statement can go up
// without leaving the tree.
class Tasks {
 public:
  Tasks() {
    const std::string water = "3\n\nO 0 0 0.1173\nH 0 0.7572 -0.4692\nH 0 -0.7572 -0.4692\n";
    const std::string charges = "atoms.1.q=-0.834\natoms.2.q=0.417\natoms.3.q=0.417\n";
    put("a/.vorq.result.kv", charges + "charge=0\nweight=1\natom_count=3\n");
    put("a/last_opt.xyz", water);
    put("b/.vorq.result.kv", "atoms.1.q= -0.5\natoms.2.q=0.25\natoms.3.q=+0.25\nw.x=2\n");
    put("b/b.extxyz", water);
    put("d/.vorq.result.kv", charges + "atoms.4.q=1\n");
    put("d/d.xyz", "4\n\nO 0 0 0\nH 1 0 0\nH 0 1 0\nCl 1e1 1 1\n");
    put("e/.vorq.result.kv", charges);
    put("e/last_bad.xyz", "3\n\nO 0 0 x\n");
    put("e/e.XYZ", "3\n\nO 0 0 0\nH 1 0 0\nCl 0 1 0 9.9\n");
    put("h/.vorq.result.kv", "atoms.1.q=1e308\natoms.2.q=1e308\nweight=1e308\natom_count=5\n");
    put("k/.vorq.result.kv", "atoms.1.q=1e308\natoms.2.q=-1e308\natoms.1.r=0\nweight=1e308\n");
    put("i/.vorq.result.kv", "atoms.1.q=1\natoms.2.q=nan\nweight=inf\ncharge=\natom_count=x\n");
    for (const std::string number : {"1", "2", "10"}) {
      const std::string task = "t" + number + "/";
      put(task + ".vorq.result.kv", charges + "weight=0." + number + "\nzero=0\n");
      put(task + ".vorq.values.kv", "atoms.1.q=" + number + "\natoms.1.q2.x=-0\n");
      put(task + ".vorq.dbcollect.user.kv", "charge=" + number + "\n");
      put(task + ".vorq.values.user.kv", "geometry.atom_count= 3 \n");
    }
    put("t3", "a plain file");
    put("work/.vorq.result.kv", charges + "charge=-1\nweight=3\natoms.1.r=5e-324\n");
    put("work/geometry.xyz", water);
    put("work/t5/.vorq.result.kv", charges + "weight=-1\n");
    put("work/a/.vorq.result.kv", "never=seen\n");
    put("work/loops/u1/.vorq.result.kv", charges);
    tree_.add_link(tasks_ / "t4", "t1");
    tree_.add_link(tasks_ / "t6", "nowhere");
    tree_.add_link(tasks_ / "work/loops/v2", "v2");
  }

  // A file for output, where no statement finds it.
  std::string output_path(const std::string& name) const { return tree_.path_of(name).string(); }

 private:
  void put(const std::string& name, const std::string& bytes) const {
    tree_.write(tasks_ / name, bytes);
  }

  const std::filesystem::path tasks_ = "x/y/tasks";
  const TaskTree tree_ = TaskTree(tasks_ / "work");
};

// Whether a statement looks at nothing but the tree, which alone stays as it is: no absolute path,
// and not too far up. There may be quotes and backslashes between any two bytes of a path.
bool stays_in_tree(std::string text) {
  std::erase_if(text, [](char c) { return c == '\'' || c == '"' || c == '\\'; });
  std::size_t steps_up = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    constexpr std::string_view not_in_a_path = "@:(,=/ \t\n\v\f\r";
    const bool begins_path = i == 0 || not_in_a_path.find(text[i - 1]) != std::string_view::npos;
    if (text[i] == '\0' || (text[i] == '/' && begins_path)) {
      return false;
    }
    steps_up += text.compare(i, 2, "..") == 0 ? 1U : 0U;
  }
  return steps_up < 3;
}

// Everything that a run writes, as one text.

std::string values_lines(const std::string& target, const std::vector<double>& result) {
  std::string text;
  for (std::size_t i = 0; i < result.size(); ++i) {
    const std::string value = print("%.15g", result[i]);
    text += "atoms." + std::to_string(i + 1) + "." + target + "=" + value + "\n";
  }
  return text;
}

std::string geometry_files(const reference::Statement& statement, const reference::Vector& result,
                           const std::vector<reference::Atom>& atoms) {
  const auto require_count = [&](const std::string& kind) {
    if (atoms.size() != result.size()) {
      throw std::runtime_error("cannot write " + kind + ": geometry atom count " +
                               std::to_string(atoms.size()) + " does not match vector length " +
                               std::to_string(result.size()));
    }
  };
  std::string text;
  if (!statement.out_path.empty()) {
    require_count("extxyz");
    std::string label = statement.target;
    for (char& c : label) {
      c = c == ':' || c == '=' || reference::is_white(c) ? '_' : c;
    }
    text += std::to_string(result.size()) + "\nProperties=species:S:1:pos:R:3:" + label +
            ":R:1 generated_by=vqvec\n";
    for (std::size_t i = 0; i < result.size(); ++i) {
      text += atoms[i].symbol + " " + print("%.10f", atoms[i].x) + " " +
              print("%.10f", atoms[i].y) + " " + print("%.10f", atoms[i].z) + " " +
              print("%.15g", result[i]) + "\n";
    }
  }
  if (!statement.chg_path.empty()) {
    require_count("chg");
    for (std::size_t i = 0; i < result.size(); ++i) {
      text +=
          atoms[i].symbol + std::string(3 - std::min<std::size_t>(3, atoms[i].symbol.size()), ' ');
      text += " " + print("%16.10f", atoms[i].x) + " " + print("%16.10f", atoms[i].y) + " " +
              print("%16.10f", atoms[i].z) + " ";
      text += (result[i] >= 0.0 ? " " : "") + print("%.10f", result[i]) + "\n";
    }
  }
  return text;
}

std::string run_reference(const std::string& text) {
  const reference::Statement statement = reference::parse_statement(text);
  reference::Evaluation evaluation;
  reference::Vector result = evaluation.vector(statement.expression);
  if (!statement.sum_text.empty()) {
    const double total = evaluation.scalar(statement.sum_text);
    result = reference::Evaluation::renormalize(result, total);
  }
  for (std::size_t i = 0; i < statement.checks.size(); ++i) {
    evaluation.check_same_atoms(result.size());
  }
  std::string written = values_lines(statement.target, result);
  if (!statement.out_path.empty() || !statement.chg_path.empty()) {
    const reference::Task& task = evaluation.choose_geometry(statement.geom_path);
    written += geometry_files(statement, result, task.atoms);
  }
  for (const std::string& task : evaluation.used_tasks()) {
    written += "used [" + task + "]\n";
  }
  return written;
}

// A file of the result, read as that of a task, gives the doubles that its digits name.
void require_values_read_back(const Tasks& tasks, const std::string& target,
                              const AtomVector& result) {
  const std::string path = tasks.output_path("values.kv");
  write_text_file(path, values_text(target, result));
  const KvMap map = read_kv_file(path);
  for (std::size_t i = 0; i < result.size(); ++i) {
    const auto found = map.find("atoms." + std::to_string(i + 1) + "." + target);
    require(found.has_value(), "a written value that is not read back");
    require_equal(std::string(*found), print("%.15g", result[i]), "a value read back");
    const auto number = read_finite_number(*found);
    const double printed = std::strtod(print("%.15g", result[i]).c_str(), nullptr);
    require(number.has_value() == std::isfinite(printed), "whether a written value is a number");
    require(!number || is_same_number(*number, printed), "the number that was written");
  }
}

std::string run_program(const Tasks& tasks, const std::string& text) {
  DslStatement statement = parse_dsl_statement(text);
  // The files named by the statement could be anywhere.
  const std::string out_path = tasks.output_path("out.extxyz");
  const std::string chg_path = tasks.output_path("out.chg");
  statement.out_path = statement.out_path.empty() ? "" : out_path;
  statement.chg_path = statement.chg_path.empty() ? "" : chg_path;
  EvalContext context(needs_of(statement));
  AtomVector result = evaluate_vector_expression(statement.expression, context);
  if (!statement.sum_text.empty()) {
    const double total = evaluate_scalar_expression(statement.sum_text, context);
    result = renormalize_to_sum(std::move(result), total);
  }
  for (std::size_t i = 0; i < statement.checks.size(); ++i) {
    check_same_atoms(context, result.size());
  }
  require_values_read_back(tasks, statement.target, result);
  std::string written = values_text(statement.target, result);
  if (!statement.out_path.empty() || !statement.chg_path.empty()) {
    write_geometry_outputs(statement, result, context);
  }
  for (const std::string& path : {statement.out_path, statement.chg_path}) {
    if (!path.empty()) {
      std::ifstream file(path, std::ios::binary);
      written.append(std::istreambuf_iterator<char>(file), {});
    }
  }
  for (const std::string_view task : context.used_tasks()) {
    written += "used [" + std::string(task) + "]\n";
  }
  return written;
}

// Infinities and NaNs are printed as printf prints them, but which NaN a sum gives is up to the
// compiler, so its sign does not matter.
std::string without_nan_signs(std::string text) {
  for (auto found = text.find("-nan"); found != std::string::npos; found = text.find("-nan")) {
    text.erase(found, 1);
  }
  return text;
}

}  // namespace
}  // namespace vqvec

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const vqvec::Tasks tasks;
  constexpr std::size_t longest = 2048;
  const std::string text = vqvec::text_of(data, size);
  if (size > longest || !vqvec::stays_in_tree(text)) {
    return 0;
  }
  std::string expected;
  try {
    expected = vqvec::outcome_of([&] { return vqvec::run_reference(text); });
  } catch (const vqvec::reference::GaveUp&) {
    return 0;
  }
  const std::string outcome = vqvec::outcome_of([&] { return vqvec::run_program(tasks, text); });
  vqvec::require_equal(vqvec::without_nan_signs(outcome), vqvec::without_nan_signs(expected),
                       "a whole statement");
  return 0;
}
