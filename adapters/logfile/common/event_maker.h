/// From a match to an event in the kernel's queue. The daemon and the format tool share it.
#pragma once

#include "adapters/logfile/common/event_slots.h"

namespace zem::event {

/// Queues the event of the last match of `spec`: the slots of `format::visit_event_slots`, in their
/// order. 0, or -1 when the frame has no room; a slot that could not be made is left out.
int queue_event(const FormatSpec& spec, int index, const format::LocalHost& host);

}  // namespace zem::event
