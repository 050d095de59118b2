#include "taskstore/line_reader.hpp"

#include <cerrno>
#include <system_error>

#include "taskstore/memory_failure.hpp"

namespace vqvec {

LineReader::LineReader(const std::string& path) : file_(open_file(path, "rb")) {
  if (!file_) {
    throw_if_out_of_memory(std::error_code(errno, std::generic_category()));
  }
}

// The buffered bytes up to the next line feed, or all of them. False at the end of the file.
inline bool LineReader::next_piece(Piece& piece) {
  if (buffered_.empty() && !fill()) {
    return false;
  }
  const auto line_feed = buffered_.find('\n');
  piece.is_last = line_feed != std::string_view::npos;
  piece.bytes = buffered_.substr(0, line_feed);
  buffered_.remove_prefix(piece.bytes.size() + (piece.is_last ? 1 : 0));
  return true;
}

bool LineReader::next_line(std::string_view& line, std::size_t most_bytes) {
  Piece piece;
  if (!next_piece(piece)) {
    return false;
  }
  if (piece.is_last) {
    line = piece.bytes;
    return true;
  }
  line_ = piece.bytes.substr(0, most_bytes);
  while (!piece.is_last && next_piece(piece)) {
    line_ += piece.bytes.substr(0, most_bytes - line_.size());
  }
  line = line_;
  return piece.is_last || !has_failed_;
}

bool LineReader::fill() {
  if (!file_) {
    return false;
  }
  buffered_ = {buffer_.data(), std::fread(buffer_.data(), 1, buffer_.size(), file_.get())};
  if (buffered_.size() < buffer_.size()) {
    has_failed_ = std::ferror(file_.get()) != 0;
    file_.reset();
  }
  return !buffered_.empty();
}

}  // namespace vqvec
