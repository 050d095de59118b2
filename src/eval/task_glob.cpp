#include "eval/task_glob.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "dsl/lexical.hpp"
#include "platform/path_text.hpp"
#include "taskstore/memory_failure.hpp"

namespace vqvec {
namespace {

namespace fs = std::filesystem;

struct SearchRoot {
  fs::path directory;
  bool keeps_path;  // matches are reported as paths below the root, otherwise by their bare names
};

// Each directory is searched once; at the root of the file system both roots are the same.
std::vector<SearchRoot> search_roots(const fs::path& pattern) {
  const fs::path working_directory = fs::current_path();
  if (pattern.has_parent_path()) {
    return {{pattern.parent_path(), true}};
  }
  const fs::path siblings = working_directory.parent_path();
  if (siblings == working_directory) {
    return {{working_directory, false}};
  }
  return {{siblings, false}, {working_directory, false}};
}

// Adds the matching directories below the root. A root that is missing or cannot be listed has
// none.
void search(const SearchRoot& root, const std::string& name_pattern,
            std::vector<std::string>& found) {
  std::error_code error;
  const fs::directory_iterator entries(root.directory, error);
  throw_if_out_of_memory(error);
  for (const fs::directory_entry& entry : entries) {
    if (!entry.is_directory()) {  // before the name: a link that cannot be examined is a failure
      continue;
    }
    const std::string name = to_text(entry.path().filename());
    if (wildcard_match(name_pattern, name)) {
      found.push_back(root.keeps_path ? to_text(entry.path()) : name);
    }
  }
}

std::vector<std::string> find_tasks(const fs::path& pattern) {
  std::vector<std::string> found;
  for (const SearchRoot& root : search_roots(pattern)) {
    search(root, to_text(pattern.filename()), found);
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

bool has_wildcard(std::string_view text) {
  return text.find('*') != std::string_view::npos || text.find('?') != std::string_view::npos;
}

// The latest '*' can match whatever an earlier one could, so only the latest is ever retried: the
// result of backtracking without its cost.
bool wildcard_match(std::string_view pattern, std::string_view name) {
  std::size_t in_pattern = 0;
  std::size_t in_name = 0;
  std::size_t after_star = std::string_view::npos;
  std::size_t star_end = 0;  // where in the name the latest '*' ends
  while (in_name < name.size()) {
    if (in_pattern < pattern.size() && pattern[in_pattern] == '*') {
      after_star = ++in_pattern;
      star_end = in_name;
    } else if (in_pattern < pattern.size() &&
               (pattern[in_pattern] == '?' || pattern[in_pattern] == name[in_name])) {
      ++in_pattern;
      ++in_name;
    } else if (after_star != std::string_view::npos) {
      in_pattern = after_star;
      in_name = ++star_end;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in_pattern) == std::string_view::npos;
}

std::vector<AtomVecRef> expand_task_glob(std::string_view pattern_text, TextPool& pool) {
  const AtomVecRef ref = parse_atom_vec_ref(unquote_argument(pattern_text, pool));
  if (!has_wildcard(ref.task)) {
    return {ref};
  }
  std::vector<AtomVecRef> refs;
  for (std::string& task : find_tasks(to_path(ref.task))) {
    refs.push_back({pool.keep(std::move(task)), ref.property});
  }
  if (refs.empty()) {
    throw std::runtime_error("atomvec glob pattern matched no task directories: " +
                             std::string(ref.task));
  }
  return refs;
}

}  // namespace vqvec
