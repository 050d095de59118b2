#include "dsl/argument_reader.hpp"

#include <algorithm>

#include "dsl/call.hpp"
#include "dsl/lexical.hpp"

namespace vqvec {

ArgumentReader::ArgumentReader(std::string_view text, std::vector<Expression>& storage)
    : text_(text), storage_(storage) {
  const auto ends_or_opens_piece = [](char c) { return c == ',' || c == '('; };
  const auto pieces = std::count_if(text.begin(), text.end(), ends_or_opens_piece) + 1;
  storage_.reserve(static_cast<std::size_t>(pieces));  // spans into it must stay valid
}

std::span<const Expression> ArgumentReader::read() {
  lists_.push_back({});
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
  if (lists_.size() > 1) {  // never closed: what was read inside belongs to the outermost piece
    finished_.resize(lists_[1].first_finished);
    lists_.resize(1);
  }
  finish_last_piece(text_.size());
  return store_list();
}

void ArgumentReader::open_list(std::size_t position) {
  Piece& outer = lists_.back().piece;
  if (outer.open == std::string_view::npos) {
    outer.open = position;
  }
  lists_.push_back({finished_.size(), Piece{.begin = position + 1}});
  deepest_ = std::max(deepest_, scanner_.depth());
}

void ArgumentReader::close_list(std::size_t position) {
  finish_last_piece(position);
  const std::span<const Expression> arguments = store_list();
  lists_.pop_back();
  Piece& outer = lists_.back().piece;
  if (outer.close == std::string_view::npos) {
    outer.close = position;
    outer.arguments = arguments;
  }
}

void ArgumentReader::finish_piece(std::size_t end) {
  Piece& piece = lists_.back().piece;
  finished_.push_back(make_expression(piece, end));
  piece = Piece{.begin = end + 1};
}

// An empty piece behind the last comma does not count.
void ArgumentReader::finish_last_piece(std::size_t end) {
  const std::size_t begin = lists_.back().piece.begin;
  if (!trim(text_.substr(begin, end - begin)).empty()) {
    finish_piece(end);
  }
}

std::span<const Expression> ArgumentReader::store_list() {
  const auto first = finished_.begin() + static_cast<std::ptrdiff_t>(lists_.back().first_finished);
  const std::size_t stored = storage_.size();
  storage_.insert(storage_.end(), first, finished_.end());
  finished_.erase(first, finished_.end());
  return std::span<const Expression>(storage_).subspan(stored);
}

Expression ArgumentReader::make_expression(const Piece& piece, std::size_t end) const {
  const std::string_view text = trim(text_.substr(piece.begin, end - piece.begin));
  if (piece.close == std::string_view::npos || &text.back() != &text_[piece.close]) {
    return {text, {}, {}};
  }
  const std::string_view name = trim(text_.substr(piece.begin, piece.open - piece.begin));
  if (!is_function_name(name)) {
    return {text, {}, {}};
  }
  return {text, name, name.empty() ? std::span<const Expression>() : piece.arguments};
}

}  // namespace vqvec
