// The program's only writers. Each text is written by one call on an unbuffered file, so that
// runs appending to the same file do not split each other's lines, and a full disk is noticed while
// it can still be reported. Missing parent directories are created; an empty path means no file.
#ifndef VQVEC_OUTPUT_TEXT_FILE_HPP
#define VQVEC_OUTPUT_TEXT_FILE_HPP

#include <string>
#include <string_view>

namespace vqvec {

// Appends the text, creating the file if necessary (also for an empty text).
// Fails with "could not create parent directory for '" + path + "': " + reason, "could not open
// file for appending: " + path, or "could not write file: " + path.
void append_text_file(const std::string& path, std::string_view text);

// Replaces the file's content. Fails in the same ways, with "could not open file for writing: " +
// path.
void write_text_file(const std::string& path, std::string_view text);

}  // namespace vqvec

#endif  // VQVEC_OUTPUT_TEXT_FILE_HPP
