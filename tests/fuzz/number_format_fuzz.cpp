// Printing numbers: the bytes that printf prints, which read back as the double that they name.
// An input is a list of numbers, nine bytes each: how the number is made, and from which bits.
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "dsl/number.hpp"
#include "output/number_format.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/fuzz/require.hpp"
#include "tests/reference/print.hpp"
#include "tests/support/format_value15.hpp"
#include "tests/support/same_number.hpp"

namespace vqvec {
namespace {

using reference::print;

void compare(double value) {
  const std::string value15 = format_value15(value);
  const std::string fixed10 = format_fixed10(value);
  require_equal(value15, print("%.15g", value), "format_value15");
  require_equal(fixed10, print("%.10f", value), "format_fixed10");
  for (const std::string& text : {value15, fixed10}) {
    const double printed = std::strtod(text.c_str(), nullptr);
    const auto value_read = read_finite_number(text);
    require(value_read.has_value() == std::isfinite(printed), "whether a number reads back");
    require(!value_read || is_same_number(*value_read, printed), "a number read back");
  }
}

// Plain bits; or a decimal of few digits, a tie between two printed ones, or a power of ten, with
// the doubles beside it: where printing is most easily wrong.
void compare_number(std::uint8_t kind, std::uint64_t bits) {
  if (kind % 2 == 0) {
    compare(std::bit_cast<double>(bits));
    return;
  }
  const int digits = kind / 2 % 18;
  const auto integer = static_cast<double>(bits % static_cast<std::uint64_t>(1e18));
  const double whole = std::floor(integer / std::pow(10.0, digits));
  const double power = std::pow(10.0, static_cast<double>(bits >> 59) - 16.0);
  for (const double decimal : {whole, whole + 0.5, whole - 0.5, 1.0}) {
    for (const double value : {decimal * power, decimal / power, -decimal * power}) {
      const double infinity = std::numeric_limits<double>::infinity();
      compare(value);
      compare(std::nextafter(value, infinity));
      compare(std::nextafter(value, -infinity));
    }
  }
}

}  // namespace
}  // namespace vqvec

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (; size >= 9; data += 9, size -= 9) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, data + 1, sizeof bits);
    vqvec::compare_number(data[0], bits);
  }
  return 0;
}
