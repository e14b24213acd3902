#include "tests/support/daemon_process.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <thread>

#include "tests/support/exec_pointers.h"
#include "util/expect.h"

namespace zem::test {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 30s;
constexpr auto kLookEvery = 2ms;

struct Channel {
  util::UniqueFd near;  ///< the test's end, never waits
  util::UniqueFd far;   ///< the daemon's
};

Channel finish(const int (&ends)[2]) {
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
  ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
  return {util::UniqueFd(ends[0]), util::UniqueFd(ends[1])};
}

Channel make_pipe() {
  int ends[2] = {-1, -1};
  util::expect(::pipe(ends) == 0, "a pipe can be made");
  return finish(ends);
}

Channel make_terminal() {
  int ends[2] = {-1, -1};
  util::expect(::openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr) == 0,
               "a terminal can be made");
  return finish(ends);
}

std::vector<std::string> environment_of(const DaemonProcess::Start& start) {
  std::vector<std::string> environment;
  for (const auto& [name, value] : start.environment)
    environment.emplace_back(name).append("=").append(value);
  return environment;
}

/// In the child, between fork and exec.
void place_streams(const DaemonProcess::Start& start, int output, int error) {
  if (start.extra_descriptor != -1) ::dup2(STDIN_FILENO, start.extra_descriptor);
  if (start.closed_streams) {
    for (int fd = 0; fd <= 2; ++fd) ::close(fd);
    return;
  }
  ::dup2(::open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(error, STDERR_FILENO);
}

/// True at the end of file.
bool read_available(const util::UniqueFd& fd, std::string& into) {
  std::array<char, 4096> chunk{};
  for (;;) {
    const ssize_t count = ::read(fd.get(), chunk.data(), chunk.size());
    if (count <= 0) return count == 0;
    into.append(chunk.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace

bool eventually(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(kLookEvery);
  }
  return true;
}

std::string describe_end(int wait_status) {
  if (WIFEXITED(wait_status)) return "exit " + std::to_string(WEXITSTATUS(wait_status));
  if (WIFSIGNALED(wait_status)) return "signal " + std::to_string(WTERMSIG(wait_status));
  return "still there";
}

DaemonProcess::DaemonProcess(const std::string& binary, const Start& start) {
  Channel output = start.output_terminal ? make_terminal() : make_pipe();
  Channel error = start.error_terminal ? make_terminal() : make_pipe();
  std::vector<std::string> arguments{start.program.empty() ? binary : start.program};
  arguments.insert(arguments.end(), start.arguments.begin(), start.arguments.end());
  std::vector<std::string> environment = environment_of(start);
  const auto argv = pointers_to(arguments);
  const auto envp = pointers_to(environment);

  pid_ = ::fork();
  util::expect(pid_ != -1, "a child can be made");
  if (pid_ == 0) {
    place_streams(start, output.far.get(), error.far.get());
    if (::chdir(start.directory.c_str()) == 0) ::execve(binary.c_str(), argv.data(), envp.data());
    ::_exit(99);
  }
  output_end_ = std::move(output.near);
  error_end_ = std::move(error.near);
}

DaemonProcess::~DaemonProcess() {
  if (ended_) return;
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
}

void DaemonProcess::send(int signal) const { ::kill(pid_, signal); }

void DaemonProcess::drain() {
  output_closed_ = read_available(output_end_, output_);
  (void)read_available(error_end_, errors_);
}

bool DaemonProcess::reap() {
  drain();
  if (!ended_) ended_ = ::waitpid(pid_, &wait_status_, WNOHANG) == pid_;
  return ended_;
}

bool DaemonProcess::is_alive() { return !reap(); }

bool DaemonProcess::is_output_closed() {
  drain();
  return output_closed_;
}

std::string DaemonProcess::end() {
  if (!eventually([this] { return reap(); })) return "still there";
  drain();
  return describe_end(wait_status_);
}

void OrphanProcess::adopt_orphans() { ::prctl(PR_SET_CHILD_SUBREAPER, 1); }

OrphanProcess::~OrphanProcess() {
  if (ended_ || pid_ <= 0) return;
  ::kill(pid_, SIGKILL);
  ::waitpid(pid_, nullptr, 0);
}

void OrphanProcess::send(int signal) const {
  if (pid_ > 0) ::kill(pid_, signal);
}

std::string OrphanProcess::end() {
  int wait_status = -1;
  ended_ = eventually([&] { return ::waitpid(pid_, &wait_status, WNOHANG) == pid_; });
  return ended_ ? describe_end(wait_status) : "still there";
}

std::map<int, std::string> open_files(pid_t pid) {
  std::map<int, std::string> files;
  const std::filesystem::path directory = "/proc/" + std::to_string(pid) + "/fd";
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    std::error_code gone;
    const auto target = std::filesystem::read_symlink(entry.path(), gone);
    if (!gone) files[std::stoi(entry.path().filename())] = target;
  }
  return files;
}

}  // namespace zem::test
