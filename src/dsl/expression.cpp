#include "dsl/expression.hpp"

#include <stdexcept>
#include <utility>

#include "dsl/call.hpp"
#include "dsl/lexical.hpp"
#include "dsl/nesting_scanner.hpp"

namespace vqvec {
namespace {

// One pass over an argument text that finds its pieces and, within them, all nested calls.
class ArgumentReader {
 public:
  ArgumentReader(std::string_view text, std::size_t depth) : text_(text), depth_(depth) {}

  std::vector<Expression> read() {
    lists_.emplace_back();
    for (std::size_t i = 0; i < text_.size(); ++i) {
      if (!scanner_.take(text_[i])) {
        continue;
      }
      if (text_[i] == '(') {
        open_list(i);
      } else if (text_[i] == ')' && lists_.size() > 1) {
        close_list(i);
      } else if (text_[i] == ',') {
        finish_piece(i);
      }
    }
    lists_.resize(1);  // lists never closed are part of the last piece of the outermost one
    finish_last_piece(text_.size());
    return std::move(lists_.front().finished);
  }

 private:
  // A piece of a list. Only its first parenthesis can make it a call.
  struct Piece {
    std::size_t begin = 0;
    std::size_t open = std::string_view::npos;   // its first '('
    std::size_t close = std::string_view::npos;  // the matching ')'
    std::vector<Expression> arguments = {};      // the list between them
  };
  struct List {
    std::vector<Expression> finished = {};
    Piece piece = {};  // the one being read
  };

  void open_list(std::size_t position) {
    if (depth_ + scanner_.depth() > max_nesting) {
      throw std::runtime_error("expression is nested more than " + std::to_string(max_nesting) +
                               " parentheses deep");
    }
    Piece& outer = lists_.back().piece;
    if (outer.open == std::string_view::npos) {
      outer.open = position;
    }
    lists_.push_back({{}, Piece{.begin = position + 1}});
  }

  void close_list(std::size_t position) {
    finish_last_piece(position);
    std::vector<Expression> arguments = std::move(lists_.back().finished);
    lists_.pop_back();
    Piece& outer = lists_.back().piece;
    if (outer.close == std::string_view::npos) {
      outer.close = position;
      outer.arguments = std::move(arguments);
    }
  }

  void finish_piece(std::size_t end) {
    List& list = lists_.back();
    list.finished.push_back(make_expression(list.piece, end));
    list.piece = Piece{.begin = end + 1};
  }

  // An empty piece after the last comma is not an argument.
  void finish_last_piece(std::size_t end) {
    const std::size_t begin = lists_.back().piece.begin;
    if (!trim(text_.substr(begin, end - begin)).empty()) {
      finish_piece(end);
    }
  }

  Expression make_expression(Piece& piece, std::size_t end) const {
    Expression expression{.text = trim(text_.substr(piece.begin, end - piece.begin)),
                          .depth = depth_ + lists_.size() - 1};
    if (piece.close == std::string_view::npos || &expression.text.back() != &text_[piece.close]) {
      return expression;
    }
    const std::string_view name = trim(text_.substr(piece.begin, piece.open - piece.begin));
    if (!name.empty() && is_function_name(name)) {
      expression.function = to_lower(name);
      expression.arguments = std::move(piece.arguments);
    }
    return expression;
  }

  std::string_view text_;
  std::size_t depth_;  // parentheses open around the text
  NestingScanner scanner_;
  std::vector<List> lists_;  // those still open, outermost first
};

}  // namespace

Expression parse_expression(std::string_view text, std::size_t depth) {
  FunctionCall call = parse_function_call(trim(text));
  if (call.name.empty()) {
    return {.text = text, .depth = depth};
  }
  // The parentheses and quotes balance, so they also do within each argument.
  return {text, std::move(call.name), split_call_arguments(call.argument_text, depth + 1), depth};
}

Expression parse_expression(const char* text, std::size_t depth) {
  return parse_expression(std::string_view(text), depth);
}

std::vector<Expression> split_call_arguments(std::string_view text, std::size_t depth) {
  return ArgumentReader(text, depth).read();
}

std::vector<Expression> split_call_arguments(const char* text, std::size_t depth) {
  return split_call_arguments(std::string_view(text), depth);
}

}  // namespace vqvec
