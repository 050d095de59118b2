// The text of one value, small enough that a million of them fit into memory a few times.
#ifndef VQVEC_TASKSTORE_VALUE_TEXT_HPP
#define VQVEC_TASKSTORE_VALUE_TEXT_HPP

#include <array>
#include <cstddef>
#include <string_view>

#include "taskstore/text_arena.hpp"

namespace vqvec {

// Up to 23 bytes, and so nearly every number, are kept inside; a longer text stands in an arena.
class ValueText {
 public:
  // Replaces the text. The arena must be the same in every call, and outlive this.
  void assign(std::string_view text, TextArena& arena) {
    if (text.size() <= longest_inside) {
      text.copy(bytes_.data(), text.size());
      size_ = static_cast<unsigned char>(text.size());
    } else {
      assign_long(text, arena);
    }
  }

  // Valid until the next assignment or move of this.
  std::string_view text() const {
    return size_ == is_in_arena ? long_text() : std::string_view(bytes_.data(), size_);
  }

 private:
  static constexpr std::size_t longest_inside = 23;
  static constexpr unsigned char is_in_arena = 255;

  struct Place {
    char* text;
    std::size_t size;
  };
  void assign_long(std::string_view text, TextArena& arena);
  Place place_in_arena() const;
  std::string_view long_text() const;

  std::array<char, longest_inside> bytes_;  // the text or its place; never cleared: it takes time
  unsigned char size_ = 0;                  // of a text inside, or is_in_arena
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_VALUE_TEXT_HPP
