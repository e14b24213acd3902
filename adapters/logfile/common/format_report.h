/// How the format engine and the log-file source report: through two global reporters that write to
/// standard error, and only when somebody sits in front of a terminal. A faulty format file is felt
/// by its result, `status`, whether or not anyone was told.
#pragma once

/// Flags of a report.
inline constexpr int kReportPlain = 0;
inline constexpr int kReportLine = 1;     ///< the report names the line, `linenum`
inline constexpr int kReportCounted = 2;  ///< the report fails the file being read: sets `status`
inline constexpr int kReportError = kReportLine | kReportCounted;

/// A reporter takes flags and a printf format with its arguments. The format needs no newline.
using FormatReporter [[gnu::format(printf, 2, 3)]] = void (*)(int flags, const char* format, ...);

extern FormatReporter efcn;  ///< errors; `logfile_error` unless a test or a tool listens itself
extern FormatReporter wfcn;  ///< warnings; `logfile_warning` likewise
extern int linenum;          ///< newlines of the format file consumed so far
extern int status;           ///< 1 after any counted report; nobody clears it but tests and tools

/// Writes "error at line %d: " or "error: ", the message and a newline to standard error when
/// standard output or standard error is a terminal. Sets `status` when `flags` say so, terminal or
/// not. A message that ends in a newline is therefore followed by an empty line.
void logfile_error(int flags, const char* format, ...) __attribute__((format(printf, 2, 3)));
/// The same with "warning".
void logfile_warning(int flags, const char* format, ...) __attribute__((format(printf, 2, 3)));

namespace zem::format {

/// While one lives, the two above look for a terminal only once: a set of FORMATs can give a
/// warning for each. Does not nest.
class ReportSeries {
 public:
  ReportSeries() noexcept;
  ReportSeries(const ReportSeries&) = delete;
  ReportSeries& operator=(const ReportSeries&) = delete;
  ~ReportSeries();
};

}  // namespace zem::format
