// Expanding patterns of task directories, such as `run*:charge`.
#ifndef VQVEC_EVAL_TASK_GLOB_HPP
#define VQVEC_EVAL_TASK_GLOB_HPP

#include <string_view>
#include <vector>

#include "dsl/reference.hpp"
#include "dsl/text_pool.hpp"

namespace vqvec {

// True if the text contains a wildcard, '*' or '?'.
bool has_wildcard(std::string_view text);

// True if the pattern matches the whole name, byte by byte: '*' matches any run of bytes, '?'
// exactly one, every other byte itself.
bool wildcard_match(std::string_view pattern, std::string_view name);

// One reference per matching directory, in bytewise order. A reference without wildcards is
// returned alone, without accessing the disk. A bare pattern gives the names of siblings and
// children of the working directory; a pattern with a directory part gives paths in the form of the
// pattern. The views are of the argument or of the pool. Fails with "atomvec glob pattern matched
// no task directories: " + pattern, and with the file system's error for an entry that cannot be
// examined.
std::vector<AtomVecRef> expand_task_glob(std::string_view pattern_text, TextPool& pool);

}  // namespace vqvec

#endif  // VQVEC_EVAL_TASK_GLOB_HPP
