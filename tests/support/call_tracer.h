/// Stops a child process before each of its system calls, so that a test can look at what the
/// process would leave behind if it were killed there.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace zem::test {

/// A system call about to be made by the stopped process.
struct SystemCall {
  pid_t process;
  long number;
  std::array<std::uint64_t, 6> arguments;
};

/// Bytes on their way into a file.
struct PendingWrite {
  off_t at;  ///< -1: at the end
  std::string bytes;
};

/// Runs `work` in a child, which ends then, and calls `visit` before each of its system calls;
/// false when the child did not end by itself with success.
[[nodiscard]] bool run_stopping(const std::function<void()>& work,
                                const std::function<void(const SystemCall&)>& visit);

/// What `call` is about to write to the file at `path`; nothing when it writes elsewhere or not.
[[nodiscard]] std::optional<PendingWrite> pending_write(const SystemCall& call,
                                                        const std::string& path);

}  // namespace zem::test
