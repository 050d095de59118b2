#include "app/dispatch.hpp"

#include <string>
#include <string_view>

#include "app/atom_command.hpp"
#include "app/console.hpp"

namespace vqvec {

int dispatch(int argc, char** argv) {
  if (argc <= 1) {
    print_usage(argc == 1 ? argv[0] : "vqvec");
    return 1;
  }
  const std::string_view mode = argv[1];
  if (mode == "-h" || mode == "--help") {
    print_usage(argv[0]);
    return 0;
  }
  if (mode == "atom") {
    return run_atom_command(argc, argv);
  }
  print_error(("unknown vqvec mode: " + std::string(mode)).c_str());
  print_usage(argv[0]);
  return 1;
}

}  // namespace vqvec
