#include "app/console.hpp"

#include <csignal>
#include <cstdio>
#include <iostream>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace vqvec {
namespace {

[[maybe_unused]] void ignore_signal(int signal) {  // not every system has such signals
  static_cast<void>(std::signal(signal, SIG_IGN));
}

}  // namespace

void print_usage(const char* program_name) {
  std::cout << "Usage:\n"
            << "  " << program_name
            << " atom --dsl '<target> = <expr> [options]' [--values-out file] [--record-kv file]"
               "\n\n"
            << "Examples:\n"
            << "  " << program_name
            << " atom --dsl 'charge.resp2 = mean(scrf:charge.resp, vacuum:charge.resp)"
               " --check same_atoms --sum @scrf.charge --out resp2.extxyz'\n\n"
            << "Vector refs use task:prop and map to atoms.N.prop in .vorq.values.kv.\n";
}

void print_error(const char* message) {
  std::cerr << "错误: " << message;
  write_line_end_and_flush(std::cerr);
}

void write_line_end_and_flush(std::ostream& stream) {
  stream.put(stream.widen('\n')).flush();
}

void prepare_console() {
  // Large enough for a message that repeats a whole command line. Static, since the message may
  // report that memory ran out; untouched pages are never mapped.
  static char error_line[std::size_t{4} * 1024 * 1024];
  static_cast<void>(std::setvbuf(stderr, error_line, _IOFBF, sizeof error_line));
  std::cerr.unsetf(std::ios::unitbuf);
#ifdef _WIN32
  // Else each line would end in CR LF.
  static_cast<void>(_setmode(_fileno(stdout), _O_BINARY));
  static_cast<void>(_setmode(_fileno(stderr), _O_BINARY));
#endif
#ifdef SIGPIPE
  ignore_signal(SIGPIPE);
#endif
#ifdef SIGXFSZ
  ignore_signal(SIGXFSZ);
#endif
}

}  // namespace vqvec
