#include "app/console.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include "tests/app/program_call.hpp"

namespace vqvec {
namespace {

// Usage

std::string printed_usage(const char* program_name) {
  testing::internal::CaptureStdout();
  print_usage(program_name);
  return testing::internal::GetCapturedStdout();
}

TEST(PrintUsage, IsSevenLines) {
  EXPECT_EQ(printed_usage("vqvec"),
            R"(Usage:
  vqvec atom --dsl '<target> = <expr> [options]' [--values-out file] [--record-kv file]

Examples:
  vqvec atom --dsl 'charge.resp2 = mean(scrf:charge.resp, vacuum:charge.resp) --check same_atoms --sum @scrf.charge --out resp2.extxyz'

Vector refs use task:prop and map to atoms.N.prop in .vorq.values.kv.
)");
}

struct NameCase {
  const char* name;
  std::string program_name;
};
const std::vector<NameCase> name_cases = {
    {"Plain", "vqvec"},
    {"Path", "../bin/vqvec"},
    {"AbsolutePath", "/opt/my tools/vqvec"},
    {"OtherName", "av"},
    {"Empty", ""},
    {"AnyBytes", "電荷\xff%s\\n'"},
};
class UsageName : public testing::TestWithParam<NameCase> {};

TEST_P(UsageName, IsTakenAsItIs) {
  const std::string& program_name = GetParam().program_name;
  EXPECT_EQ(printed_usage(program_name.c_str()), usage_of(program_name));
}
INSTANTIATE_TEST_SUITE_P(Names, UsageName, testing::ValuesIn(name_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Errors

struct ErrorCase {
  const char* name;
  std::string message;
  std::string expected;
};
const std::vector<ErrorCase> error_cases = {
    {"Message", "--dsl requires a value", "\xe9\x94\x99\xe8\xaf\xaf: --dsl requires a value\n"},
    {"EmptyMessage", "", "\xe9\x94\x99\xe8\xaf\xaf: \n"},
    {"SeveralLinesAreLeftAsTheyAre", "a\nb\n", "\xe9\x94\x99\xe8\xaf\xaf: a\nb\n\n"},
    {"AnyBytes", "電荷\xff%s\\n", "\xe9\x94\x99\xe8\xaf\xaf: 電荷\xff%s\\n\n"},
    {"LongMessage", std::string(10'000, 'x'),
     "\xe9\x94\x99\xe8\xaf\xaf: " + std::string(10'000, 'x') + "\n"},
};
class PrintedError : public testing::TestWithParam<ErrorCase> {};

TEST_P(PrintedError, IsOneLineOnStandardError) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  print_error(GetParam().message.c_str());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), GetParam().expected);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}
INSTANTIATE_TEST_SUITE_P(Messages, PrintedError, testing::ValuesIn(error_cases),
                         [](const auto& one) { return std::string(one.param.name); });

// Line ends

// Counts how often it is flushed.
class CountingBuffer : public std::stringbuf {
 public:
  int flushes() const { return flushes_; }

 private:
  int sync() override {
    ++flushes_;
    return std::stringbuf::sync();
  }

  int flushes_ = 0;
};

// A locale in which a newline is another character.
class OtherNewline : public std::ctype<char> {
 private:
  char do_widen(char c) const override { return c == '\n' ? '|' : c; }
};

TEST(WriteLineEndAndFlush, WritesOneLineFeedAndFlushesOnce) {
  CountingBuffer buffer;
  std::ostream stream(&buffer);
  stream << "text";
  write_line_end_and_flush(stream);
  EXPECT_EQ(buffer.str(), "text\n");
  EXPECT_EQ(buffer.flushes(), 1);
}

TEST(WriteLineEndAndFlush, TakesTheNewlineOfTheStreamsLocale) {
  CountingBuffer buffer;
  std::ostream stream(&buffer);
  stream.imbue(std::locale(std::locale::classic(), new OtherNewline));
  write_line_end_and_flush(stream);
  EXPECT_EQ(buffer.str(), "|");
}

// The console of a whole process. Standard error must not have been written to before, so each of
// these tests starts the test program anew.

// Leads standard error into a socket that keeps the writes apart.
class ErrorWrites {
 public:
  ErrorWrites() {
    if (socketpair(AF_UNIX, SOCK_DGRAM, 0, sockets_) != 0) {
      std::abort();
    }
    dup2(sockets_[1], STDERR_FILENO);
  }

  // Those that came since the last call.
  std::vector<std::string> take() const {
    std::vector<std::string> writes;
    char bytes[8'192];
    for (;;) {
      const ssize_t size = recv(sockets_[0], bytes, sizeof bytes, MSG_DONTWAIT);
      if (size <= 0) {
        return writes;
      }
      writes.emplace_back(bytes, static_cast<std::size_t>(size));
    }
  }

 private:
  int sockets_[2] = {};
};

using Lines = std::vector<std::string>;

class PrepareConsoleDeathTest : public testing::Test {
 protected:
  PrepareConsoleDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

[[noreturn]] void exit_with(bool is_good) {
  _exit(is_good ? 0 : 1);
}

[[noreturn]] void write_two_lines() {
  const ErrorWrites writes;
  prepare_console();
  print_error(std::string(5'000, 'x').c_str());
  print_error("second line");
  exit_with(writes.take() == Lines{"\xe9\x94\x99\xe8\xaf\xaf: " + std::string(5'000, 'x') + "\n",
                                   "\xe9\x94\x99\xe8\xaf\xaf: second line\n"});
}

[[noreturn]] void raise_signals_of_failed_writes() {
  const ErrorWrites writes;
  prepare_console();
  std::raise(SIGPIPE);
  std::raise(SIGXFSZ);
  print_error("still there");
  exit_with(writes.take() == Lines{"\xe9\x94\x99\xe8\xaf\xaf: still there\n"});
}

[[noreturn]] void raise_another_signal() {
  prepare_console();
  std::raise(SIGTERM);
  exit_with(false);
}

TEST_F(PrepareConsoleDeathTest, LetsAnErrorLineReachStandardErrorInOneWrite) {
  EXPECT_EXIT(write_two_lines(), testing::ExitedWithCode(0), "");
}

TEST_F(PrepareConsoleDeathTest, LeavesSignalsOfFailedWritesWithoutEffect) {
  EXPECT_EXIT(raise_signals_of_failed_writes(), testing::ExitedWithCode(0), "");
}

TEST_F(PrepareConsoleDeathTest, LeavesOtherSignalsAlone) {
  EXPECT_EXIT(raise_another_signal(), testing::KilledBySignal(SIGTERM), "");
}

}  // namespace
}  // namespace vqvec
