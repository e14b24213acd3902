#include "tests/support/report_capture.h"

#include <cstdarg>
#include <cstdio>

namespace zem::test {
namespace {
std::string captured;

void note(char severity, int flags, const char* format, va_list args) {
  if ((flags & kReportCounted) != 0) status = 1;
  captured += severity;
  if ((flags & kReportLine) != 0) captured += std::to_string(linenum);
  char* text = nullptr;
  if (::vasprintf(&text, format, args) < 0) return;
  captured += ' ';
  captured += text;
  if (captured.back() != '\n') captured += '\n';
  std::free(text);
}
void error_reporter(int flags, const char* format, ...) {
  va_list args;
  va_start(args, format);
  note('E', flags, format, args);
  va_end(args);
}
void warning_reporter(int flags, const char* format, ...) {
  va_list args;
  va_start(args, format);
  note('W', flags, format, args);
  va_end(args);
}
}  // namespace

ReportCapture::ReportCapture() : efcn_(efcn), wfcn_(wfcn) {
  captured.clear();
  efcn = error_reporter;
  wfcn = warning_reporter;
}
ReportCapture::~ReportCapture() {
  efcn = efcn_;
  wfcn = wfcn_;
}
const std::string& ReportCapture::text() const { return captured; }

}  // namespace zem::test
