// The process entry: the one place where a failure becomes an error line and exit status 1.
#include <cstdlib>
#include <exception>
#include <new>

#include "app/console.hpp"
#include "app/dispatch.hpp"

namespace {

// The standard library itself ends the process when memory runs out while it lists a directory, and
// no longer knows why. That is a failure like any other; everything else comes to main's handler.
[[noreturn]] void report_and_exit() {  // uncounted: script/torture comes here, without a profile
  vqvec::print_error(std::bad_alloc().what());
  std::_Exit(EXIT_FAILURE);
}

}  // namespace

int main(int argc, char** argv) {
  std::set_terminate(report_and_exit);
  try {
    vqvec::prepare_console();
    return vqvec::dispatch(argc, argv);
  } catch (const std::exception& failure) {
    vqvec::print_error(failure.what());
    return EXIT_FAILURE;
  }
}
