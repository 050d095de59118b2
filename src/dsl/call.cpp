#include "dsl/call.hpp"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "dsl/lexical.hpp"
#include "dsl/nesting_scanner.hpp"

namespace vqvec {
namespace {

// Where the parenthesis at the front of a text is closed: in `(a)` at its end, in `(a)+g(b)`
// earlier.
enum class Closing { at_end, earlier, never };

Closing find_closing(std::string_view parenthesised) {
  NestingScanner scanner;
  for (std::size_t i = 0; i + 1 < parenthesised.size(); ++i) {
    if (scanner.take(parenthesised[i]) && scanner.depth() == 0) {
      return Closing::earlier;
    }
  }
  scanner.take(parenthesised.back());
  return scanner.is_balanced() ? Closing::at_end : Closing::never;
}

}  // namespace

bool is_function_name(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
  });
}

FunctionCall parse_function_call(std::string_view text) {
  const std::string_view trimmed = trim(text);
  const auto open = trimmed.find('(');
  if (open == std::string_view::npos || open == 0 || trimmed.back() != ')') {
    return {};
  }
  const std::string_view name = trim(trimmed.substr(0, open));
  if (!is_function_name(name)) {
    return {};
  }
  const Closing closing = find_closing(trimmed.substr(open));
  if (closing == Closing::earlier) {
    return {};
  }
  if (closing == Closing::never) {
    throw std::runtime_error("unbalanced function expression: " + std::string(text));
  }
  return {to_lower(name), trimmed.substr(open + 1, trimmed.size() - open - 2)};
}

FunctionCall parse_function_call(const char* text) {
  return parse_function_call(std::string_view(text));
}

}  // namespace vqvec
