// Option words and their values, on the command line and in a statement.
#ifndef VQVEC_DSL_OPTION_WORDS_HPP
#define VQVEC_DSL_OPTION_WORDS_HPP

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vqvec {

// Splits as a shell does: white space separates, quotes and backslashes join. An unterminated quote
// extends to the end. A quoted empty text is a word.
std::vector<std::string> split_option_words(std::string_view text);

// Advances the index to the next word and returns it, whatever it looks like. Fails with
// option_name + " requires a value" if there is none.
const std::string& take_option_value(const std::vector<std::string>& words, std::size_t& index,
                                     std::string_view option_name);

}  // namespace vqvec

#endif  // VQVEC_DSL_OPTION_WORDS_HPP
