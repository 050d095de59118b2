// The program's modes.
#ifndef VQVEC_APP_DISPATCH_HPP
#define VQVEC_APP_DISPATCH_HPP

namespace vqvec {

// The first argument alone chooses the mode. Returns the exit status; throws what the mode throws.
int dispatch(int argc, char** argv);

}  // namespace vqvec

#endif  // VQVEC_APP_DISPATCH_HPP
