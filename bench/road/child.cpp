#include "bench/road/child.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "tests/support/exec_pointers.h"

namespace zem::bench {

namespace {

using std::chrono::nanoseconds;

void redirect(int stream, const char* path, int flags) {
  const int fd = ::open(path == nullptr ? "/dev/null" : path, flags | O_CLOEXEC, 0600);
  if (fd == -1 || ::dup2(fd, stream) == -1) ::_exit(127);
}

/// In the child, between fork and exec.
[[noreturn]] void become(char* const* command, const Child::Streams& streams) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  redirect(STDIN_FILENO, streams.input, O_RDONLY);
  redirect(STDOUT_FILENO, streams.output, O_WRONLY | O_CREAT | O_TRUNC);
  redirect(STDERR_FILENO, streams.error, O_WRONLY | O_CREAT | O_APPEND);
  ::execvp(command[0], command);
  ::_exit(127);
}

nanoseconds duration_of(const timeval& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

Child::Child(const std::vector<std::string>& command, const Streams& streams) {
  std::vector<std::string> texts = command;
  const auto arguments = test::pointers_to(texts);
  pid_ = ::fork();
  if (pid_ == -1) fail("can not start a program");
  if (pid_ == 0) become(arguments.data(), streams);
}

Child::~Child() {
  if (pid_ == -1) return;
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
}

nanoseconds Child::processor_time() const {
  clockid_t clock{};
  timespec time{};
  if (const int error = ::clock_getcpuclockid(pid_, &clock); error != 0) {
    throw std::system_error(error, std::generic_category(), "no clock of the program");
  }
  if (::clock_gettime(clock, &time) == -1) fail("can not read the clock of the program");
  return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

long Child::resident_kib() const {
  std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
  for (std::string word; status >> word;) {
    long kib = 0;
    if (word == "VmRSS:" && status >> kib) return kib;
  }
  throw std::runtime_error("the system does not tell the program's memory");
}

bool Child::is_running() {
  if (pid_ != -1 && ::waitpid(pid_, nullptr, WNOHANG) == pid_) pid_ = -1;
  return pid_ != -1;
}

nanoseconds Child::wait() {
  int status = 0;
  rusage usage{};
  if (::wait4(std::exchange(pid_, -1), &status, 0, &usage) == -1) fail("can not wait");
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw std::runtime_error("the program has failed");
  }
  return duration_of(usage.ru_utime) + duration_of(usage.ru_stime);
}

}  // namespace zem::bench
