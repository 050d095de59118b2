// Reading a task's text files line by line through one small buffer, whatever their size. A file
// that is absent, unreadable or no regular file (a directory, a FIFO, a device) has no lines; only
// running out of memory is an exception.
#ifndef VQVEC_TASKSTORE_LINE_READER_HPP
#define VQVEC_TASKSTORE_LINE_READER_HPP

#include <cstddef>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace vqvec {

class LineReader {
 public:
  explicit LineReader(const std::string& path);

  // Sets `line` to the next line without its line feed; the last one counts without it too. False
  // at the end of the file, or at a read error, which drops the line that it cut. The view is valid
  // until the next call.
  bool next_line(std::string_view& line);

  // The same for who needs only the first words of a line (separated by white space): of a line too
  // long for the buffer only these are kept, with one blank between them.
  bool next_line_start(std::size_t words, std::string_view& line);

  // Passes over the next line, if there is one.
  void skip_line();

 private:
  // What stopped a search for a line feed.
  enum class Found { line_feed, full_buffer, end, nothing };

  Found search_line();
  std::string_view take_line();
  std::string_view take_buffer();
  bool fill();

  void grow_buffer();

  // Neither buffer is ever cleared: with ten thousand small files that would be felt.
  std::unique_ptr<char[]> file_buffer_;  // what one read of the file fills; outlives the file
  std::filebuf file_;
  std::unique_ptr<char[]> buffer_;  // the bytes in hand are [begin_, end_)
  std::size_t capacity_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t line_size_ = 0;  // what search_line found of the next line, without its line feed
  bool has_failed_ = false;
  std::string line_start_;
};

}  // namespace vqvec

#endif  // VQVEC_TASKSTORE_LINE_READER_HPP
