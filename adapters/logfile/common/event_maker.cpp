#include "adapters/logfile/common/event_maker.h"

#include "adapters/logfile/common/logfile_utils.h"

namespace zem::event {

int queue_event(const FormatSpec& spec, int index, const format::LocalHost& host) {
  if (SysLogGetEventBuffer() != 0) return -1;
  format::visit_event_slots(spec, index, host, [](const char* name, const char* value) {
    (void)SysLogMakeAttribute(name, nullptr, value);
  });
  return 0;
}

}  // namespace zem::event
