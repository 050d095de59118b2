// The program's only writers. Each text goes to its file in one write on an unbuffered stream: runs
// that append to one file side by side do not tear each other's lines, and a full disk shows while
// it can still be reported. Missing parent directories are made; an empty path means no file.
#ifndef VQVEC_OUTPUT_TEXT_FILE_HPP
#define VQVEC_OUTPUT_TEXT_FILE_HPP

#include <string>
#include <string_view>

namespace vqvec {

// Puts the text behind what the file holds, making the file if need be (also for an empty text).
// Fails with "could not create parent directory for '" + path + "': " + reason, "could not open
// file for appending: " + path, or "could not write file: " + path.
void append_text_file(const std::string& path, std::string_view text);

// Replaces the file's content. Fails likewise, with "could not open file for writing: " + path.
void write_text_file(const std::string& path, std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_OUTPUT_TEXT_FILE_HPP
