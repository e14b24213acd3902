/// Catches what the error and trace log is given: switches pairs of module and severity on, all
/// into one file of its own, and hands the messages back in the order in which they were written.
/// Link zem_frame_test_support.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "adapters/libzemad/error.h"
#include "tests/support/temp_dir.h"

namespace zem::test {

class LogCapture {
 public:
  /// Nobody listens yet; `zemad_errno` is 0.
  LogCapture();
  /// Listens to MINOR, MAJOR, FATAL and LOW of one module.
  explicit LogCapture(log::Module module);
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  /// The destinations are as they were before, and so is `zemad_errno`.
  ~LogCapture();

  LogCapture& listen(log::Module module, std::initializer_list<log::Severity> severities);

  /// Every line so far as "MAJOR SELECT 24 No selection clause (failure)": severity, module, error
  /// number, text. A line of a dump, which has no header, comes as it is.
  [[nodiscard]] std::vector<std::string> lines() const;
  /// The texts alone, and the lines of dumps.
  [[nodiscard]] std::vector<std::string> texts() const;
  /// The file as it was written, headers included.
  [[nodiscard]] std::string raw() const;
  /// Forgets what was caught; listening goes on.
  void clear();

 private:
  TempDir dir_;
  std::string path_;
  std::string previous_destinations_;
  int previous_errno_;
};

}  // namespace zem::test
