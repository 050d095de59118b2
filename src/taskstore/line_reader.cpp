#include "taskstore/line_reader.hpp"

#include <cerrno>
#include <filesystem>
#include <ios>
#include <system_error>
#include <utility>

#include "dsl/lexical.hpp"
#include "taskstore/memory_failure.hpp"

namespace vqvec {
namespace {

// The first words of a line that comes in pieces, with one blank between them.
class FirstWords {
 public:
  explicit FirstWords(std::size_t words) : words_(words) {}

  void add(std::string_view piece) {
    for (const char c : piece) {
      const bool is_in_word = !is_space(c);
      if (is_in_word && !was_in_word_ && words_begun_++ > 0 && words_begun_ <= words_) {
        text_ += ' ';
      }
      if (is_in_word && words_begun_ <= words_) {
        text_ += c;
      }
      was_in_word_ = is_in_word;
    }
  }

  std::string text() && { return std::move(text_); }

 private:
  std::size_t words_;
  std::size_t words_begun_ = 0;
  bool was_in_word_ = false;
  std::string text_;
};

}  // namespace

LineReader::LineReader(const std::string& path) {
  std::error_code error;  // of anything but a regular file: opening a FIFO would wait for a writer
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  require_memory(error);
  if (error) {
    return;
  }
  file_size_ = size;
  file_.pubsetbuf(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  if (file_.open(path, std::ios::in) == nullptr) {
    require_memory(std::error_code(errno, std::generic_category()));
  }
}

// The bytes in hand up to the next line feed, or all of them. False when there are no more.
inline bool LineReader::next_piece(Piece& piece) {
  if (file_.bytes().empty() && !fill()) {
    return false;
  }
  const std::string_view bytes = file_.bytes();
  const auto line_feed = bytes.find('\n');
  piece.is_last = line_feed != std::string_view::npos;
  piece.bytes = bytes.substr(0, line_feed);
  file_.pass(piece.bytes.size() + (piece.is_last ? 1 : 0));
  return true;
}

bool LineReader::next_line(std::string_view& line) {
  Piece piece;
  if (!next_piece(piece)) {
    return false;
  }
  if (piece.is_last) {
    line = piece.bytes;
    return true;
  }
  line_ = piece.bytes;
  while (!piece.is_last && next_piece(piece)) {
    line_ += piece.bytes;
  }
  line = line_;
  return !has_failed_;
}

bool LineReader::next_line_start(std::size_t words, std::string_view& line) {
  Piece piece;
  if (!next_piece(piece)) {
    return false;
  }
  if (piece.is_last) {
    line = piece.bytes;
    return true;
  }
  FirstWords first_words(words);
  first_words.add(piece.bytes);
  while (!piece.is_last && next_piece(piece)) {
    first_words.add(piece.bytes);
  }
  line_ = std::move(first_words).text();
  line = line_;
  return !has_failed_;
}

void LineReader::skip_line() {
  Piece piece;
  while (next_piece(piece) && !piece.is_last) {
  }
}

bool LineReader::fill() {
  try {
    return file_.sgetc() != std::filebuf::traits_type::eof();
  } catch (const std::ios_base::failure&) {  // a read error
    has_failed_ = true;
    return false;
  }
}

}  // namespace vqvec
