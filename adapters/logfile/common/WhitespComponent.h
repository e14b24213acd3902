/// A run of blanks in a format line: matches one or more blanks of any kind.
#pragma once

#include "adapters/logfile/common/FormatComponent.h"

class WhitespComponent : public FormatComponent {
 public:
  WhitespComponent() : FormatComponent(" ") {}

  int matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const override;
  [[nodiscard]] ComponentKind kind() const override { return ComponentKind::kBlank; }
};
