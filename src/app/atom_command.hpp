// The `atom` command: runs one statement, from its text to the output files and the report line.
#ifndef VQVEC_APP_ATOM_COMMAND_HPP
#define VQVEC_APP_ATOM_COMMAND_HPP

namespace vqvec {

// Takes the whole command line; the command's own options begin at argv[2]. Returns the exit
// status: 0 after a full run and for a request for help, 1 if there is no statement. Throws on
// every failure; files already written remain.
int run_atom_command(int argc, char** argv);

}  // namespace vqvec

#endif  // VQVEC_APP_ATOM_COMMAND_HPP
