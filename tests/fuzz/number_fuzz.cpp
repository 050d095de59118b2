// Any text as a number, against strtod and a count of digits; any line as fields, against a stream.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>

#include "dsl/number.hpp"
#include "taskstore/field_reader.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/fuzz/require.hpp"
#include "tests/reference/files.hpp"
#include "tests/support/same_number.hpp"

namespace vqvec {
namespace {

std::string bits_of(double value) {
  return std::to_string(std::bit_cast<std::uint64_t>(value));
}

void compare_literals(const std::string& text) {
  const std::optional<double> expected = reference::read_number(text);
  require(is_number_literal(text) == expected.has_value(), "is_number_literal");
  const bool is_finite = expected && reference::is_finite(*expected);
  require(is_same_number(read_finite_number(text), is_finite ? expected : std::nullopt),
          "read_finite_number");
  require_equal(
      outcome_of([&] { return bits_of(parse_finite_number(text, "a label")); }),
      outcome_of([&] { return bits_of(reference::parse_finite_number(text, "a label")); }),
      "parse_finite_number");
}

// A word, then numbers up to the first that fails, then whatever word is left.
void compare_fields(const std::string& line) {
  reference::FieldStream stream(line);
  FieldReader fields(line);
  require_equal(std::string(fields.read_word()), stream.read_word(), "first word of a line");
  for (std::optional<double> expected = 0.0; expected;) {
    expected = stream.read_number();
    require(is_same_number(fields.read_number(), expected), "a field");
  }
  require_equal(std::string(fields.read_word()), stream.read_word(), "word after the numbers");
}

// A decimal of up to 20 digits from nine bytes, with a point somewhere and at times an exponent:
// most texts that a fuzzer comes up with are short numbers or none.
std::string decimal_of(const std::uint8_t* data) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, data + 1, sizeof bits);
  std::string digits = std::to_string(bits >> (data[0] % 64U));
  if (data[1] % 8 != 0) {
    digits.insert(data[2] % (digits.size() + 1), ".");
  }
  if (data[3] % 8 == 0) {
    digits += "e" + std::to_string(data[4] % 64 - 32);
  }
  return data[5] % 2 == 0 ? digits : "-" + digits;
}

}  // namespace
}  // namespace vqvec

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vqvec::text_of(data, size);
  vqvec::compare_literals(text);
  vqvec::require(vqvec::read_count(text) == vqvec::reference::read_count(text), "read_count");
  vqvec::compare_fields(text);
  for (; size >= 9; data += 9, size -= 9) {
    const std::string decimal = vqvec::decimal_of(data);
    vqvec::compare_literals(decimal);
    vqvec::compare_fields("H " + decimal + " " + decimal + "x");
  }
  return 0;
}
