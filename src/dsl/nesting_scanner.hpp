// Tracks quotes, escapes and parentheses while a text is read byte by byte. Statements, calls and
// arguments are all split by these rules.
#ifndef VQVEC_DSL_NESTING_SCANNER_HPP
#define VQVEC_DSL_NESTING_SCANNER_HPP

#include <cstddef>

namespace vqvec {

class NestingScanner {
 public:
  // Takes the next byte. True if it belongs to the structure: neither a quote nor inside quotes.
  // Inside quotes a backslash escapes the byte after it; outside it has no meaning.
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

  // The number of parentheses open after the bytes taken so far. A surplus ')' is ignored.
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
