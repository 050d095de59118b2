#include "taskstore/line_reader.hpp"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <ios>
#include <system_error>
#include <utility>

#include "dsl/lexical.hpp"

namespace vqvec {
namespace {

constexpr std::size_t buffer_size = std::size_t{32} * 1024;

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
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) {
    return;  // opening a FIFO would wait for a writer
  }
  file_buffer_ = std::make_unique_for_overwrite<char[]>(buffer_size);
  buffer_ = std::make_unique_for_overwrite<char[]>(buffer_size);
  capacity_ = buffer_size;
  file_.pubsetbuf(file_buffer_.get(), buffer_size);
  file_.open(path, std::ios::in);
}

bool LineReader::next_line(std::string_view& line) {
  Found found = search_line();
  while (found == Found::full_buffer) {
    grow_buffer();
    found = search_line();
  }
  line = take_line();
  return found != Found::nothing;
}

bool LineReader::next_line_start(std::size_t words, std::string_view& line) {
  Found found = search_line();
  if (found != Found::full_buffer) {
    line = take_line();
    return found != Found::nothing;
  }
  FirstWords first_words(words);
  for (; found == Found::full_buffer; found = search_line()) {
    first_words.add(take_buffer());
  }
  first_words.add(take_line());
  line_start_ = std::move(first_words).text();
  line = line_start_;
  return !has_failed_;
}

void LineReader::skip_line() {
  while (search_line() == Found::full_buffer) {
    take_buffer();
  }
  take_line();
}

// Reads on until the whole next line is in hand, or as much of it as the buffer holds.
LineReader::Found LineReader::search_line() {
  line_size_ = 0;
  for (;;) {
    const char* const line = buffer_.get() + begin_;
    const std::size_t in_hand = end_ - begin_;
    const void* const line_feed = in_hand == line_size_
                                      ? nullptr
                                      : std::memchr(line + line_size_, '\n', in_hand - line_size_);
    if (line_feed != nullptr) {
      line_size_ = static_cast<std::size_t>(static_cast<const char*>(line_feed) - line);
      return Found::line_feed;
    }
    line_size_ = in_hand;
    if (in_hand > 0 && in_hand == capacity_) {
      return Found::full_buffer;
    }
    if (!fill()) {
      line_size_ = end_ - begin_;
      return line_size_ == 0 ? Found::nothing : Found::end;
    }
  }
}

std::string_view LineReader::take_line() {
  const std::string_view line(buffer_.get() + begin_, line_size_);
  begin_ = std::min(end_, begin_ + line_size_ + 1);
  return line;
}

std::string_view LineReader::take_buffer() {
  const std::string_view bytes(buffer_.get() + begin_, end_ - begin_);
  begin_ = end_;
  return bytes;
}

void LineReader::grow_buffer() {
  auto larger = std::make_unique_for_overwrite<char[]>(2 * capacity_);
  std::memcpy(larger.get(), buffer_.get() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  capacity_ *= 2;
  buffer_ = std::move(larger);
}

// Moves the bytes in hand to the front of the buffer and reads behind them, once. False at the end
// of the file and at a read error; then the bytes in hand may be half a line and are dropped.
bool LineReader::fill() {
  if (!file_.is_open()) {
    return false;
  }
  std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  try {
    if (file_.sgetc() != std::filebuf::traits_type::eof()) {
      const auto room = static_cast<std::streamsize>(capacity_ - end_);
      const auto size = file_.sgetn(buffer_.get() + end_, std::min(room, file_.in_avail()));
      end_ += static_cast<std::size_t>(size);
      return true;
    }
  } catch (const std::ios_base::failure&) {
    has_failed_ = true;
    end_ = 0;
  }
  file_.close();
  return false;
}

}  // namespace vqvec
