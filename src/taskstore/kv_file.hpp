// Reading key=value result files. Readers never fail because of a file's contents: a missing file
// or a malformed line just yields fewer pairs. The consumer of a value reports its absence: only
// the consumer knows its purpose.
#ifndef VQVEC_TASKSTORE_KV_FILE_HPP
#define VQVEC_TASKSTORE_KV_FILE_HPP

#include <string>

#include "taskstore/kv_map.hpp"

namespace vqvec {

// Sets every pair of the file in `into`, replacing earlier values: a key on several lines keeps its
// last value. White space around the line and the key is dropped; after the '=' it is part of the
// value.
void merge_kv_file(KvMap& into, const std::string& path);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_KV_FILE_HPP
