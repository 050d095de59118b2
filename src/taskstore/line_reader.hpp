// Reading a task's text files line by line through one small buffer, whatever their size. A file
// that is absent, unreadable or no regular file (a directory, a FIFO, a device) has no lines; only
// running out of memory is an exception.
#ifndef VQVEC_TASKSTORE_LINE_READER_HPP
#define VQVEC_TASKSTORE_LINE_READER_HPP

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace vqvec {

class LineReader {
 public:
  explicit LineReader(const std::string& path);

  // In bytes; 0 when there is no file.
  std::uintmax_t file_size() const { return file_size_; }

  // Sets `line` to the next line without its line feed; the last one counts without it too. False
  // at the end of the file, or at a read error, which drops the line that it cut. The view is valid
  // until the next call.
  bool next_line(std::string_view& line);

  // The same for who needs only the first words of a line (separated by white space). Of a line
  // that the buffer does not hold in one piece, which may be a line without end, only these are
  // kept, with one blank between them.
  bool next_line_start(std::size_t words, std::string_view& line);

  // Passes over the next line, if there is one.
  void skip_line();

 private:
  // A file buffer that shows what it holds: no byte is copied before a line is taken apart.
  class FileBuffer : public std::filebuf {
   public:
    std::string_view bytes() const { return {gptr(), static_cast<std::size_t>(egptr() - gptr())}; }
    void pass(std::size_t size) { gbump(static_cast<int>(size)); }
  };

  // A stretch of a line.
  struct Piece {
    std::string_view bytes;
    bool is_last;
  };

  bool next_piece(Piece& piece);
  bool fill();

  static constexpr std::size_t buffer_size = 32768;

  std::uintmax_t file_size_ = 0;
  std::array<char, buffer_size> buffer_;  // never cleared: small files would feel it
  FileBuffer file_;
  bool has_failed_ = false;
  std::string line_;  // one that came in several pieces
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_LINE_READER_HPP
