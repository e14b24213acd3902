/// The last step of an event's road through the daemon: hands finished event texts to the event
/// client and reports what became of them. The one owner of the client's handle.
#pragma once

#include <string>

namespace zem::frame {

/// Sends the finished text of one event ("...;END\n") and leaves a copy of it in the log while
/// anybody reads ZEMIO NORMAL. False, and reported, when it was not accepted whole: a filter held
/// it back, or the cache has it, or it is lost.
bool send_event_text(const std::string& text);

}  // namespace zem::frame
