// The `atom` command: one statement, from its text to the files and the report line.
#ifndef VQVEC_APP_ATOM_COMMAND_HPP
#define VQVEC_APP_ATOM_COMMAND_HPP

namespace vqvec {

// Takes the whole command line; its own options begin at argv[2]. Returns the exit status: 0 after
// a full run and after the usage was asked for, 1 after the usage because there is no statement.
// Throws on every failure; what was written by then stays.
int run_atom_command(int argc, char** argv);

}  // namespace vqvec

#endif  // VQVEC_APP_ATOM_COMMAND_HPP
