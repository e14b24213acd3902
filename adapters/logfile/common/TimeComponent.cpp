#include "adapters/logfile/common/TimeComponent.h"

#include <string_view>

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/shared_components.h"

FormatComponent* TimeComponent::create(const char* piece) {
  if (std::string_view(piece).size() > 2) error("bad %t specification", piece);
  return zem::format::shared_components().time.get();
}

int TimeComponent::matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const {
  for (int word = 0; word < 2; ++word) {
    if (StringComponent::matches(msg, emptyConst(), value) == 0) return 0;
    const int blanks = msg.whitesp();
    if (blanks == 0) return 0;
    value.append(" ");
    msg += blanks;
  }
  return StringComponent::matches(msg, next, value);
}
