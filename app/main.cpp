// The process entry: the one place where a failure becomes an error line and exit status 1.
#include <exception>

#include "app/console.hpp"
#include "app/dispatch.hpp"

int main(int argc, char** argv) {
  try {
    vqvec::prepare_console();
    return vqvec::dispatch(argc, argv);
  } catch (const std::exception& failure) {
    vqvec::print_error(failure.what());
    return 1;
  }
}
