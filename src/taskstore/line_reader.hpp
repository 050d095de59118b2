// Reading a task's text files line by line through one small buffer, whatever their size. A file
// that is absent or unreadable, or a directory, has no lines; only running out of memory is an
// exception. The caller must not name a FIFO: opening it would wait for a writer.
#ifndef VQVEC_TASKSTORE_LINE_READER_HPP
#define VQVEC_TASKSTORE_LINE_READER_HPP

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/file.hpp"

namespace vqvec {

class LineReader {
 public:
  explicit LineReader(const std::string& path);

  // How much of the file is in the buffer and not read yet.
  std::size_t buffered_size() const { return buffered_.size(); }

  // Sets `line` to the next line without its line feed, which the last line may lack. False at the
  // end of the file, or at a read error, which drops the line that it cut. The view is valid until
  // the next call. Of a line that does not fit into the buffer, only the first `most_bytes` are
  // kept: a file may hold a line without end.
  bool next_line(std::string_view& line, std::size_t most_bytes = std::string_view::npos);

 private:
  // A part of a line.
  struct Piece {
    std::string_view bytes;
    bool is_last;
  };

  bool next_piece(Piece& piece);
  bool fill();

  static constexpr std::size_t buffer_size = 32768;

  // Uninitialised: clearing 32 KiB would slow down small files.
  std::array<char, buffer_size> buffer_;
  std::string_view buffered_;  // not read yet
  File file_;                  // null if there is nothing to read
  bool has_failed_ = false;
  std::string line_;  // one that does not fit into the buffer
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_LINE_READER_HPP
