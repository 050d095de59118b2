#include "taskstore/task_dir.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "dsl/lexical.hpp"
#include "taskstore/kv_file.hpp"
#include "taskstore/memory_failure.hpp"

namespace vqvec {
namespace {

namespace fs = std::filesystem;

// In the order of merging: the user's own values override all others.
constexpr std::string_view kv_file_names[] = {
    ".vorq.result.kv",
    ".vorq.values.kv",
    ".vorq.dbcollect.user.kv",
    ".vorq.values.user.kv",
};

bool is_working_directory_name(std::string_view name) {
  if (name.empty() || name == ".") {
    return true;
  }
  constexpr std::size_t longest_word = 7;
  const std::string word = name.size() <= longest_word ? to_lower(name) : std::string();
  return word == "self" || word == "current";
}

// The same as `base / name` with filesystem paths, without parsing both: there may be thousands of
// tasks.
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
  constexpr std::size_t longest_path = 4096;  // no system accepts more
  if (base.size() + name.size() > longest_path) {
    return false;
  }
  std::error_code error;
  const bool is_there = fs::is_directory(join(base, name), error);
  throw_if_out_of_memory(error);
  return is_there;
}

struct Place {
  std::string base;
  bool is_there;
};

// Siblings of the working directory win over its children; a name found nowhere resolves to the
// missing sibling.
Place find_place(std::string_view name) {
  const fs::path working_directory = fs::current_path();
  if (is_working_directory_name(name)) {
    return {working_directory.string(), true};
  }
  const std::string siblings = working_directory.parent_path().string();
  for (const std::string& base : {siblings, working_directory.string(), std::string()}) {
    if (is_directory(base, name)) {
      return {base, true};
    }
  }
  return {siblings, false};
}

// Lower-cased, from the last dot; none if that dot begins the name.
std::string extension_of(std::string_view name) {
  const auto dot = name.rfind('.');
  return dot == 0 || dot == std::string_view::npos ? std::string() : to_lower(name.substr(dot));
}

bool is_regular_file(const fs::directory_entry& entry) {
  std::error_code error;
  const bool is_file = entry.is_regular_file(error);
  throw_if_out_of_memory(error);
  return is_file;
}

// The files that may contain the geometry, in order of preference.
std::vector<std::string> list_geometry_files(const std::string& dir) {
  std::vector<std::string> preferred;
  std::vector<std::string> ordinary;
  std::error_code error;
  const fs::directory_iterator entries(dir, error);
  throw_if_out_of_memory(error);  // otherwise a directory that cannot be listed has no geometry
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

Geometry read_first_geometry(const std::string& dir) {
  for (const std::string& path : list_geometry_files(dir)) {
    Geometry atoms = read_xyz_geometry(path);
    if (!atoms.empty()) {
      return atoms;
    }
  }
  return {};
}

}  // namespace

std::string TaskDir::dir() const {
  return is_working_directory_name(name) ? base : join(base, name);
}

TaskDir read_task_dir(std::string_view name) {
  Place place = find_place(name);
  TaskDir task;
  task.name = name;
  task.base = std::move(place.base);
  if (place.is_there) {
    const std::string dir = task.dir();
    for (const std::string_view file_name : kv_file_names) {
      merge_kv_file(task.kv, dir + '/' + std::string(file_name));
    }
    task.atoms = read_first_geometry(dir);
  }
  return task;
}

}  // namespace vqvec
