/// A class file looked over: what the kernel refuses, with the tool's own places, and what is
/// doubtful in it.
#pragma once

#include <string>

#include "tools/fmt/check_format.h"
#include "tools/fmt/class_outline.h"
#include "tools/fmt/finding.h"

namespace zem::fmt {

class CheckedClasses {
 public:
  /// Adds to the findings of `formats` what the class file does not do for them. A Failure
  /// (kNoInput) when the file can not be read.
  CheckedClasses(const std::string& path, CheckedFormats& formats);

  [[nodiscard]] const Findings& findings() const noexcept { return findings_; }

 private:
  void take_verdict(const std::string& path);

  SourceText source_;
  ClassFileOutline outline_;
  Findings findings_;
};

}  // namespace zem::fmt
