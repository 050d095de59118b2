#include "dsl/option_words.hpp"

#include <stdexcept>
#include <utility>

#include "dsl/lexical.hpp"

namespace vqvec {
namespace {

class WordSplitter {
 public:
  explicit WordSplitter(std::string_view text) : text_(text) {}

  std::vector<std::string> split() {
    for (; position_ < text_.size(); ++position_) {
      take(text_[position_]);
    }
    end_word();
    return std::move(words_);
  }

 private:
  void take(char c) {
    if (c == '\\' && escapes(next())) {
      append(text_[++position_]);
    } else if (quote_ != '\0') {
      take_quoted(c);
    } else if (c == '\'' || c == '"') {
      quote_ = c;
      has_started_ = true;
    } else if (is_space(c)) {
      end_word();
    } else {
      append(c);
    }
  }

  void take_quoted(char c) {
    if (c == quote_) {
      quote_ = '\0';
    } else {
      append(c);
    }
  }

  // The byte after the current one; at the end a NUL, which a backslash does not escape.
  char next() const { return position_ + 1 < text_.size() ? text_[position_ + 1] : '\0'; }

  // True if a backslash escapes this byte here.
  bool escapes(char c) const {
    switch (quote_) {
      case '\'':
        return false;
      case '"':
        return c == '"' || c == '\\';
      default:
        return is_space(c) || c == '"' || c == '\'' || c == '\\';
    }
  }

  void append(char c) {
    word_ += c;
    has_started_ = true;
  }

  void end_word() {
    if (has_started_) {
      words_.push_back(std::exchange(word_, {}));
    }
    has_started_ = false;
  }

  std::string_view text_;
  std::size_t position_ = 0;
  char quote_ = '\0';  // the open quote
  bool has_started_ = false;
  std::string word_;
  std::vector<std::string> words_;
};

}  // namespace

std::vector<std::string> split_option_words(std::string_view text) {
  return WordSplitter(text).split();
}

const std::string& take_option_value(const std::vector<std::string>& words, std::size_t& index,
                                     std::string_view option_name) {
  if (index + 1 >= words.size()) {
    throw std::runtime_error(std::string(option_name) + " requires a value");
  }
  return words[++index];
}

}  // namespace vqvec
