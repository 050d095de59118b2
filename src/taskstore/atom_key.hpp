// The keys of per-atom values, `atoms.N.<property>`.
#ifndef VQVEC_TASKSTORE_ATOM_KEY_HPP
#define VQVEC_TASKSTORE_ATOM_KEY_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vqvec {

// A key taken apart. N is a decimal number from 1, without leading zeros, that fits into 64 bits;
// the property may be empty.
struct AtomKey {
  std::uint64_t atom;
  std::string_view property;
};

// Nothing for any other key, which is then a key like all others.
std::optional<AtomKey> parse_atom_key(std::string_view key);

// The key of the same property for this atom.
std::string atom_key_text(const AtomKey& key);

// A guess at the key of a column's next value: files list atoms in their order. Comparing a key
// with the right guess takes a third of the time of taking it apart.
class ExpectedAtomKey {
 public:
  // Expects the key of the next atom behind this one.
  void expect_after(const AtomKey& key);

  // Expects the next one again.
  void advance();

  // Empty until something is expected. Whatever it is, it is the key of `atom`.
  std::string_view text() const { return text_; }
  std::uint64_t atom() const { return atom_; }

 private:
  std::string text_;
  std::size_t last_digit_ = 0;  // of N in the text
  std::uint64_t atom_ = 0;
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_ATOM_KEY_HPP
