#include "output/number_format.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string_view>

#include "dsl/eight_digits.hpp"

namespace vqvec {
namespace {

// The notations of printf.
enum class Notation : char { fixed = 'f', general = 'g' };

// For any value. Some libraries have no to_chars for doubles, and printf is several times slower.
void append_with_library(std::string& text, double value, Notation notation, int precision) {
  constexpr std::size_t longest_number = 336;  // a sign, 309 digits, a point, some more digits
  char digits[longest_number];
#ifdef __cpp_lib_to_chars
  const auto format =
      notation == Notation::fixed ? std::chars_format::fixed : std::chars_format::general;
  const auto end = std::to_chars(digits, std::end(digits), value, format, precision).ptr;
  text.append(digits, end);
#else
  const char format[] = {'%', '.', '*', static_cast<char>(notation), '\0'};
  const int length = std::snprintf(digits, sizeof digits, format, precision, value);
  text.append(digits, static_cast<std::size_t>(length));
#endif
}

// Values of ordinary size are printed three times as fast, as an integer of all their printed
// digits. A double is a 53-bit integer times a power of two, so its product with a power of ten up
// to 10^22 is exact in 128 bits, and rounding that product (to nearest, ties to even) gives
// printf's digits. Compilers for 32-bit processors have no such integers.

#ifdef __SIZEOF_INT128__
constexpr bool has_wide_integers = true;
__extension__ using Wide = unsigned __int128;
#else
constexpr bool has_wide_integers = false;
using Wide = std::uint64_t;  // not used
#endif

// Values from here on are left to the library.
constexpr double value15_limit = has_wide_integers ? 1e14 : 0.0;
constexpr double fixed10_limit = has_wide_integers ? 1e9 : 0.0;  // smaller ones fit into 64 bits

constexpr std::uint64_t powers_of_ten[] = {
    1ULL,
    10ULL,
    100ULL,
    1'000ULL,
    10'000ULL,
    100'000ULL,
    1'000'000ULL,
    10'000'000ULL,
    100'000'000ULL,
    1'000'000'000ULL,
    10'000'000'000ULL,
    100'000'000'000ULL,
    1'000'000'000'000ULL,
    10'000'000'000'000ULL,
    100'000'000'000'000ULL,
    1'000'000'000'000'000ULL,
    10'000'000'000'000'000ULL,
    100'000'000'000'000'000ULL,
    1'000'000'000'000'000'000ULL,
    10'000'000'000'000'000'000ULL,
};

// At namespace scope: a local array would be copied on every call.
constexpr double decades[] = {1e-3, 1e-2, 1e-1, 1e0, 1e1,  1e2,  1e3,  1e4, 1e5,
                              1e6,  1e7,  1e8,  1e9, 1e10, 1e11, 1e12, 1e13};

// |value| * 10^power, rounded. The value must be below 2^52 and the result below 2^64.
std::uint64_t scale_and_round(double value, int power) {
  constexpr unsigned mantissa_bits = 52;
  constexpr unsigned exponent_mask = 0x7FF;
  constexpr unsigned exponent_bias = 1075;  // for the mantissa as an integer
  constexpr unsigned widest_product = 117;  // bits of a mantissa times 10^19
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  const auto exponent = static_cast<unsigned>(bits >> mantissa_bits) & exponent_mask;
  const unsigned shift = exponent_bias - exponent;
  if (shift > widest_product) {
    return 0;  // less than a half, as are all subnormal numbers
  }
  constexpr std::uint64_t leading_bit = std::uint64_t{1} << mantissa_bits;
  const std::uint64_t mantissa = (bits & (leading_bit - 1)) | leading_bit;
  const Wide product = Wide{mantissa} * powers_of_ten[power];
  const Wide half = Wide{1} << (shift - 1);
  const Wide rest = product & (2 * half - 1);
  const auto whole = static_cast<std::uint64_t>(product >> shift);
  const bool rounds_up = rest > half || (rest == half && whole % 2 == 1);
  return whole + (rounds_up ? 1 : 0);
}

// Writes the last `count` digits of the number, with leading zeros, so that they end at `end`.
void write_digits(char* end, std::size_t count, std::uint64_t number) {
  constexpr std::uint64_t ten = 10;
  for (; count >= eight_digits::count; count -= eight_digits::count) {
    end -= eight_digits::count;
    eight_digits::store(eight_digits::from_number(number % eight_digits::limit), end);
    number /= eight_digits::limit;
  }
  for (; count > 0; --count) {
    *--end = static_cast<char>('0' + number % ten);
    number /= ten;
  }
}

// Appends a sign if needed, and the digits of `scaled` with a point before the last `decimals`.
// They are written in their final place: copying a few bytes just written is slow.
void append_scaled(std::string& text, bool is_negative, std::uint64_t scaled,
                   std::size_t decimals) {
  constexpr std::size_t longest_number = 22;  // digits, a zero and a point
  const std::uint64_t unit = powers_of_ten[decimals];
  const std::uint64_t whole = scaled < unit ? 0 : scaled / unit;  // avoids a division
  if (is_negative) {
    text += '-';
  }
  const std::size_t begin = text.size();
  text.append(longest_number, '0');
  char* next = text.data() + begin;
  next = std::to_chars(next, next + longest_number, whole).ptr;
  if (decimals > 0) {
    *next++ = '.';
    next += decimals;
    write_digits(next, decimals, scaled - whole * unit);
  }
  text.resize(static_cast<std::size_t>(next - text.data()));
}

}  // namespace

void append_value15(std::string& text, double value) {
  constexpr int digits = 15;
  constexpr double smallest = 1e-4;  // smaller values are printed in scientific notation
  const double magnitude = std::fabs(value);
  if (!(magnitude >= smallest && magnitude < value15_limit)) {
    append_with_library(text, value, Notation::general, digits);
    return;
  }
  // As many decimals as give 15 digits in all. Rounding up can add one digit.
  const auto above = std::find_if(std::begin(decades), std::end(decades),
                                  [magnitude](double decade) { return decade > magnitude; });
  int decimals = digits + 3 - static_cast<int>(above - std::begin(decades));
  std::uint64_t scaled = scale_and_round(magnitude, decimals);
  if (scaled == powers_of_ten[digits]) {
    scaled /= 10;
    --decimals;
  }
  for (; decimals > 0 && scaled % 10 == 0; --decimals) {
    scaled /= 10;
  }
  append_scaled(text, std::signbit(value), scaled, static_cast<std::size_t>(decimals));
}

void append_fixed10(std::string& text, double value) {
  constexpr int decimals = 10;
  if (std::fabs(value) < fixed10_limit) {
    append_scaled(text, std::signbit(value), scale_and_round(value, decimals), decimals);
  } else {
    append_with_library(text, value, Notation::fixed, decimals);
  }
}

std::string format_fixed10(double value) {
  std::string text;
  append_fixed10(text, value);
  return text;
}

}  // namespace vqvec
