#include "dsl/statement.hpp"

#include <optional>
#include <stdexcept>
#include <utility>

#include "dsl/lexical.hpp"
#include "dsl/nesting_scanner.hpp"
#include "dsl/option_words.hpp"
#include "dsl/reference.hpp"

namespace vqvec {
namespace {

// The first '=' outside quotes and parentheses; npos when there is none.
std::size_t find_top_level_equals(std::string_view text) {
  NestingScanner scanner;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (scanner.take(text[i]) && text[i] == '=' && scanner.depth() == 0) {
      return i;
    }
  }
  return std::string_view::npos;
}

// The expression and the options after it, both trimmed. Options begin at the first "--" that
// follows white space outside quotes and parentheses.
std::pair<std::string_view, std::string_view> split_off_options(std::string_view right_side) {
  NestingScanner scanner;
  for (std::size_t i = 0; i < right_side.size(); ++i) {
    if (!scanner.take(right_side[i]) || scanner.depth() > 0 || !is_space(right_side[i])) {
      continue;
    }
    const std::size_t run_begin = i;
    while (i + 1 < right_side.size() && is_space(right_side[i + 1])) {
      ++i;  // white space changes nothing in the scanner
    }
    if (right_side.substr(i + 1).starts_with("--")) {
      return {trim(right_side.substr(0, run_begin)), trim(right_side.substr(i + 1))};
    }
  }
  return {trim(right_side), {}};
}

struct Option {
  std::string_view name;
  bool has_equals_form;              // `--name=value` beside `--name value`
  std::string DslStatement::*field;  // what it sets; a later option replaces an earlier one
};

constexpr Option single_valued_options[] = {
    {"--sum", true, &DslStatement::sum_text},          {"--renorm", true, &DslStatement::sum_text},
    {"--renormalize", false, &DslStatement::sum_text},  // deliberately without --renormalize=2
    {"--out", true, &DslStatement::out_path},          {"--extxyz", true, &DslStatement::out_path},
    {"--chg", true, &DslStatement::chg_path},          {"--format", true, &DslStatement::format},
    {"--geom", true, &DslStatement::geom_path},
};

// The value that the word at the index gives to this option; nothing if the word is not this
// option. Advances the index if the value is the next word.
std::optional<std::string> match_option(const std::vector<std::string>& words, std::size_t& index,
                                        std::string_view name, bool has_equals_form) {
  const std::string& word = words[index];
  if (word == name) {
    return take_option_value(words, index, name);
  }
  if (has_equals_form && word.starts_with(name) &&
      std::string_view(word).substr(name.size()).starts_with('=')) {
    return word.substr(name.size() + 1);
  }
  return std::nullopt;
}

void interpret_option(const std::vector<std::string>& words, std::size_t& index,
                      DslStatement& statement) {
  if (auto mode = match_option(words, index, "--check", true)) {
    statement.checks.push_back(std::move(*mode));
    return;
  }
  for (const Option& option : single_valued_options) {
    if (auto value = match_option(words, index, option.name, option.has_equals_form)) {
      statement.*option.field = std::move(*value);
      return;
    }
  }
  throw std::runtime_error("unknown atomvec option: " + words[index]);
}

void interpret_options(std::string_view option_text, DslStatement& statement) {
  const std::vector<std::string> words = split_option_words(option_text);
  for (std::size_t i = 0; i < words.size(); ++i) {
    interpret_option(words, i, statement);
  }
}

// The format matters only if there is a file to write.
void validate_format(DslStatement& statement) {
  statement.format = to_lower(statement.format);
  if (!statement.out_path.empty() && statement.format != "extxyz") {
    throw std::runtime_error("atomvec currently supports only --format extxyz");
  }
}

void validate_checks(std::vector<std::string>& checks) {
  for (std::string& mode : checks) {
    mode = to_lower(trim(mode));
    if (mode != "same_atoms") {
      throw std::runtime_error("unknown atomvec --check mode: " + mode);
    }
  }
}

}  // namespace

DslStatement parse_dsl_statement(std::string_view text) {
  const std::size_t equals = find_top_level_equals(text);
  if (equals == std::string_view::npos) {
    throw std::runtime_error("atomvec syntax requires '<target> = <expr>': " + std::string(text));
  }
  DslStatement statement;
  statement.target = normalize_property_name(text.substr(0, equals));
  const auto [expression, option_text] = split_off_options(text.substr(equals + 1));
  if (expression.empty()) {
    throw std::runtime_error("atomvec expression cannot be empty: " + std::string(text));
  }
  statement.expression = expression;
  interpret_options(option_text, statement);
  validate_format(statement);
  validate_checks(statement.checks);
  return statement;
}

// A name stands in its expression as it is, but for backslashes between quotes.
bool may_name(const DslStatement& statement, std::string_view property) {
  const auto may_stand_in = [property](std::string_view text) {
    return text.find(property) != std::string_view::npos ||
           text.find('\\') != std::string_view::npos;
  };
  return may_stand_in(statement.expression) || may_stand_in(statement.sum_text);
}

}  // namespace vqvec
