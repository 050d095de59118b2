#include "taskstore/value_text.hpp"

#include <cstring>

namespace vqvec {

void ValueText::assign_long(std::string_view text, TextArena& arena) {
  // A file that was appended to a hundred times shall cost a few times its last run: a text takes
  // the place of the one that it replaces where it fits.
  const bool has_room = size_ == is_in_arena && text.size() <= place_in_arena().size;
  char* const first = has_room ? place_in_arena().text : arena.allocate(text.size());
  text.copy(first, text.size());
  const Place place{first, text.size()};
  std::memcpy(bytes_.data(), &place, sizeof place);
  size_ = is_in_arena;
}

ValueText::Place ValueText::place_in_arena() const {
  Place place{};
  std::memcpy(&place, bytes_.data(), sizeof place);
  return place;
}

std::string_view ValueText::long_text() const {
  const Place place = place_in_arena();
  return {place.text, place.size};
}

}  // namespace vqvec
