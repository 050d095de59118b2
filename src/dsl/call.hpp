// Recognising function calls in expression text and splitting their arguments.
#ifndef VQVEC_DSL_CALL_HPP
#define VQVEC_DSL_CALL_HPP

#include <string>
#include <string_view>
#include <vector>

namespace vqvec {

// A whole text that is exactly one call `name(arguments)`. An empty name: the text is not a call.
struct FunctionCall {
  std::string name;                // lower-cased
  std::string_view argument_text;  // a view of the parsed text, between the outer parentheses
};

// Fails with "unbalanced function expression: " + text when the text has the outer shape of a call
// (a name, '(' and at the very end ')') but its parentheses or quotes do not balance.
FunctionCall parse_function_call(std::string_view text);
FunctionCall parse_function_call(const char* text);
FunctionCall parse_function_call(std::string&& text) = delete;

// The trimmed pieces between the commas outside quotes and parentheses. An empty piece counts,
// except behind the last comma. Quotes stay.
std::vector<std::string_view> split_call_arguments(std::string_view text);
std::vector<std::string_view> split_call_arguments(const char* text);
std::vector<std::string_view> split_call_arguments(std::string&& text) = delete;

// True for a text of letters, digits and '_' only.
bool is_function_name(std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_DSL_CALL_HPP
