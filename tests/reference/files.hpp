// Key-value files, geometry files and numbers by the plain means of the standard library. Unit
// tests and fuzzers compare the program's own readers with these.
#ifndef VQVEC_TESTS_REFERENCE_FILES_HPP
#define VQVEC_TESTS_REFERENCE_FILES_HPP

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <locale>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/reference/lexing.hpp"

namespace vqvec::reference {

using KvMap = std::map<std::string, std::string>;

inline void merge_kv_text(KvMap& into, const std::string& bytes) {
  std::istringstream stream(bytes);
  std::string line;
  KvMap pairs;
  while (std::getline(stream, line)) {
    line = trim(line);
    if (line.empty() || line.front() == '#') {
      continue;
    }
    const auto equals = line.find('=');
    if (equals == std::string::npos || equals == 0) {
      continue;
    }
    const std::string key = trim(line.substr(0, equals));
    if (!key.empty()) {
      pairs[key] = line.substr(equals + 1);
    }
  }
  for (const auto& [key, value] : pairs) {
    into[key] = value;
  }
}

// What strtod makes of the trimmed text, if it takes all of it.
inline std::optional<double> read_number(const std::string& text) {
  const std::string s = trim(text);
  char* end = nullptr;
  const double value = std::strtod(s.c_str(), &end);
  if (s.empty() || end != s.c_str() + s.size()) {
    return std::nullopt;
  }
  return value;
}

inline bool is_finite(double value) {
  return std::fabs(value) <= DBL_MAX;
}

inline double parse_finite_number(const std::string& text, const std::string& label) {
  const std::optional<double> value = read_number(text);
  if (!value || !is_finite(*value)) {
    throw std::runtime_error(label + " is not a finite number: " + text);
  }
  return *value;
}

// Digit by digit. Nothing when there are none, or when the number is too large.
inline std::optional<std::uint64_t> read_count(const std::string& text) {
  const char* place = text.c_str();  // a NUL ends the number like any byte that is no digit
  while (is_white(*place)) {
    ++place;
  }
  const bool is_negative = *place == '-';
  if (*place == '-' || *place == '+') {
    ++place;
  }
  std::uint64_t count = 0;
  const char* const first_digit = place;
  for (; *place >= '0' && *place <= '9'; ++place) {
    const auto digit = static_cast<std::uint64_t>(*place - '0');
    if (count > (UINT64_MAX - digit) / 10) {
      return std::nullopt;
    }
    count = 10 * count + digit;
  }
  if (place == first_digit) {
    return std::nullopt;
  }
  return is_negative ? 0 - count : count;
}

// The fields of a line as the stream operators read them.
class FieldStream {
 public:
  explicit FieldStream(const std::string& line) : stream_(line) {
    stream_.imbue(std::locale::classic());
  }

  // After a number that could not be read, the word begins where reading it stopped.
  std::string read_word() {
    std::string word;
    stream_.clear();
    stream_ >> word;
    return word;
  }
  std::optional<double> read_number() {
    double number = 0.0;
    return stream_ >> number ? std::optional(number) : std::nullopt;
  }

 private:
  std::istringstream stream_;
};

struct Atom {
  std::string symbol;
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline std::vector<Atom> read_xyz_text(const std::string& bytes) {
  std::istringstream stream(bytes);
  std::string line;
  if (!std::getline(stream, line)) {
    return {};
  }
  const std::uint64_t count = read_count(trim(line)).value_or(0);
  if (count == 0) {
    return {};
  }
  std::getline(stream, line);
  std::vector<Atom> atoms;
  while (atoms.size() < count && std::getline(stream, line)) {
    FieldStream fields(line);
    const std::string symbol = fields.read_word();
    const auto x = fields.read_number();
    const auto y = fields.read_number();
    const auto z = fields.read_number();
    if (!x || !y || !z) {
      return {};
    }
    atoms.push_back({symbol, *x, *y, *z});
  }
  if (atoms.size() < count) {
    return {};
  }
  return atoms;
}

}  // namespace vqvec::reference

#endif  // VQVEC_TESTS_REFERENCE_FILES_HPP
