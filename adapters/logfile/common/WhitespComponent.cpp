#include "adapters/logfile/common/WhitespComponent.h"

#include "adapters/logfile/common/SysLogMsg.h"

int WhitespComponent::matches(SysLogMsg& msg, const ConstComponent* /*next*/,
                              tvStrobj& /*value*/) const {
  const int blanks = msg.whitesp();
  msg += blanks;
  return blanks > 0 ? 1 : 0;
}
