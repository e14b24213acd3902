/// Catches what the format engine reports.
#pragma once

#include <string>

#include "adapters/logfile/common/format_report.h"

namespace zem::test {

/// While it lives, `efcn` and `wfcn` report into it.
class ReportCapture {
 public:
  ReportCapture();
  ReportCapture(const ReportCapture&) = delete;
  ReportCapture& operator=(const ReportCapture&) = delete;
  ~ReportCapture();
  [[nodiscard]] const std::string& text() const;

 private:
  FormatReporter efcn_;
  FormatReporter wfcn_;
};

}  // namespace zem::test
