/// A program that is measured: started with its output in a file, looked at while it runs, and
/// ended with its owner, however that ends.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace zem::bench {

class Child {
 public:
  /// Where standard input comes from and standard output and error go to; null means /dev/null.
  struct Streams {
    const char* input = nullptr;
    const char* output = nullptr;
    const char* error = nullptr;
  };

  /// Starts `command`, looked up in PATH. Throws std::system_error when no process can be made; a
  /// command that can not be executed ends with status 127.
  Child(const std::vector<std::string>& command, const Streams& streams);
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  /// Kills it if it is still there.
  ~Child();

  /// Processor time of all its threads, user and system, to the nanosecond.
  [[nodiscard]] std::chrono::nanoseconds processor_time() const;
  /// Its resident memory now, in KiB.
  [[nodiscard]] long resident_kib() const;
  [[nodiscard]] bool is_running();
  /// Waits until it ends by itself; the processor time it took. Throws std::runtime_error unless it
  /// ended with status 0.
  std::chrono::nanoseconds wait();

 private:
  pid_t pid_ = -1;
};

}  // namespace zem::bench
