// Runs a program and cuts one of its transfers short: the N-th read or write (counted from 1,
// including readv and writev) moves at most BYTES bytes, as it may on any system. With `kill`, the
// program is killed when that call returns.
//
//   short_io read|write N BYTES go|kill PROGRAM [ARGUMENT...]
//
// Ends as the program ends, or with status 125 if this machine does not permit it.
#include <elf.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

constexpr int not_permitted = 125;

#if defined(__x86_64__)
struct Registers {
  user_regs_struct raw;
  unsigned long long call() const { return raw.orig_rax; }
  unsigned long long address() const { return raw.rsi; }
  unsigned long long size() const { return raw.rdx; }
  void set_size(unsigned long long size) { raw.rdx = size; }
};
constexpr unsigned long long call_read = 0;
constexpr unsigned long long call_write = 1;
constexpr unsigned long long call_readv = 19;
constexpr unsigned long long call_writev = 20;
#elif defined(__aarch64__)
struct Registers {
  user_regs_struct raw;
  unsigned long long call() const { return raw.regs[8]; }
  unsigned long long address() const { return raw.regs[1]; }
  unsigned long long size() const { return raw.regs[2]; }
  void set_size(unsigned long long size) { raw.regs[2] = size; }
};
constexpr unsigned long long call_read = 63;
constexpr unsigned long long call_write = 64;
constexpr unsigned long long call_readv = 65;
constexpr unsigned long long call_writev = 66;
#else
#error "short_io.cpp knows the registers of x86-64 and AArch64 only"
#endif

// The system calls of another process, one stop at a time.
class Tracee {
 public:
  explicit Tracee(pid_t process) : process_(process) {}

  // Runs to the next entry into a system call or return from one. False if the process has ended.
  bool run_to_call() {
    for (int signal = 0;;) {
      ptrace(PTRACE_SYSCALL, process_, 0L, static_cast<long>(signal));
      if (waitpid(process_, &status_, 0) != process_ || !WIFSTOPPED(status_)) {
        return false;
      }
      if (WSTOPSIG(status_) == (SIGTRAP | 0x80)) {
        return true;
      }
      signal = WSTOPSIG(status_) == SIGTRAP ? 0 : WSTOPSIG(status_);  // the trap follows its execve
    }
  }

  Registers registers() const {
    Registers all{};
    iovec place = {&all.raw, sizeof all.raw};
    ptrace(PTRACE_GETREGSET, process_, static_cast<long>(NT_PRSTATUS), &place);
    return all;
  }
  void set_registers(Registers all) const {
    iovec place = {&all.raw, sizeof all.raw};
    ptrace(PTRACE_SETREGSET, process_, static_cast<long>(NT_PRSTATUS), &place);
  }

  std::vector<iovec> pieces(const Registers& all) const {
    std::vector<iovec> copy(all.size());
    transfer(process_vm_readv, all, copy);
    return copy;
  }
  void set_pieces(const Registers& all, std::vector<iovec> pieces) const {
    transfer(process_vm_writev, all, pieces);
  }

  void end() const { kill(process_, SIGKILL); }
  int status() const { return status_; }

 private:
  template <typename Call>
  void transfer(Call call, const Registers& all, std::vector<iovec>& pieces) const {
    const std::size_t bytes = pieces.size() * sizeof(iovec);
    const iovec here = {pieces.data(), bytes};
    // NOLINTNEXTLINE: an address in the other process, which only the system uses
    const iovec there = {reinterpret_cast<void*>(all.address()), bytes};
    call(process_, &here, 1, &there, 1, 0);
  }

  pid_t process_;
  int status_ = 0;
};

struct Cut {
  unsigned long long plain_call;
  unsigned long long vector_call;
  unsigned long number;
  unsigned long long bytes;
  bool kills;
};

// Limits the call that the process has just entered to `bytes` bytes.
void perform_short(Tracee& tracee, const Cut& cut) {
  Registers all = tracee.registers();
  if (all.call() == cut.plain_call) {
    all.set_size(std::min(all.size(), cut.bytes));
    tracee.set_registers(all);
    tracee.run_to_call();
    return;
  }
  const std::vector<iovec> whole = tracee.pieces(all);
  std::vector<iovec> shorter = whole;
  unsigned long long left = cut.bytes;
  for (iovec& piece : shorter) {
    piece.iov_len = std::min<std::size_t>(piece.iov_len, left);
    left -= piece.iov_len;
  }
  tracee.set_pieces(all, shorter);
  if (tracee.run_to_call()) {
    tracee.set_pieces(all, whole);
  }
}

// Returns the wait status of the process.
int trace(pid_t process, const Cut& cut) {
  Tracee tracee(process);
  unsigned long number = 0;
  while (tracee.run_to_call()) {
    const unsigned long long call = tracee.registers().call();
    const bool is_counted = call == cut.plain_call || call == cut.vector_call;
    if (!is_counted || ++number != cut.number) {
      tracee.run_to_call();
      continue;
    }
    perform_short(tracee, cut);
    if (cut.kills) {
      tracee.end();
    }
  }
  return tracee.status();
}

[[noreturn]] void become(char** command) {
  if (ptrace(PTRACE_TRACEME, 0, 0L, 0L) != 0) {
    _exit(not_permitted);
  }
  raise(SIGSTOP);
  execv(command[0], command);
  _exit(not_permitted);
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int first_of_program = 5;
  if (argc <= first_of_program) {
    return not_permitted;
  }
  const bool reads = std::string_view(argv[1]) == "read";
  const Cut cut = {reads ? call_read : call_write, reads ? call_readv : call_writev,
                   std::strtoul(argv[2], nullptr, 10), std::strtoull(argv[3], nullptr, 10),
                   std::string_view(argv[4]) == "kill"};
  const pid_t process = fork();
  if (process == 0) {
    become(argv + first_of_program);
  }
  int status = 0;
  if (process < 0 || waitpid(process, &status, 0) != process || !WIFSTOPPED(status)) {
    return not_permitted;
  }
  ptrace(PTRACE_SETOPTIONS, process, 0L,
         static_cast<long>(PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL));
  status = trace(process, cut);
  if (WIFSIGNALED(status)) {
    signal(WTERMSIG(status), SIG_DFL);
    raise(WTERMSIG(status));
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : not_permitted;
}
