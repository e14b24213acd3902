/// The variable "%t": the three words of a syslog time stamp, joined by single blanks whatever the
/// blanks of the message were.
#pragma once

#include "adapters/logfile/common/StringComponent.h"

class TimeComponent : public StringComponent {
 public:
  TimeComponent() : StringComponent("%t") {}

  /// The shared time component; anything behind "%t" is reported as a counted error.
  [[nodiscard]] static FormatComponent* create(const char* piece);

  int matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const override;
  [[nodiscard]] ComponentKind kind() const override { return ComponentKind::kTime; }
};
