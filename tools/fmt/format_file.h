/// Reading a format file as the daemon does, with the engine's reports in hand instead of on a
/// terminal.
#pragma once

#include <string>
#include <vector>

class LogDriver;

namespace zem::fmt {

struct EngineReport {
  bool is_error;  ///< else a warning
  bool has_line;
  int line;  ///< as the engine counts: newlines consumed
  std::string text;

  /// "error at line 7: around x: syntax error", without a newline.
  [[nodiscard]] std::string rendered() const;
};

struct FormatReading {
  bool is_accepted;  ///< what the daemon would make of the file
  std::vector<EngineReport> reports;

  /// All reports, one a line.
  [[nodiscard]] std::string rendered() const;
};

/// Appends the file's FORMATs to `set`, in file order. A path that can not be read is a Failure
/// with kNoInput.
[[nodiscard]] FormatReading read_formats(const std::string& path, LogDriver& set);

/// The same for who has no use for a faulty file: that is a Failure with kBadData, and its text the
/// engine's.
void load_formats(const std::string& path, LogDriver& set);

/// Makes the set ready to match, in silence: what the engine warns of is for `check` to say.
void order_formats(LogDriver& set);

/// Collects what the engine reports while it lives. One at a time.
class ReportCollector {
 public:
  ReportCollector();
  ReportCollector(const ReportCollector&) = delete;
  ReportCollector& operator=(const ReportCollector&) = delete;
  ~ReportCollector();

  [[nodiscard]] std::vector<EngineReport> take();
};

/// Ends with a Failure (kNoInput) unless `path` is something that can be read: a directory is not.
void require_readable(const std::string& path);

}  // namespace zem::fmt
