#include "taskstore/value_texts.hpp"

#include "dsl/number.hpp"
#include "dsl/plain_decimal.hpp"

namespace vqvec {
namespace {

// From the lowest bit: the digits of a number, how many of them are decimals, and the sign. The
// highest bit marks another text.
constexpr unsigned digit_bits = 57;  // 17 digits, as many as a double needs
constexpr std::uint64_t digits_limit = std::uint64_t{1} << digit_bits;
constexpr std::uint64_t decimals_mask = 0x1F;
constexpr std::uint64_t negative_mark = std::uint64_t{1} << 62U;

// True if the number alone tells how it was written: not as "01", ".5" or "1.".
bool has_usual_form(std::string_view text, const PlainDecimal& decimal) {
  const std::size_t first = decimal.is_negative ? 1 : 0;
  const std::size_t end = text.size() - (decimal.decimals > 0 ? decimal.decimals + 1 : 0);
  return end > first && (text[first] != '0' || end == first + 1) && text.back() != '.';
}

// Nothing for a text of another form.
std::optional<std::uint64_t> pack(std::string_view text) {
  std::string_view rest = text;
  const auto decimal = take_plain_decimal(rest);
  if (!decimal || !rest.empty() || decimal->digits >= digits_limit ||
      !has_usual_form(text, *decimal)) {
    return std::nullopt;
  }
  return decimal->digits | std::uint64_t{decimal->decimals} << digit_bits |
         (decimal->is_negative ? negative_mark : 0);
}

PlainDecimal unpack(std::uint64_t packed) {
  return {packed % digits_limit, static_cast<std::size_t>(packed >> digit_bits & decimals_mask),
          (packed & negative_mark) != 0};
}

std::string text_of(const PlainDecimal& decimal) {
  std::string text = std::to_string(decimal.digits);
  if (text.size() <= decimal.decimals) {
    text.insert(0, decimal.decimals + 1 - text.size(), '0');
  }
  if (decimal.decimals > 0) {
    text.insert(text.size() - decimal.decimals, 1, '.');
  }
  return decimal.is_negative ? '-' + text : text;
}

}  // namespace

void ValueTexts::push_back(std::string_view text, TextArena& arena) {
  if (const auto packed = pack(text)) {
    values_.push_back(*packed);
  } else {
    values_.push_back(add_other_text());
    other_texts_.back().assign(text, arena);
  }
}

std::uint64_t ValueTexts::add_other_text() {
  other_texts_.emplace_back();
  return other_text_mark + (other_texts_.size() - 1);
}

std::string ValueTexts::text(std::size_t index) const {
  const std::uint64_t value = values_[index];
  return is_other_text(value) ? std::string(other_texts_[place_of(value)].text())
                              : text_of(unpack(value));
}

std::optional<double> ValueTexts::number(std::size_t index) const {
  const std::uint64_t value = values_[index];
  if (is_other_text(value)) {
    return read_finite_number(other_texts_[place_of(value)].text());
  }
  const PlainDecimal decimal = unpack(value);
  const auto number = to_double(decimal);
  return number ? number : read_finite_number(text_of(decimal));
}

}  // namespace vqvec
