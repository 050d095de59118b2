// Reading key=value result files. Readers never fail on what a file holds: a missing file or a
// malformed line just gives fewer pairs. Whoever needs a value reports its absence, because only
// there is it known what for.
#ifndef VQVEC_TASKSTORE_KV_FILE_HPP
#define VQVEC_TASKSTORE_KV_FILE_HPP

#include <string>

#include "taskstore/kv_map.hpp"

namespace vqvec {

// A key on several lines keeps its last value. Blanks around the line and the key are dropped,
// those behind the '=' are part of the value.
KvMap read_kv_file(const std::string& path);

// Sets every pair of the file in `into`, replacing earlier values.
void merge_kv_file(KvMap& into, const std::string& path);

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_KV_FILE_HPP
