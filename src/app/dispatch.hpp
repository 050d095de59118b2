// The modes of the program.
#ifndef VQVEC_APP_DISPATCH_HPP
#define VQVEC_APP_DISPATCH_HPP

namespace vqvec {

// Chooses by the first argument alone and returns the exit status. Throws what the mode throws.
int dispatch(int argc, char** argv);

}  // namespace vqvec

#endif  // VQVEC_APP_DISPATCH_HPP
