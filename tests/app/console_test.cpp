#include "app/console.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
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

// The whole process

// What a child process leaves behind.
struct Child {
  int status = 0;
  std::vector<std::string> messages;  // one for every write on standard error
};

// Runs the function in a process of its own, with standard error going to a socket that keeps
// writes apart.
Child run_in_child(void (*function)()) {
  int sockets[2] = {};
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, sockets), 0);
  const pid_t child = fork();
  EXPECT_GE(child, 0);
  if (child == 0) {
    dup2(sockets[1], STDERR_FILENO);
    function();
    _exit(0);
  }
  Child result;
  waitpid(child, &result.status, 0);
  char message[8'192];
  for (;;) {
    const ssize_t size = recv(sockets[0], message, sizeof message, MSG_DONTWAIT);
    if (size <= 0) {
      break;
    }
    result.messages.emplace_back(message, static_cast<std::size_t>(size));
  }
  close(sockets[0]);
  close(sockets[1]);
  return result;
}

TEST(PrepareConsole, LetsAnErrorLineReachStandardErrorInOneWrite) {
  const Child child = run_in_child([] {
    prepare_console();
    print_error(std::string(5'000, 'x').c_str());
    print_error("second line");
  });
  EXPECT_EQ(child.status, 0);
  const std::vector<std::string> expected = {
      "\xe9\x94\x99\xe8\xaf\xaf: " + std::string(5'000, 'x') + "\n",
      "\xe9\x94\x99\xe8\xaf\xaf: second line\n"};
  EXPECT_EQ(child.messages, expected);
}

TEST(PrepareConsole, LeavesSignalsOfFailedWritesWithoutEffect) {
  const Child child = run_in_child([] {
    prepare_console();
    std::raise(SIGPIPE);
    std::raise(SIGXFSZ);
    print_error("still there");
  });
  EXPECT_EQ(child.status, 0);
  const std::vector<std::string> expected = {"\xe9\x94\x99\xe8\xaf\xaf: still there\n"};
  EXPECT_EQ(child.messages, expected);
}

TEST(PrepareConsole, LeavesOtherSignalsAlone) {
  const Child child = run_in_child([] {
    prepare_console();
    std::raise(SIGTERM);
  });
  EXPECT_TRUE(WIFSIGNALED(child.status));
  EXPECT_EQ(WTERMSIG(child.status), SIGTERM);
}

}  // namespace
}  // namespace vqvec
