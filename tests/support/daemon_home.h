/// A home for a real daemon, made for one test: configuration files, communication directory, FIFO
/// and a place for everything that the daemon writes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/temp_dir.h"

namespace zem::test {

class DaemonHome {
 public:
  /// Test mode, one FORMAT "Line" (id 0) that binds every line as `msg`, its class, and a log of
  /// everything but dumps and VERBOSE.
  DaemonHome();

  [[nodiscard]] std::string operator/(std::string_view name) const { return dir_ / name; }
  [[nodiscard]] std::string conf_path() const { return dir_ / "etc/zemad_logfile.conf"; }
  [[nodiscard]] std::string err_path() const { return dir_ / "etc/zemad_logfile.err"; }
  [[nodiscard]] std::string cds_path() const { return dir_ / "etc/zemad_logfile.cds"; }
  [[nodiscard]] std::string fmt_path() const { return dir_ / "etc/zemad_logfile.fmt"; }
  [[nodiscard]] std::string comm_path() const { return dir_ / "comm"; }
  [[nodiscard]] std::string fifo_path() const { return comm_file("fifo"); }
  [[nodiscard]] std::string lock_path() const { return comm_file("lock"); }

  /// Appends a line to the sender configuration: the first of several lines with one key counts.
  void configure(std::string_view line) const;
  /// Replaces the file and gives it a modification time of its own, later than any before: the
  /// daemon looks at whole seconds.
  void rewrite(const std::string& path, std::string_view content);

  /// Writes into the FIFO at once; the daemon must have it open.
  void log(std::string_view bytes) const;

  /// Everything in the test-mode file.
  [[nodiscard]] std::string event_bytes() const { return read_file(dir_ / "events"); }
  /// The events in it, "Class;a=b;" each: without terminators and empty events.
  [[nodiscard]] std::vector<std::string> events() const;
  /// The error and trace log.
  [[nodiscard]] std::string trace() const { return read_file(dir_ / "trace"); }
  [[nodiscard]] std::string unmatched() const { return read_file(dir_ / "unmatched"); }
  /// Process id in the lock file; 0 when there is none.
  [[nodiscard]] int lock_holder() const;

 private:
  [[nodiscard]] std::string comm_file(const char* kind) const;

  TempDir dir_;
  long next_mtime_;
};

/// How often `needle` occurs in `text`.
[[nodiscard]] int count_of(std::string_view needle, std::string_view text);

}  // namespace zem::test
