#include "tests/support/report_capture.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace zem::test {

namespace {

std::string caught;

void catch_report(char kind, int flags, const char* format, va_list args) {
  if ((flags & kReportCounted) != 0) status = 1;
  char* message = nullptr;
  if (::vasprintf(&message, format, args) < 0) return;
  const std::unique_ptr<char, decltype(&std::free)> owner(message, &std::free);
  caught += kind;
  if ((flags & kReportLine) != 0) caught += std::to_string(linenum);
  caught.append(" ").append(message);
  if (!caught.ends_with('\n')) caught += '\n';
}

[[gnu::format(printf, 2, 3)]] void catch_error(int flags, const char* format, ...) {
  va_list args;
  va_start(args, format);
  catch_report('E', flags, format, args);
  va_end(args);
}

[[gnu::format(printf, 2, 3)]] void catch_warning(int flags, const char* format, ...) {
  va_list args;
  va_start(args, format);
  catch_report('W', flags, format, args);
  va_end(args);
}

}  // namespace

ReportCapture::ReportCapture()
    : previous_efcn_(std::exchange(efcn, catch_error)),
      previous_wfcn_(std::exchange(wfcn, catch_warning)),
      previous_status_(std::exchange(status, 0)),
      previous_linenum_(std::exchange(linenum, 0)) {
  caught.clear();
}

ReportCapture::~ReportCapture() {
  efcn = previous_efcn_;
  wfcn = previous_wfcn_;
  status = previous_status_;
  linenum = previous_linenum_;
}

const std::string& ReportCapture::text() const { return caught; }

}  // namespace zem::test
