// Calling the program's functions with a command line, and what they print on the two streams.
#ifndef VQVEC_TESTS_APP_PROGRAM_CALL_HPP
#define VQVEC_TESTS_APP_PROGRAM_CALL_HPP

#include <gtest/gtest.h>

#include <exception>
#include <ostream>
#include <string>
#include <vector>

namespace vqvec {

// The usage text of a program of this name, in full.
inline std::string usage_of(const std::string& program_name) {
  return "Usage:\n  " + program_name +
         " atom --dsl '<target> = <expr> [options]' [--values-out file] [--record-kv file]\n\n"
         "Examples:\n  " +
         program_name +
         " atom --dsl 'charge.resp2 = mean(scrf:charge.resp, vacuum:charge.resp) --check "
         "same_atoms --sum @scrf.charge --out resp2.extxyz'\n\n"
         "Vector refs use task:prop and map to atoms.N.prop in .vorq.values.kv.\n";
}

struct Outcome {
  int status = -1;      // stays so when the call throws
  std::string failure;  // the message of what it throws
  std::string out;
  std::string err;

  bool operator==(const Outcome&) const = default;
};

// For the messages of failed comparisons.
inline void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << "status " << outcome.status << ", failure [" << outcome.failure << "], out ["
          << outcome.out << "], err [" << outcome.err << "]";
}

// Calls run_atom_command or dispatch. The words include the program's name.
inline Outcome call(int (*function)(int, char**), std::vector<std::string> words) {
  std::vector<char*> argv;
  for (std::string& word : words) {
    argv.push_back(word.data());
  }
  argv.push_back(nullptr);
  Outcome outcome;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  try {
    outcome.status = function(static_cast<int>(words.size()), argv.data());
  } catch (const std::exception& failure) {
    outcome.failure = failure.what();
  }
  outcome.out = testing::internal::GetCapturedStdout();
  outcome.err = testing::internal::GetCapturedStderr();
  return outcome;
}

}  // namespace vqvec

#endif  // VQVEC_TESTS_APP_PROGRAM_CALL_HPP
