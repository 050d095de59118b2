#include "taskstore/task_dir.hpp"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <optional>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

#include "dsl/lexical.hpp"
#include "platform/path_text.hpp"
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
constexpr std::size_t preferred_geometry = std::size(kv_file_names);
constexpr std::size_t other_geometry = preferred_geometry + 1;

// A file of a task directory. Sorted by rank, key-value files are in the order of merging, and
// geometry files in the order of preference.
struct TaskFile {
  std::size_t rank;  // index in kv_file_names, or a geometry
  std::string path;

  bool operator<(const TaskFile& other) const {
    return std::tie(rank, path) < std::tie(other.rank, other.path);
  }
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
  if (base.empty() || has_root(name)) {
    return std::string(name);
  }
  std::string path = base;
  path += base.ends_with('/') ? "" : "/";
  path += name;
  return path;
}

// Lower-cased, from the last dot; none if that dot begins the name.
std::string extension_of(std::string_view name) {
  const auto dot = name.rfind('.');
  return dot == 0 || dot == std::string_view::npos ? std::string() : to_lower(name.substr(dot));
}

// Nothing for a file that a task is not read from. Only `.xyz` files can be preferred.
std::optional<std::size_t> rank_of(std::string_view name) {
  const auto kv_name = std::find(std::begin(kv_file_names), std::end(kv_file_names), name);
  if (kv_name != std::end(kv_file_names)) {
    return static_cast<std::size_t>(kv_name - std::begin(kv_file_names));
  }
  const std::string extension = extension_of(name);
  if (extension == ".xyz" && name.starts_with("last_")) {
    return preferred_geometry;
  }
  return extension == ".xyz" || extension == ".extxyz" ? std::optional(other_geometry)
                                                       : std::nullopt;
}

// The listing knows the type of most entries, so no further system call is needed.
std::vector<TaskFile> list_files(const fs::directory_iterator& entries) {
  std::vector<TaskFile> files;
  for (const fs::directory_entry& entry : entries) {
    std::string path = to_text(entry.path());
    const auto rank = rank_of(std::string_view(path).substr(path.rfind('/') + 1));
    std::error_code error;
    if (rank && entry.is_regular_file(error)) {
      files.push_back({*rank, std::move(path)});
    }
    throw_if_out_of_memory(error);
  }
  std::sort(files.begin(), files.end());
  return files;
}

// In a directory that cannot be listed, files are found by their names, and geometries not at all.
std::vector<TaskFile> find_kv_files(const std::string& dir) {
  std::vector<TaskFile> files;
  for (const std::string_view name : kv_file_names) {
    std::string path = join(dir, name);
    std::error_code error;
    if (fs::is_regular_file(to_path(path), error)) {
      files.push_back({files.size(), std::move(path)});
    }
    throw_if_out_of_memory(error);
  }
  return files;
}

// Nothing if there is no such directory, which opening it for the listing shows.
std::optional<std::vector<TaskFile>> find_files(const std::string& dir) {
  std::error_code error;
  const fs::directory_iterator entries(to_path(dir), error);
  throw_if_out_of_memory(error);
  if (!error) {
    return list_files(entries);
  }
  if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) {
    return std::nullopt;
  }
  const bool is_there = fs::is_directory(to_path(dir), error);
  throw_if_out_of_memory(error);
  return is_there ? std::optional(find_kv_files(dir)) : std::nullopt;
}

struct Place {
  std::string base;
  std::vector<TaskFile> files;
};

// Siblings of the working directory win over its children; a name found nowhere resolves to the
// missing sibling.
Place find_place(std::string_view name) {
  constexpr std::size_t longest_path = 4096;  // no system accepts more
  const fs::path working_directory = fs::current_path();
  const std::string here = to_text(working_directory);
  if (is_working_directory_name(name)) {
    return {here, find_files(here).value_or(std::vector<TaskFile>())};
  }
  const std::string bases[] = {to_text(working_directory.parent_path()), here, std::string()};
  for (const std::string& base : bases) {
    if (base.size() + name.size() > longest_path) {
      continue;
    }
    if (auto files = find_files(join(base, name))) {
      return {base, *std::move(files)};
    }
  }
  return {bases[0], {}};
}

}  // namespace

std::string TaskDir::dir() const {
  return is_working_directory_name(name) ? base : join(base, name);
}

TaskDir read_task_dir(std::string_view name, Positions positions, const PropertyFilter& keeps) {
  Place place = find_place(name);
  TaskDir task;
  task.name = name;
  task.base = std::move(place.base);
  task.kv = KvMap(keeps);
  for (const TaskFile& file : place.files) {
    if (file.rank < preferred_geometry) {
      merge_kv_file(task.kv, file.path);
    } else if (task.atoms.empty()) {
      task.atoms = read_xyz_geometry(file.path, positions);
    }
  }
  return task;
}

}  // namespace vqvec
