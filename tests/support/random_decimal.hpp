// Decimals of many digits.
#ifndef VQVEC_TESTS_SUPPORT_RANDOM_DECIMAL_HPP
#define VQVEC_TESTS_SUPPORT_RANDOM_DECIMAL_HPP

#include <random>
#include <string>

namespace vqvec {

// Up to 24 digits before the point and after it; half of them with an exponent that can take them
// out of the range of a double.
inline std::string random_decimal(std::mt19937_64& random) {
  std::string text = random() % 2 == 0 ? "-" : "";
  const auto add_digits = [&](auto count) {
    for (; count > 0; --count) {
      text += static_cast<char>('0' + random() % 10);
    }
  };
  add_digits(random() % 25);
  text += '.';
  add_digits(1 + random() % 24);
  if (random() % 2 == 0) {
    text += 'e';
    text += std::to_string(static_cast<int>(random() % 700) - 350);
  }
  return text;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_SUPPORT_RANDOM_DECIMAL_HPP
