/// The last step of an event's road through the daemon: hands finished event texts to the event
/// client and reports what became of them. The one owner of the client's handle, and of the events
/// that wait beside it to leave together (agent/gathering.h).
#pragma once

#include <string_view>

namespace zem::frame {

/// Sends the finished text of one event ("...;END\n") and leaves a copy of it in the log while
/// anybody reads ZEMIO NORMAL. False, and reported, when it was not accepted whole: a filter held
/// it back, or the cache has it, or it is lost. Within a GatheringScope the event may be kept to
/// leave with others, and then true only means that nothing is wrong with it yet.
bool send_event_text(std::string_view text);

/// While it lives, events are gathered, if nobody traces and the client can: who traces wants to
/// see one event after the other. Whoever opens it lets what was gathered leave in time.
class GatheringScope {
 public:
  GatheringScope();
  GatheringScope(const GatheringScope&) = delete;
  GatheringScope& operator=(const GatheringScope&) = delete;
  ~GatheringScope();
};

/// Everything that was gathered leaves. Reports each event that was not sent, as send_event_text
/// and the main loop would have, and tries the connection again as often as the main loop would
/// have.
void send_gathered();

/// At the end of each pass: while no server can be reached, tries again with an empty event. While
/// events are gathered nobody knows yet, and the pass is remembered instead.
void retry_connection();

}  // namespace zem::frame
