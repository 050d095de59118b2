// Evaluation once more, by plain recursion over copies of the text: every rule in the place and
// order in which it is stated, nothing shared, nothing remembered. Only for small inputs.
#ifndef VQVEC_TESTS_REFERENCE_EVALUATION_HPP
#define VQVEC_TESTS_REFERENCE_EVALUATION_HPP

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tests/reference/files.hpp"
#include "tests/reference/lexing.hpp"

namespace vqvec::reference {

// Thrown by an evaluation that takes too long: repeated for every task of a glob at every level, it
// would never end. This is no standard exception, so that no rule catches it.
struct GaveUp {};

struct Task {
  std::string name;
  std::filesystem::path dir;
  KvMap kv;
  std::vector<Atom> atoms;
};

using Vector = std::vector<double>;

class Evaluation {
 public:
  const std::vector<std::string>& used_tasks() const { return used_; }

  Vector vector(const std::string& text) {
    spend();
    const std::string s = trim(text);
    const Call call = parse_function_call(s);
    if (call.name.empty()) {
      const Ref ref = parse_atom_vec_ref(unquote_argument(s));
      return load_vector(ref.task, ref.property);
    }
    const std::vector<std::string> a = split_call_arguments(call.argument_text);
    const std::string& f = call.name;
    const std::string label = f + "()";
    if (f == "mean" || f == "add") {
      require(!a.empty(), label + " expects at least one vector argument");
      return sum_or_mean(f, a);
    }
    if (f == "first" || f == "first_glob") {
      require(a.size() == 1, label + " expects one vector reference argument");
      const Ref ref = expand(a[0]).front();
      return load_vector(ref.task, ref.property);
    }
    if (f == "wmean" || f == "weighted_mean" || f == "wavg" || f == "wsum" || f == "weighted_sum") {
      require(a.size() == 2, label + " expects a vector glob and a weight key/expression");
      return weighted(f, a);
    }
    if (f == "sub") {
      require(a.size() == 2, "sub() expects exactly two vector arguments");
      const Vector first = vector(a[0]);
      const Vector second = vector(a[1]);
      require_equal_lengths(first, second, label);
      Vector difference;
      for (std::size_t i = 0; i < first.size(); ++i) {
        difference.push_back(first[i] - second[i]);
      }
      return difference;
    }
    if (f == "scale" || f == "mul") {
      require(a.size() == 2, label + " expects a vector and a scalar");
      Vector v = vector(a[0]);
      const double factor = scalar(a[1]);
      for (double& x : v) {
        x = x * factor;
      }
      return v;
    }
    if (f == "neg" || f == "abs") {
      require(a.size() == 1, label + " expects one vector argument");
      Vector v = vector(a[0]);
      for (double& x : v) {
        x = f == "neg" ? std::copysign(x, std::signbit(x) ? 1.0 : -1.0) : std::copysign(x, 1.0);
      }
      return v;
    }
    if (f == "clip") {
      require(a.size() == 3, "clip() expects a vector, min and max");
      Vector v = vector(a[0]);
      const double min = scalar(a[1]);
      const double max = scalar(a[2]);
      require(!(min > max), "clip() min cannot be greater than max");
      for (double& x : v) {
        const double y = (max > x) ? x : max;
        x = (y > min) ? y : min;
      }
      return v;
    }
    if (f == "renorm" || f == "renormalize") {
      require(a.size() == 2, label + " expects a vector and a target sum");
      const double target = scalar(a[1]);
      return renormalize(vector(a[0]), target);
    }
    throw std::runtime_error("unsupported atom vector function: " + f);
  }

  double scalar(const std::string& text) {
    spend();
    const std::string s = trim(text);
    require(!s.empty(), "empty scalar expression");
    if (read_number(s)) {
      return parse_finite_number(s, "scalar literal");
    }
    if (s.front() != '@') {
      const Call call = parse_function_call(s);
      require(call.name == "sum", "unsupported scalar expression: " + text);
      const std::vector<std::string> arguments = split_call_arguments(call.argument_text);
      require(arguments.size() == 1, "sum() expects one vector argument");
      return sum(vector(arguments[0]));
    }
    const std::string rest = s.substr(1);
    const auto dot = rest.find('.');
    const std::string task_text = dot == std::string::npos ? "." : rest.substr(0, dot);
    const std::string key = dot == std::string::npos ? rest : rest.substr(dot + 1);
    const KvMap& kv = resolve(task_text).kv;
    const auto found = kv.find(key);
    require(found != kv.end(), "task '" + task_text + "' does not contain scalar '" + key + "'");
    return parse_finite_number(found->second, s);
  }

  static Vector renormalize(Vector v, double target) {
    require(!v.empty(), "renorm() cannot operate on an empty vector");
    const double delta = (target - sum(v)) / static_cast<double>(v.size());
    for (double& x : v) {
      x = x + delta;
    }
    return v;
  }

  void check_same_atoms(std::size_t n) {
    const std::string failed = "same_atoms failed: ";
    const Task* reference = nullptr;
    for (const std::string& t : used_) {
      const Task& task = resolve(t);
      const std::uint64_t count = atom_count(task);
      require(count == 0 || count == n, failed + "task '" + t + "' has atom_count " +
                                            std::to_string(count) +
                                            " but output vector length is " + std::to_string(n));
      if (reference == nullptr) {
        reference = &task;
        continue;
      }
      const std::uint64_t a = atom_count(*reference);
      const std::string both = "'" + reference->name + "' and '" + task.name + "'";
      require(count == 0 || a == 0 || a == count, failed + "'" + reference->name + "' atom_count " +
                                                      std::to_string(a) + " != '" + task.name +
                                                      "' atom_count " + std::to_string(count));
      if (reference->atoms.empty() || task.atoms.empty()) {
        continue;
      }
      require(reference->atoms.size() == task.atoms.size(),
              failed + "geometry size mismatch between " + both);
      for (std::size_t i = 0; i < task.atoms.size(); ++i) {
        require(reference->atoms[i].symbol == task.atoms[i].symbol,
                failed + "atom " + std::to_string(i + 1) + " symbol mismatch between '" +
                    reference->name + "' (" + reference->atoms[i].symbol + ") and '" + task.name +
                    "' (" + task.atoms[i].symbol + ")");
      }
    }
  }

  const Task& choose_geometry(const std::string& geom_path) {
    std::string g = trim(geom_path);
    if (g.empty() || to_lower(g) == "first" || to_lower(g) == "auto") {
      g = used_.empty() ? "." : used_.front();
    }
    const Task& task = resolve(g);
    require(!task.atoms.empty(),
            "cannot write atom vector geometry output: no geometry file found in task directory " +
                task.dir.string());
    return task;
  }

 private:
  static constexpr int most_steps = 20'000;

  static void require(bool holds, const std::string& message) {
    if (!holds) {
      throw std::runtime_error(message);
    }
  }

  static void require_equal_lengths(const Vector& sum, const Vector& next,
                                    const std::string& label) {
    require(sum.size() == next.size(),
            label + " requires equal vector lengths: " + std::to_string(sum.size()) + " vs " +
                std::to_string(next.size()));
  }

  static double sum(const Vector& v) {
    double total = 0.0;
    for (const double x : v) {
      total = total + x;
    }
    return total;
  }

  void spend() {
    if (++steps_ > most_steps) {
      throw GaveUp();
    }
  }

  void add(Vector& sum, const Vector& next, const std::string& label) {
    require_equal_lengths(sum, next, label);
    for (std::size_t i = 0; i < sum.size(); ++i) {
      sum[i] = sum[i] + next[i];
    }
  }

  Vector finish(const std::string& name, Vector sum, std::size_t count) {
    if (name == "mean") {
      for (double& x : sum) {
        x = x / static_cast<double>(count);
      }
    }
    return sum;
  }

  Vector sum_or_mean(const std::string& name, const std::vector<std::string>& arguments) {
    const std::string label = name + "()";
    if (arguments.size() == 1) {
      try {
        const std::vector<Ref> refs = expand(arguments[0]);
        require(!refs.empty(), label + " has no atom vectors after glob expansion");
        Vector sum = load_vector(refs[0].task, refs[0].property);
        for (std::size_t i = 1; i < refs.size(); ++i) {
          add(sum, load_vector(refs[i].task, refs[i].property), label);
        }
        return finish(name, std::move(sum), refs.size());
      } catch (const std::exception&) {
        if (unquote_argument(arguments[0]).find_first_of("*?") != std::string::npos) {
          throw;
        }
      }
    }
    Vector sum = vector(arguments[0]);
    for (std::size_t i = 1; i < arguments.size(); ++i) {
      add(sum, vector(arguments[i]), label);
    }
    return finish(name, std::move(sum), arguments.size());
  }

  double weight(const std::string& text, const std::string& task, const std::string& label) {
    if (read_number(text)) {
      return parse_finite_number(text, label + " scalar literal");
    }
    if (text.front() != '@') {
      return text.find_first_of(" \t\r\n():,+*/") == std::string::npos
                 ? load_scalar(task, text, label)
                 : scalar(text);
    }
    const std::string rest = text.substr(1);
    return rest.find('.') == std::string::npos ? load_scalar(task, rest, label) : scalar(text);
  }

  Vector weighted(const std::string& name, const std::vector<std::string>& arguments) {
    const std::string label = name + "()";
    const std::vector<Ref> refs = expand(arguments[0]);
    require(!refs.empty(), label + " has no atom vectors after glob expansion");
    double total = 0.0;
    Vector sum;
    bool is_first = true;
    for (const Ref& ref : refs) {
      const std::string weight_text = unquote_argument(arguments[1]);
      require(!weight_text.empty(), label + " cannot use an empty weight expression");
      const double w = weight(weight_text, ref.task, label);
      require(is_finite(w), label + " got a non-finite weight for task '" + ref.task + "'");
      const Vector v = load_vector(ref.task, ref.property);
      if (is_first) {
        sum = Vector(v.size(), 0.0);
        is_first = false;
      }
      require_equal_lengths(sum, v, label);
      for (std::size_t i = 0; i < v.size(); ++i) {
        const double product = v[i] * w;
        sum[i] = product + sum[i];
      }
      total = total + w;
    }
    if (name == "wsum" || name == "weighted_sum") {
      return sum;
    }
    require(total != 0.0 && is_finite(total),
            label + " cannot normalize zero/non-finite total weight");
    for (double& x : sum) {
      x = x / total;
    }
    return sum;
  }

  Vector load_vector(const std::string& task_text, const std::string& property) {
    spend();
    const Task& task = resolve(task_text);
    if (std::find(used_.begin(), used_.end(), task_text) == used_.end()) {
      used_.push_back(task_text);
    }
    Vector v;
    for (;;) {
      const std::string n = std::to_string(v.size() + 1);
      const auto found = task.kv.find("atoms." + n + "." + property);
      if (found == task.kv.end()) {
        break;
      }
      v.push_back(parse_finite_number(found->second, task_text + ":" + property + " atom " + n));
    }
    require(!v.empty(), "task '" + task_text + "' does not contain atom vector '" + property + "'");
    const std::uint64_t count = atom_count(task);
    require(count == 0 || count == v.size(),
            "task '" + task_text + "' vector '" + property + "' length " +
                std::to_string(v.size()) + " does not match atom_count " + std::to_string(count));
    return v;
  }

  double load_scalar(const std::string& task_text, const std::string& key,
                     const std::string& label) {
    require(!trim(key).empty(), label + " scalar key cannot be empty");
    const Task& task = resolve(task_text);
    const auto found = task.kv.find(key);
    require(found != task.kv.end(),
            "task '" + task_text + "' does not contain scalar '" + key + "' for " + label);
    return parse_finite_number(found->second, label + " " + task_text + "." + key);
  }

  static std::uint64_t atom_count(const Task& task) {
    for (const char* const key : {"atom_count", "geometry.atom_count"}) {
      const auto found = task.kv.find(key);
      if (found != task.kv.end()) {
        const std::uint64_t count = read_count(trim(found->second)).value_or(0);
        if (count != 0) {
          return count;
        }
      }
    }
    return task.atoms.size();
  }

  static std::string read_file(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  const Task& resolve(const std::string& text) {
    namespace fs = std::filesystem;
    const std::string t = trim(text);
    const auto cached = tasks_.find(t);
    if (cached != tasks_.end()) {
      return cached->second;
    }
    spend();
    std::error_code ignored;
    const fs::path cwd = fs::current_path();
    const std::string word = to_lower(t);
    Task task;
    task.name = t;
    if (t.empty() || t == "." || word == "self" || word == "current") {
      task.dir = cwd;
    } else if (fs::is_directory(cwd.parent_path() / t, ignored)) {
      task.dir = cwd.parent_path() / t;
    } else if (fs::is_directory(cwd / t, ignored)) {
      task.dir = cwd / t;
    } else if (fs::is_directory(fs::path(t), ignored)) {
      task.dir = t;
    } else {
      task.dir = cwd.parent_path() / t;
    }
    for (const char* const name : {".vorq.result.kv", ".vorq.values.kv", ".vorq.dbcollect.user.kv",
                                   ".vorq.values.user.kv"}) {
      if (fs::is_regular_file(task.dir / name, ignored)) {
        merge_kv_text(task.kv, read_file(task.dir / name));
      }
    }
    task.atoms = find_geometry(task.dir);
    return tasks_.emplace(t, std::move(task)).first->second;
  }

  static std::vector<Atom> find_geometry(const std::filesystem::path& dir) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (!fs::is_directory(dir, ignored)) {
      return {};
    }
    std::set<std::string> preferred;
    std::set<std::string> ordinary;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir, ignored)) {
      if (!fs::is_regular_file(entry.path(), ignored)) {
        continue;
      }
      const std::string name = entry.path().filename().string();
      const std::string extension = to_lower(fs::path(name).extension().string());
      if (begins_with(name, "last_") && extension == ".xyz") {
        preferred.insert(name);
      } else if (extension == ".xyz" || extension == ".extxyz") {
        ordinary.insert(name);
      }
    }
    for (const auto& names : {preferred, ordinary}) {
      for (const std::string& name : names) {
        std::vector<Atom> atoms = read_xyz_text(read_file(dir / name));
        if (!atoms.empty()) {
          return atoms;
        }
      }
    }
    return {};
  }

  std::vector<Ref> expand(const std::string& pattern_text) {
    namespace fs = std::filesystem;
    const Ref ref = parse_atom_vec_ref(unquote_argument(pattern_text));
    const std::string t = trim(ref.task);
    if (t.find('*') == std::string::npos && t.find('?') == std::string::npos) {
      return {{t, ref.property}};
    }
    spend();
    const fs::path p(t);
    const bool is_bare = p.parent_path().empty();
    std::vector<fs::path> roots = {p.parent_path()};
    if (is_bare) {
      roots = {fs::current_path().parent_path(), fs::current_path()};
    }
    const std::string name_pattern = is_bare ? t : p.filename().string();
    std::set<std::string> seen;
    std::vector<std::string> found;
    for (const fs::path& root : roots) {
      std::error_code ignored;
      if (root.empty() || !fs::is_directory(root, ignored)) {
        continue;
      }
      for (const fs::directory_entry& entry : fs::directory_iterator(root, ignored)) {
        if (!entry.is_directory()) {
          continue;
        }
        const std::string name = entry.path().filename().string();
        long steps = 100'000;
        const bool matches = wildcard_match(name_pattern, 0, name, 0, steps);
        if (steps < 0) {
          throw GaveUp();
        }
        if (matches && seen.insert(fs::absolute(entry.path()).lexically_normal().string()).second) {
          found.push_back(is_bare ? name : entry.path().string());
        }
      }
    }
    require(!found.empty(), "atomvec glob pattern matched no task directories: " + ref.task);
    std::sort(found.begin(), found.end());
    std::vector<Ref> refs;
    for (const std::string& task : found) {
      refs.push_back({task, ref.property});
    }
    return refs;
  }

  std::map<std::string, Task> tasks_;
  std::vector<std::string> used_;
  int steps_ = 0;
};

}  // namespace vqvec::reference

#endif  // VQVEC_TESTS_REFERENCE_EVALUATION_HPP
