// Recognising function calls in expression text.
#ifndef VQVEC_DSL_CALL_HPP
#define VQVEC_DSL_CALL_HPP

#include <string>
#include <string_view>

namespace vqvec {

// A text that is exactly one call, `name(arguments)`. The name is empty if the text is not a call.
struct FunctionCall {
  std::string name;                // lower-cased
  std::string_view argument_text;  // a view of the parsed text, between the outer parentheses
};

// Fails with "unbalanced function expression: " + text when the text looks like a call (a name, '('
// and a final ')') but its parentheses or quotes do not balance.
FunctionCall parse_function_call(std::string_view text);
FunctionCall parse_function_call(const char* text);
FunctionCall parse_function_call(std::string&& text) = delete;

// True for a text of letters, digits and '_' only.
bool is_function_name(std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_DSL_CALL_HPP
