/// The short road of an event: from the view that its source queued straight to the event text and
/// the event client. The long one (ZEMAD_GetNextEvent, ZEMAD_ProcessEvent, ZEMAD_DiscardEvent)
/// leads to the same texts, messages and errors by records that everybody may look at; it is taken
/// by whatever the short one can not do without a message, and by every event while anybody reads
/// what the rooms on the way have to tell.
#pragma once

#include "adapters/libzemad/class_plans.h"
#include "adapters/libzemad/event_view.h"

namespace zem::frame {

/// The event's way as far as it is silent: kText with the finished event text, which `text` keeps,
/// kDropped, or kUnknown when the long road is to be taken. Nothing has happened then.
[[nodiscard]] kernel::Outcome write_event(const kernel::EventView& event, kernel::EventText& text);

/// Processes the event that waits as a view, if there is one and the short road is open to it. If
/// not, it is still in the queue.
void process_waiting_event();

}  // namespace zem::frame
