#include "taskstore/line_reader.hpp"

#include <cerrno>
#include <filesystem>
#include <ios>
#include <system_error>

#include "taskstore/memory_failure.hpp"

namespace vqvec {

LineReader::LineReader(const std::string& path) {
  file_.pubsetbuf(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  if (file_.open(path, std::ios::in) == nullptr) {
    throw_if_out_of_memory(std::error_code(errno, std::generic_category()));
  }
}

// The buffered bytes up to the next line feed, or all of them. False at the end of the file.
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
  return !has_failed_;
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
