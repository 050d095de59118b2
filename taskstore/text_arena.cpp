#include "taskstore/text_arena.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vqvec {
namespace {

constexpr std::size_t smallest_block = 1024;  // most tasks are small
constexpr std::size_t largest_block = std::size_t{1024} * 1024;

}  // namespace

std::string_view TextArena::store(std::string_view text) {
  if (text.empty()) {
    return {};
  }
  char* const copy = allocate(text.size());
  std::memcpy(copy, text.data(), text.size());
  return {copy, text.size()};
}

std::string_view TextArena::store_over(std::string_view replaced, std::string_view text) {
  if (text.empty() || text.size() > replaced.size()) {
    return store(text);
  }
  char* const place = const_cast<char*>(replaced.data());  // our own memory, see the contract
  std::memcpy(place, text.data(), text.size());
  return {place, text.size()};
}

char* TextArena::allocate(std::size_t size) {
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
