/// Catches what the format engine reports while the object lives. Link zem_format_test_support.
#pragma once

#include <string>

#include "adapters/logfile/common/format_report.h"

namespace zem::test {

class ReportCapture {
 public:
  /// Takes the place of both reporters; `status` and `linenum` are 0.
  ReportCapture();
  ReportCapture(const ReportCapture&) = delete;
  ReportCapture& operator=(const ReportCapture&) = delete;
  /// The reporters, `status` and `linenum` are as they were before.
  ~ReportCapture();

  /// Every report so far on a line of its own: "E" or "W", the line number when the report names
  /// one, the message as formatted: "E7 around x: syntax error".
  [[nodiscard]] const std::string& text() const;

 private:
  FormatReporter previous_efcn_;
  FormatReporter previous_wfcn_;
  int previous_status_;
  int previous_linenum_;
};

}  // namespace zem::test
