// Quotes, escapes and parentheses of a text that is read byte by byte: the one set of rules by
// which statements, calls and arguments are taken apart.
#ifndef VQVEC_DSL_NESTING_SCANNER_HPP
#define VQVEC_DSL_NESTING_SCANNER_HPP

#include <cstddef>

namespace vqvec {

class NestingScanner {
 public:
  // Takes the next byte and tells whether it is structure: neither a quote nor inside quotes.
  // Inside quotes a backslash hides the byte after it; outside it is a byte like any other.
  bool take(char c) {
    if (escape_next_) {
      escape_next_ = false;
      return false;
    }
    if (quote_ != '\0') {
      escape_next_ = c == '\\';
      if (c == quote_) {
        quote_ = '\0';
      }
      return false;
    }
    if (c == '\'' || c == '"') {
      quote_ = c;
      return false;
    }
    count_parenthesis(c);
    return true;
  }

  // Parentheses open after the bytes taken so far. A ')' too many is ignored.
  std::size_t depth() const { return depth_; }
  bool is_balanced() const { return depth_ == 0 && quote_ == '\0'; }

 private:
  void count_parenthesis(char c) {
    if (c == '(') {
      ++depth_;
    } else if (c == ')' && depth_ > 0) {
      --depth_;
    }
  }

  char quote_ = '\0';  // the quote that is open
  bool escape_next_ = false;
  std::size_t depth_ = 0;
};

}  // namespace vqvec

#endif  // VQVEC_DSL_NESTING_SCANNER_HPP
