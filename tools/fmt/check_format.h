/// A format file looked over: what the engine refuses, with the tool's own places, and what is
/// doubtful in it.
#pragma once

#include <string>

#include "tools/fmt/finding.h"
#include "tools/fmt/format_model.h"
#include "tools/fmt/format_outline.h"
#include "tools/fmt/source_text.h"

namespace zem::fmt {

class CheckedFormats {
 public:
  /// A Failure (kNoInput) when the file can not be read.
  explicit CheckedFormats(const std::string& path);

  [[nodiscard]] Findings& findings() noexcept { return findings_; }
  [[nodiscard]] const FormatModel& model() const noexcept { return model_; }
  /// False when the daemon refuses the file.
  [[nodiscard]] bool is_accepted() const noexcept { return is_accepted_; }

 private:
  void take_verdict(const std::string& path);

  SourceText source_;
  FormatOutline outline_;
  FormatModel model_;
  Findings findings_;
  bool is_accepted_ = false;
};

}  // namespace zem::fmt
