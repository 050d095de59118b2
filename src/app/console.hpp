// What the program says on its two console streams.
#ifndef VQVEC_APP_CONSOLE_HPP
#define VQVEC_APP_CONSOLE_HPP

#include <ostream>

namespace vqvec {

// The usage text, on standard output. It names only the options that most need.
void print_usage(const char* program_name);

// "错误: " and the message as one line, on standard error.
void print_error(const char* message);

// Ends every line on standard error and the report line.
void write_line_end_and_flush(std::ostream& stream);

// Makes an error line reach standard error in one write, and a failed write a failure that can be
// reported instead of a signal. Called once, first of all.
void prepare_console();

}  // namespace vqvec

#endif  // VQVEC_APP_CONSOLE_HPP
