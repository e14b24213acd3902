#include "tests/support/call_tracer.h"

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iterator>

namespace zem::test {
namespace {

constexpr int kCallStop = SIGTRAP | 0x80;

[[noreturn]] void run_as_child(const std::function<void()>& work) {
  ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  ::raise(SIGSTOP);
  work();
  ::_exit(0);
}

std::optional<SystemCall> call_at_entry(pid_t child) {
  __ptrace_syscall_info info{};
  ::ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info);
  if (info.op != PTRACE_SYSCALL_INFO_ENTRY) return std::nullopt;
  SystemCall call{child, static_cast<long>(info.entry.nr), {}};
  std::copy(std::begin(info.entry.args), std::end(info.entry.args), call.arguments.begin());
  return call;
}

std::string read_memory(pid_t process, std::uint64_t address, std::uint64_t length) {
  std::string bytes(length, '\0');
  const iovec here{bytes.data(), bytes.size()};
  const iovec there{reinterpret_cast<void*>(address), bytes.size()};  // another process's address
  const ssize_t got = ::process_vm_readv(process, &here, 1, &there, 1, 0);
  bytes.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
  return bytes;
}

bool is_open_on(const SystemCall& call, const std::string& path) {
  const std::string link =
      "/proc/" + std::to_string(call.process) + "/fd/" + std::to_string(call.arguments[0]);
  std::error_code ignored;
  return std::filesystem::read_symlink(link, ignored) == path;
}

}  // namespace

bool run_stopping(const std::function<void()>& work,
                  const std::function<void(const SystemCall&)>& visit) {
  const pid_t child = ::fork();
  if (child == 0) run_as_child(work);
  int status = 0;
  ::waitpid(child, &status, 0);
  ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  int signal = 0;
  for (;;) {
    if (::ptrace(PTRACE_SYSCALL, child, nullptr, signal) != 0) return false;
    if (::waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) break;
    signal = WSTOPSIG(status) == kCallStop ? 0 : WSTOPSIG(status);
    if (signal != 0) continue;
    if (const auto call = call_at_entry(child)) visit(*call);
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::optional<PendingWrite> pending_write(const SystemCall& call, const std::string& path) {
  const bool is_placed = call.number == SYS_pwrite64;
  if ((!is_placed && call.number != SYS_write) || !is_open_on(call, path)) return std::nullopt;
  const off_t at = is_placed ? static_cast<off_t>(call.arguments[3]) : -1;
  return PendingWrite{at, read_memory(call.process, call.arguments[1], call.arguments[2])};
}

}  // namespace zem::test
