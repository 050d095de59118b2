// Decimal digits handled eight at a time, as the bytes of one integer (the first digit is the
// lowest byte). With a million atoms most of the time is spent on digits; one at a time takes twice
// as long.
#ifndef VQVEC_DSL_EIGHT_DIGITS_HPP
#define VQVEC_DSL_EIGHT_DIGITS_HPP

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vqvec::eight_digits {

constexpr std::size_t count = 8;
constexpr std::uint64_t limit = 100'000'000;  // one more than eight digits can show

// NOLINTBEGIN(readability-magic-numbers): only positions and powers of ten.

// Eight characters in memory. Compilers turn the loop of store() into one instruction, but not
// always that of load(), hence the copy.
inline std::uint64_t load(const char* text) {
  std::uint64_t bytes = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&bytes, text, sizeof bytes);
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      bytes |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
    }
  }
  return bytes;
}
inline void store(std::uint64_t bytes, char* text) {
  for (std::size_t i = 0; i < count; ++i) {
    text[i] = static_cast<char>(static_cast<unsigned char>(bytes >> (8 * i)));
  }
}

// Bits that are set in the bytes of characters that are no digits. Taking '0' away leaves 0 to 9 of
// a digit, to which 0x76 can be added without setting the highest bit. What the sum carries from
// another character reaches later ones only, so the first of these bits is right.
constexpr std::uint64_t marks_of_others(std::uint64_t bytes) {
  const std::uint64_t values = bytes ^ 0x3030303030303030;
  return (values | (values + 0x7676767676767676)) & 0x8080808080808080;
}

// True if all characters are digits.
constexpr bool are_digits(std::uint64_t bytes) {
  return marks_of_others(bytes) == 0;
}

// How many of the first characters are digits.
constexpr std::size_t leading(std::uint64_t bytes) {
  return static_cast<std::size_t>(std::countr_zero(marks_of_others(bytes))) / 8;
}

// The value of eight digits: neighbours are joined into pairs, pairs into fours, fours into eight.
constexpr std::uint64_t to_number(std::uint64_t bytes) {
  std::uint64_t parts = bytes & 0x0F0F0F0F0F0F0F0F;
  parts = (parts * 10 + (parts >> 8)) & 0x00FF00FF00FF00FF;
  parts = (parts * 100 + (parts >> 16)) & 0x0000FFFF0000FFFF;
  return (parts * 10000 + (parts >> 32)) & 0xFFFFFFFF;
}

// The digits of a number below the limit, with leading zeros: the same steps in reverse. The two
// products with a shift divide by 100 and by 10.
constexpr std::uint64_t from_number(std::uint64_t number) {
  std::uint64_t parts = number / 10000 | (number % 10000) << 32;
  const std::uint64_t hundreds = ((parts * 10486) >> 20) & 0x0000007F0000007F;
  parts = hundreds | (parts - hundreds * 100) << 16;
  const std::uint64_t tens = ((parts * 103) >> 10) & 0x000F000F000F000F;
  return (tens | (parts - tens * 10) << 8) | 0x3030303030303030;
}

// NOLINTEND(readability-magic-numbers)

}  // namespace vqvec::eight_digits

#endif  // VQVEC_DSL_EIGHT_DIGITS_HPP
