/// A configuration file looked over. The daemon refuses none, it passes over what it does not
/// understand: all findings are warnings.
#pragma once

#include <string>

#include "tools/fmt/finding.h"
#include "tools/fmt/source_text.h"

namespace zem::fmt {

class CheckedSettings {
 public:
  /// A Failure (kNoInput) when the file can not be read.
  explicit CheckedSettings(const std::string& path);

  [[nodiscard]] const Findings& findings() const noexcept { return findings_; }

 private:
  SourceText source_;
  Findings findings_;
};

}  // namespace zem::fmt
