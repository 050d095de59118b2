// Memory for the many small texts of one map: handed out one behind the other, freed all at once.
#ifndef VQVEC_TASKSTORE_TEXT_ARENA_HPP
#define VQVEC_TASKSTORE_TEXT_ARENA_HPP

#include <cstddef>
#include <memory>
#include <vector>

namespace vqvec {

class TextArena {
 public:
  // So many bytes, not cleared, that live as long as the arena, also when it is moved.
  char* allocate(std::size_t size);

 private:
  std::vector<std::unique_ptr<char[]>> blocks_;
  char* free_ = nullptr;
  std::size_t free_size_ = 0;
  std::size_t block_size_ = 0;  // of the latest block
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_TEXT_ARENA_HPP
