#include "taskstore/text_arena.hpp"

#include <algorithm>
#include <cstring>

namespace vqvec {

// The room is noted in front of the bytes.
char* TextArena::allocate(std::size_t size) {
  constexpr std::size_t smallest_block = 1024;  // most tasks are small
  constexpr std::size_t largest_block = std::size_t{1024} * 1024;
  const std::size_t needed = sizeof size + size;
  if (blocks_.empty() || needed > blocks_.back().size - used_) {
    const std::size_t last_size = blocks_.empty() ? 0 : blocks_.back().size;
    const std::size_t block_size =
        std::max(needed, std::clamp(2 * last_size, smallest_block, largest_block));
    blocks_.push_back({std::unique_ptr<char[]>(new char[block_size]), block_size});
    used_ = 0;
  }
  char* const room = blocks_.back().bytes.get() + used_;
  std::memcpy(room, &size, sizeof size);
  used_ += needed;
  return room + sizeof size;
}

std::size_t TextArena::room_at(const char* allocated) {
  std::size_t size = 0;
  std::memcpy(&size, allocated - sizeof size, sizeof size);
  return size;
}

ValueText::Place ValueText::place_in_arena() const {
  Place place{};
  if (size_ == is_in_arena) {
    std::memcpy(&place, bytes_, sizeof place);
  }
  return place;
}

// Reuses the old room if the new text fits, and doubles it otherwise, so that repeated appends to a
// file cost little memory.
void ValueText::assign_in_arena(std::string_view text, TextArena& arena) {
  Place place = place_in_arena();
  const std::size_t room = place.text == nullptr ? 0 : TextArena::room_at(place.text);
  if (text.size() > room) {
    place.text = arena.allocate(std::max(text.size(), 2 * room));
  }
  text.copy(place.text, text.size());
  place.size = text.size();
  std::memcpy(bytes_, &place, sizeof place);
  size_ = is_in_arena;
}

std::string_view ValueText::text_in_arena() const {
  const Place place = place_in_arena();
  return {place.text, place.size};
}

}  // namespace vqvec
