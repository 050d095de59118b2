#include "taskstore/text_arena.hpp"

#include <algorithm>
#include <utility>

namespace vqvec {

char* TextArena::allocate(std::size_t size) {
  constexpr std::size_t smallest_block = 1024;  // most tasks are small
  constexpr std::size_t largest_block = std::size_t{1024} * 1024;
  if (size > free_size_) {
    block_size_ = std::max(size, std::clamp(2 * block_size_, smallest_block, largest_block));
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(block_size_));
    free_ = blocks_.back().get();
    free_size_ = block_size_;
  }
  free_size_ -= size;
  return std::exchange(free_, free_ + size);
}

}  // namespace vqvec
