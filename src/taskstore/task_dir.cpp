#include "taskstore/task_dir.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "dsl/lexical.hpp"
#include "taskstore/eval_context.hpp"
#include "taskstore/kv_file.hpp"
#include "taskstore/memory_failure.hpp"

namespace vqvec {
namespace {

namespace fs = std::filesystem;

// Merged in this order, so that the user's own values are the strongest.
constexpr std::string_view kv_file_names[] = {
    ".vorq.result.kv",
    ".vorq.values.kv",
    ".vorq.dbcollect.user.kv",
    ".vorq.values.user.kv",
};

bool names_working_directory(std::string_view name) {
  if (name.empty() || name == ".") {
    return true;
  }
  constexpr std::size_t longest_word = 7;
  const std::string word = name.size() <= longest_word ? to_lower(name) : std::string();
  return word == "self" || word == "current";
}

// What `base / name` of the file system library gives, without taking both apart: tasks come by the
// ten thousand.
std::string join(const std::string& base, std::string_view name) {
  if (base.empty() || name.starts_with('/')) {
    return std::string(name);
  }
  std::string path = base;
  path += base.ends_with('/') ? "" : "/";
  path += name;
  return path;
}

bool is_directory(const std::string& base, std::string_view name) {
  constexpr std::size_t longest_path = 4096;  // no system takes more, so it need not be asked
  if (base.size() + name.size() > longest_path) {
    return false;
  }
  std::error_code error;
  const bool is_there = fs::is_directory(join(base, name), error);
  require_memory(error);
  return is_there;
}

// Sets the base of a named task, and says whether the directory exists. Siblings of the working
// directory win over its children; a name that is nowhere stands for a sibling.
bool choose_base(TaskDir& task) {
  const fs::path working_directory = fs::current_path();
  if (names_working_directory(task.name)) {
    task.base = working_directory.string();
    return true;
  }
  const std::string siblings = working_directory.parent_path().string();
  for (const std::string& base : {siblings, working_directory.string(), std::string()}) {
    if (is_directory(base, task.name)) {
      task.base = base;
      return true;
    }
  }
  task.base = siblings;
  return false;
}

// Lower-cased, from the last dot on; none when the name begins with its only dot.
std::string extension_of(std::string_view name) {
  const auto dot = name.rfind('.');
  return dot == 0 || dot == std::string_view::npos ? std::string() : to_lower(name.substr(dot));
}

bool is_regular_file(const fs::directory_entry& entry) {
  std::error_code error;
  const bool is_file = entry.is_regular_file(error);
  require_memory(error);
  return is_file;
}

// The files that may hold the geometry, the best first. Only `.xyz` files can be preferred.
std::vector<std::string> list_geometry_files(const std::string& dir) {
  std::vector<std::string> preferred;
  std::vector<std::string> ordinary;
  std::error_code error;
  const fs::directory_iterator entries(dir, error);
  require_memory(error);  // else a directory that can't be listed has no geometry
  for (const fs::directory_entry& entry : entries) {
    const std::string& path = entry.path().native();
    const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
    const std::string extension = extension_of(name);
    if ((extension != ".xyz" && extension != ".extxyz") || !is_regular_file(entry)) {
      continue;
    }
    const bool is_preferred = extension == ".xyz" && name.starts_with("last_");
    (is_preferred ? preferred : ordinary).push_back(path);
  }
  std::sort(preferred.begin(), preferred.end());
  std::sort(ordinary.begin(), ordinary.end());
  preferred.insert(preferred.end(), ordinary.begin(), ordinary.end());
  return preferred;
}

std::vector<GeomAtom> read_first_geometry(const std::string& dir) {
  for (const std::string& path : list_geometry_files(dir)) {
    std::vector<GeomAtom> atoms = read_xyz_geometry(path);
    if (!atoms.empty()) {
      return atoms;
    }
  }
  return {};
}

void load(TaskDir& task) {
  if (choose_base(task)) {
    const std::string dir = task.dir();
    for (const std::string_view name : kv_file_names) {
      merge_kv_file(task.kv, dir + '/' + std::string(name));
    }
    task.atoms = read_first_geometry(dir);
  }
  task.loaded = true;
}

}  // namespace

std::string TaskDir::dir() const {
  return names_working_directory(name) ? base : join(base, name);
}

const TaskDir& resolve_task(EvalContext& context, std::string_view text) {
  const std::string_view name = trim(text);
  TaskDir& task = context.task(name);
  if (!task.loaded) {
    task = TaskDir{};  // whatever an earlier, failed attempt left
    task.name = name;
    load(task);
  }
  return task;
}

}  // namespace vqvec
