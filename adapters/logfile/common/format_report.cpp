#include "adapters/logfile/common/format_report.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <optional>

FormatReporter efcn = logfile_error;
FormatReporter wfcn = logfile_warning;
int linenum = 0;
int status = 0;

namespace {

/// What the series under way has found; nothing while there is none.
std::optional<bool> is_seen_in_series;

bool is_seen() {
  return is_seen_in_series.has_value() ? *is_seen_in_series
                                       : isatty(STDOUT_FILENO) != 0 || isatty(STDERR_FILENO) != 0;
}

void report(const char* kind, int flags, const char* format, va_list args) {
  if ((flags & kReportCounted) != 0) status = 1;
  if (!is_seen()) return;
  if ((flags & kReportLine) != 0) {
    std::fprintf(stderr, "%s at line %d: ", kind, linenum);
  } else {
    std::fprintf(stderr, "%s: ", kind);
  }
  std::vfprintf(stderr, format, args);
  std::fputs("\n", stderr);
  std::fflush(stderr);
}

}  // namespace

void logfile_error(int flags, const char* format, ...) {
  va_list args;
  va_start(args, format);
  report("error", flags, format, args);
  va_end(args);
}

void logfile_warning(int flags, const char* format, ...) {
  va_list args;
  va_start(args, format);
  report("warning", flags, format, args);
  va_end(args);
}

namespace zem::format {

ReportSeries::ReportSeries() noexcept { is_seen_in_series = is_seen(); }

ReportSeries::~ReportSeries() { is_seen_in_series.reset(); }

}  // namespace zem::format
