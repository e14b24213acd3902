/// The real daemon as a child of the test: started with the descriptors that the test wants, waited
/// for by what it does, and gone when the test is over.
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "util/unique_fd.h"

namespace zem::test {

/// Waits until `condition` holds; false when it does not for a very long time, which only a failing
/// test sees.
[[nodiscard]] bool eventually(const std::function<bool()>& condition);

/// What a process ended with: "exit 1", "signal 15".
[[nodiscard]] std::string describe_end(int wait_status);

class DaemonProcess {
 public:
  struct Start {
    std::vector<std::string> arguments;              ///< behind argument 0
    std::map<std::string, std::string> environment;  ///< all of it
    std::string directory = "/";
    std::string program;           ///< argument 0; empty: the path of the binary
    bool output_terminal = false;  ///< standard output is a terminal, else a pipe
    bool error_terminal = false;   ///< standard error is a terminal, else a pipe
    bool closed_streams = false;   ///< none of the three standard streams is open
    int extra_descriptor = -1;     ///< a further descriptor that the daemon inherits
  };

  /// Standard input is empty.
  DaemonProcess(const std::string& binary, const Start& start);
  DaemonProcess(const DaemonProcess&) = delete;
  DaemonProcess& operator=(const DaemonProcess&) = delete;
  /// Kills the child if it still runs.
  ~DaemonProcess();

  [[nodiscard]] pid_t pid() const { return pid_; }
  void send(int signal) const;
  [[nodiscard]] bool is_alive();
  /// Waits for the end of the child and of its output.
  std::string end();
  /// What has been read so far; all of it after `end`.
  [[nodiscard]] const std::string& output() const { return output_; }
  [[nodiscard]] const std::string& errors() const { return errors_; }
  /// True once nobody holds the daemon's end of the output any more.
  [[nodiscard]] bool is_output_closed();

 private:
  void drain();
  bool reap();

  pid_t pid_ = -1;
  int wait_status_ = -1;
  bool ended_ = false;
  util::UniqueFd output_end_;
  util::UniqueFd error_end_;
  std::string output_;
  std::string errors_;
  bool output_closed_ = false;
};

/// A process that a child of the test left behind, by its id. Becomes the test's own child when its
/// parent ends; `adopt_orphans` must have been called before.
class OrphanProcess {
 public:
  static void adopt_orphans();

  explicit OrphanProcess(pid_t pid) : pid_(pid) {}
  OrphanProcess(const OrphanProcess&) = delete;
  OrphanProcess& operator=(const OrphanProcess&) = delete;
  ~OrphanProcess();

  [[nodiscard]] pid_t pid() const { return pid_; }
  void send(int signal) const;
  std::string end();

 private:
  pid_t pid_;
  bool ended_ = false;
};

/// Targets of the open descriptors of a process: paths, "pipe:[1]", "/dev/null".
[[nodiscard]] std::map<int, std::string> open_files(pid_t pid);

}  // namespace zem::test
