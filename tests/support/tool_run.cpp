#include "tests/support/tool_run.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "tests/support/daemon_process.h"
#include "tests/support/exec_pointers.h"
#include "tests/support/temp_dir.h"

namespace zem::test {
namespace {

bool put_at(int target, const std::string& path, int flags) {
  const int fd = ::open(path.c_str(), flags, 0600);
  return fd != -1 && ::dup2(fd, target) != -1;
}

/// The child's side; 126 when its surroundings can not be made.
[[noreturn]] void become(const std::string& binary, ToolStart start, const TempDir& dir) {
  start.arguments.insert(start.arguments.begin(), binary);
  const bool is_ready = put_at(STDIN_FILENO, dir / "in", O_RDONLY) &&
                        put_at(STDOUT_FILENO, dir / "out", O_WRONLY | O_CREAT) &&
                        put_at(STDERR_FILENO, dir / "err", O_WRONLY | O_CREAT) &&
                        ::chdir(start.directory.c_str()) == 0;
  if (is_ready) {
    ::execve(binary.c_str(), pointers_to(start.arguments).data(),
             pointers_to(start.environment).data());
  }
  ::_exit(126);
}

}  // namespace

ToolRun run_tool(const std::string& binary, const ToolStart& start) {
  const TempDir dir;
  dir.write("in", start.input);
  const pid_t pid = ::fork();
  if (pid == 0) become(binary, start, dir);
  int wait_status = 0;
  while (::waitpid(pid, &wait_status, 0) == -1 && errno == EINTR) {
  }
  return {describe_end(wait_status), read_file(dir / "out"), read_file(dir / "err")};
}

}  // namespace zem::test
