// Memory for the many small texts of one map.
#ifndef VQVEC_TASKSTORE_TEXT_ARENA_HPP
#define VQVEC_TASKSTORE_TEXT_ARENA_HPP

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace vqvec {

// Memory allocated in small pieces and freed all at once. It stays in place when the arena is
// moved.
class TextArena {
 public:
  // Uninitialised; valid as long as the arena.
  char* allocate(std::size_t size);

  // The size that was passed to allocate().
  static std::size_t room_at(const char* allocated);

 private:
  struct Block {
    std::unique_ptr<char[]> bytes;
    std::size_t size;
  };
  std::vector<Block> blocks_;
  std::size_t used_ = 0;  // bytes of the last block, if there is one
};

// One text. Up to 23 bytes, and so nearly every number, are kept in place; a longer one is in the
// arena.
class ValueText {
 public:
  // Replaces the text. The arena must be the same in every call, and outlive this.
  void assign(std::string_view text, TextArena& arena) {
    if (size_ != is_in_arena && text.size() <= longest_inside) {
      text.copy(reinterpret_cast<char*>(bytes_), text.size());
      size_ = static_cast<unsigned char>(text.size());
    } else {
      assign_in_arena(text, arena);
    }
  }

  // Valid until the next assignment or move of this.
  std::string_view text() const {
    return size_ == is_in_arena ? text_in_arena()
                                : std::string_view(reinterpret_cast<const char*>(bytes_), size_);
  }

 private:
  static constexpr std::size_t longest_inside = 23;
  static constexpr unsigned char is_in_arena = 255;

  struct Place {
    char* text;
    std::size_t size;
  };
  Place place_in_arena() const;
  void assign_in_arena(std::string_view text, TextArena& arena);
  std::string_view text_in_arena() const;

  unsigned char bytes_[longest_inside];  // the text or its Place; uninitialised, which saves time
  unsigned char size_ = 0;               // of a text kept in place, or is_in_arena
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_TEXT_ARENA_HPP
