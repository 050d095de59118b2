// One pass over an argument text that finds its pieces and, within them, all nested calls.
#ifndef VQVEC_DSL_ARGUMENT_READER_HPP
#define VQVEC_DSL_ARGUMENT_READER_HPP

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "dsl/expression.hpp"
#include "dsl/nesting_scanner.hpp"

namespace vqvec {

class ArgumentReader {
 public:
  // Puts the nodes into `storage`, which must be empty and is never moved afterwards.
  ArgumentReader(std::string_view text, std::vector<Expression>& storage);

  // The pieces at the top level of the text, in their order.
  std::span<const Expression> read();

  // The greatest number of parentheses open at one place; known after read().
  std::size_t deepest() const { return deepest_; }

 private:
  // The piece of a list that is being read. Only its first parenthesis can make it a call.
  struct Piece {
    std::size_t begin = 0;
    std::size_t open = std::string_view::npos;   // its first '('
    std::size_t close = std::string_view::npos;  // the ')' to it
    std::span<const Expression> arguments = {};  // what stands between them
  };
  struct List {
    std::size_t first_finished = 0;  // where this list's pieces begin in finished_
    Piece piece;
  };

  void open_list(std::size_t position);
  void close_list(std::size_t position);
  void finish_piece(std::size_t end);
  void finish_last_piece(std::size_t end);
  std::span<const Expression> store_list();
  Expression make_expression(const Piece& piece, std::size_t end) const;

  std::string_view text_;
  std::vector<Expression>& storage_;
  NestingScanner scanner_;
  std::vector<List> lists_;           // those still open, outermost first
  std::vector<Expression> finished_;  // pieces of the open lists
  std::size_t deepest_ = 0;
};

}  // namespace vqvec

#endif  // VQVEC_DSL_ARGUMENT_READER_HPP
