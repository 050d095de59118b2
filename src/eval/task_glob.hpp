// Patterns of task directories, such as `run*:charge`, and the tasks they match.
#ifndef VQVEC_EVAL_TASK_GLOB_HPP
#define VQVEC_EVAL_TASK_GLOB_HPP

#include <string_view>
#include <vector>

#include "dsl/reference.hpp"
#include "dsl/text_pool.hpp"

namespace vqvec {

// True when the text holds a wildcard, '*' or '?'.
bool has_wildcard(std::string_view text);

// True when the pattern matches the whole name, byte by byte: '*' stands for any run of bytes, '?'
// for exactly one, every other byte for itself.
bool wildcard_match(std::string_view pattern, std::string_view name);

// One reference per matching directory, in bytewise order; a reference without wildcards is
// returned alone, without a look at the disk. A bare pattern gives the names of siblings and
// children of the working directory, one with a directory part gives paths as written. The views
// are of the argument or of the pool. Fails with "atomvec glob pattern matched no task
// directories: " + pattern, and with what the file system says about an entry that it can't judge.
std::vector<AtomVecRef> expand_task_glob(std::string_view pattern_text, TextPool& pool);

}  // namespace vqvec

#endif  // VQVEC_EVAL_TASK_GLOB_HPP
