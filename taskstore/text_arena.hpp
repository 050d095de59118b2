// Memory for the many small texts of one map: stored one behind the other, freed all at once.
#ifndef VQVEC_TASKSTORE_TEXT_ARENA_HPP
#define VQVEC_TASKSTORE_TEXT_ARENA_HPP

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace vqvec {

class TextArena {
 public:
  // A copy of the text that lives as long as the arena.
  std::string_view store(std::string_view text);

  // The same, in the place of an earlier text of this arena that nobody needs any more, where it
  // fits: a file that was appended to a hundred times then costs a few times its last run.
  std::string_view store_over(std::string_view replaced, std::string_view text);

 private:
  char* allocate(std::size_t size);

  std::vector<std::unique_ptr<char[]>> blocks_;
  char* free_ = nullptr;
  std::size_t free_size_ = 0;
  std::size_t block_size_ = 0;  // of the latest block
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_TEXT_ARENA_HPP
