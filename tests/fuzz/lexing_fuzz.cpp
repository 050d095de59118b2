// The operations on expression text, each against its rules taken literally.
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "dsl/call.hpp"
#include "dsl/expression.hpp"
#include "dsl/lexical.hpp"
#include "dsl/option_words.hpp"
#include "dsl/reference.hpp"
#include "tests/fuzz/input.hpp"
#include "tests/fuzz/require.hpp"
#include "tests/reference/expression.hpp"
#include "tests/reference/lexing.hpp"
#include "tests/support/expression_node.hpp"

namespace vqvec {
namespace {

template <typename Texts>
std::string joined(const Texts& texts) {
  std::string all;
  for (const auto& text : texts) {
    all += "[" + std::string(text) + "]";
  }
  return all;
}

std::vector<std::string> texts_of(const std::vector<Expression>& expressions) {
  std::vector<std::string> texts;
  for (const Expression& expression : expressions) {
    texts.emplace_back(expression.text);
  }
  return texts;
}

void compare_texts(const std::string& text) {
  TextPool pool;
  require_equal(std::string(trim(text)), reference::trim(text), "trim");
  require_equal(to_lower(text), reference::to_lower(text), "to_lower");
  require_equal(std::string(unquote_argument(text, pool)), reference::unquote_argument(text),
                "unquote_argument");
  require_equal(outcome_of([&] { return joined(texts_of(split_call_arguments(text))); }),
                outcome_of([&] {
                  reference::require_allowed_depth(text);
                  return joined(reference::split_call_arguments(text));
                }),
                "split_call_arguments");
  require_equal(joined(split_option_words(text)), joined(reference::split_option_words(text)),
                "split_option_words");
}

void compare_references(const std::string& text) {
  require_equal(outcome_of([&] { return std::string(normalize_property_name(text)); }),
                outcome_of([&] { return reference::normalize_property_name(text); }),
                "normalize_property_name");
  const auto describe = [](const auto& ref) {
    return std::string(ref.task) + "|" + std::string(ref.property);
  };
  require_equal(outcome_of([&] { return describe(parse_atom_vec_ref(text)); }),
                outcome_of([&] { return describe(reference::parse_atom_vec_ref(text)); }),
                "parse_atom_vec_ref");
}

void compare_calls(const std::string& text) {
  const auto describe = [](const auto& call) {
    return call.name + "|" + std::string(call.argument_text);
  };
  require_equal(outcome_of([&] { return describe(parse_function_call(text)); }),
                outcome_of([&] { return describe(reference::parse_function_call(text)); }),
                "parse_function_call");
}

void compare_tree(const std::string& text) {
  require_equal(outcome_of([&] { return describe(copy_of(parse_expression(text))); }),
                outcome_of([&] { return describe(reference::parse_expression(text)); }),
                "parse_expression");
}

}  // namespace
}  // namespace vqvec

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vqvec::text_of(data, size);
  vqvec::compare_texts(text);
  vqvec::compare_references(text);
  vqvec::compare_calls(text);
  vqvec::compare_tree(text);
  return 0;
}
