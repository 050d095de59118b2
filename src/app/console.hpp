// Output on the two console streams.
#ifndef VQVEC_APP_CONSOLE_HPP
#define VQVEC_APP_CONSOLE_HPP

#include <ostream>

namespace vqvec {

// Prints the usage text on standard output. It names only the options that are needed most.
void print_usage(const char* program_name);

// Prints "错误: " and the message as one line on standard error.
void print_error(const char* message);

// Ends each line on standard error and the report line.
void write_line_end_and_flush(std::ostream& stream);

// Makes each error line a single write, and turns the signals of a failed write into failures that
// can be reported. Called once, before anything else.
void prepare_console();

}  // namespace vqvec

#endif  // VQVEC_APP_CONSOLE_HPP
