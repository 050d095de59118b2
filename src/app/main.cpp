// The process entry: the one place where a failure becomes an error line and exit status 1.
#include <cstdlib>
#include <exception>

#include "app/console.hpp"
#include "app/dispatch.hpp"

namespace {

// libstdc++ terminates when an allocation fails inside its noexcept directory code.
[[noreturn]] void report_and_exit() {  // coverage-exclude: script/torture comes here, unprofiled
  try {
    if (std::current_exception() != nullptr) {
      throw;
    }
  } catch (const std::exception& failure) {
    vqvec::print_error(failure.what());
    std::_Exit(EXIT_FAILURE);
  } catch (...) {  // NOLINT(bugprone-empty-catch)
  }
  vqvec::print_error(std::bad_exception().what());
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
