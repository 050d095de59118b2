#include "taskstore/atom_key.hpp"

#include <charconv>
#include <limits>
#include <system_error>

namespace vqvec {
namespace {

constexpr std::string_view prefix = "atoms.";

}  // namespace

std::optional<AtomKey> parse_atom_key(std::string_view key) {
  if (!key.starts_with(prefix)) {
    return std::nullopt;
  }
  const char* const digits = key.data() + prefix.size();
  const char* const end = key.data() + key.size();
  if (digits != end && *digits == '0') {
    return std::nullopt;
  }
  std::uint64_t atom = 0;
  const auto [dot, error] = std::from_chars(digits, end, atom);
  if (error != std::errc() || dot == end || *dot != '.') {
    return std::nullopt;
  }
  return AtomKey{atom, {dot + 1, end}};
}

std::string atom_key_text(const AtomKey& key) {
  std::string text(prefix);
  text += std::to_string(key.atom);
  text += '.';
  text += key.property;
  return text;
}

void ExpectedAtomKey::expect_after(const AtomKey& key) {
  text_ = atom_key_text(key);
  last_digit_ = text_.size() - key.property.size() - 2;
  atom_ = key.atom;
  advance();
}

void ExpectedAtomKey::advance() {
  if (atom_ == std::numeric_limits<std::uint64_t>::max()) {
    return;  // there is no next atom: the same key again
  }
  ++atom_;
  std::size_t digit = last_digit_;
  for (; text_[digit] == '9'; --digit) {
    text_[digit] = '0';
  }
  if (digit < prefix.size()) {
    text_.insert(prefix.size(), 1, '1');
    ++last_digit_;
  } else {
    ++text_[digit];
  }
}

}  // namespace vqvec
