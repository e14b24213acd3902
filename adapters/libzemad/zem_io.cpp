/// An event of class Disk_Full with the slots hostname and msg leaves as the one line
///
///   Disk_Full;hostname=hostA;msg='disk is full';END
///
/// Names and values are quoted where they need it, the class name never is. The text must stay
/// below the limit of the key EventMaxSize at every step, else the event is refused.
#include "adapters/libzemad/zem_io.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "adapters/libzemad/configuration.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/event_sender.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/quoting.h"
#include "agent/agent_util.h"
#include "agent/trace.h"
#include "util/text.h"

namespace {

constexpr zem::log::Source kSource{zem::log::kZemIo, "zem_io"};

constexpr int kEventBytesDefault = 4096;
constexpr int kEventBytesMax = 16 * 1024 * 1024;
constexpr std::string_view kEnd = "END\n";

/// What ZEMAD_FormatEvent returns. The numbers 3 and 5, for a copying step that fails, can not come
/// from strings.
constexpr int kFormatted = 0;
constexpr int kNothingNamed = 1;
constexpr int kTooLong = 2;
constexpr int kNoRecord = 4;

/// The event text and the two buffers that it is built in; they keep their room between events.
struct EventText {
  std::size_t limit = 0;  ///< the text stays shorter
  std::string text;
  std::string quoted;
};
EventText event;

std::size_t configured_limit() {
  const char* value = zem_agent_getenv("EventMaxSize");
  if (value == nullptr) return kEventBytesDefault;
  return static_cast<std::size_t>(std::clamp(zem::util::saturating_atoi(value), 0, kEventBytesMax));
}

[[noreturn]] void give_up(const char* text) {
  zem::log::report(kSource, zem::log::kFatal, 1, text);
  std::exit(1);
}

/// Releases the buffers: assigning an empty string would keep them.
void drop_buffers() {
  EventText fresh;
  std::swap(event, fresh);
}

void make_buffers() {
  try {
    event.text.reserve(event.limit + 1);
    event.quoted.reserve(2 * (event.limit + 1));
  } catch (const std::bad_alloc&) {
    give_up("ZEMAD_ZemIoInit malloc failed");
  }
}

/// What the client has to tell goes into this module's log while anybody reads it.
void listen_to_client() {
  zem::agent::TraceSink sink;
  if (zem::log::listens(kSource.module, zem::log::kLow)) {
    sink = [](std::string_view line) { zem::log::trace(kSource, std::string(line).c_str()); };
  }
  zem::agent::set_trace(std::move(sink));
}

// The text ----------------------------------------------------------------------------------------

/// These two speak first and trace then.
int refuse(int code, const char* text) {
  zem::log::report(kSource, zem::log::kMajor, 1, text);
  zem::log::trace(kSource, text);
  return code;
}
int refuse_too_long() { return refuse(kTooLong, "Z/EM message grows too long"); }

int refuse_slot(int code, const char* text) {
  zem::log::fail(kSource, zem::log::kMajor, 2, text);
  return code;
}

/// False when the text would reach the limit. The separator is not counted here: it is by the next
/// piece.
bool append(std::string_view piece, char separator) {
  if (event.text.size() + piece.size() >= event.limit) return false;
  event.text.append(piece).push_back(separator);
  return true;
}

/// The name is in the text before the value is quoted: the buffer holds one quoted text.
int append_slot(const MapEntry* slot) {
  if (slot == nullptr) return refuse_slot(kNoRecord, "ZEMAD_MapEntryList failure");
  if (slot->Name == nullptr) return refuse_slot(kNothingNamed, "MapEntry->Name NULL");
  if (!append(ZEMAD_quote_string(slot->Name), '=')) return refuse_too_long();
  if (!append(ZEMAD_quote_string(slot->Value), ';')) return refuse_too_long();
  return kFormatted;
}

int append_end() {
  if (event.text.size() + kEnd.size() >= event.limit) return refuse_too_long();
  event.text.append(kEnd);
  return kFormatted;
}

}  // namespace

int ZEMAD_ZemIoInit() {
  zem::log::trace(kSource, "Initializing Z/EM interface ...");
  drop_buffers();
  event.limit = configured_limit();
  make_buffers();
  listen_to_client();
  zem::log::trace(kSource, "Z/EM interface initialization complete");
  return 0;
}

int ZEMAD_ZemIoCleanup() {
  zem::log::trace(kSource, "Cleanup Z/EM interface ...");
  drop_buffers();
  zem::log::trace(kSource, "Z/EM interface cleanup complete");
  return 0;
}

int ZEMAD_ZemIoReload() {
  zem::log::trace(kSource, "Reload Z/EM interface ...");
  ZEMAD_ZemIoCleanup();
  ZEMAD_ZemIoInit();
  zem::log::trace(kSource, "Z/EM interface reload complete");
  return 0;
}

int ZEMAD_SendEvent(const char* class_name) {
  zem::log::trace(kSource, "Sending event to Z/EM ...");
  const bool was_sent =
      ZEMAD_FormatEvent(class_name) == kFormatted && zem::frame::send_event_text(event.text);
  zem::log::trace(kSource, was_sent ? "Event sent to Z/EM" : "No event sent to Z/EM");
  return was_sent ? 0 : -1;
}

int ZEMAD_FormatEvent(const char* class_name) {
  if (class_name == nullptr) return refuse(kNothingNamed, "Classname NULL");
  event.text.clear();
  if (!append(class_name, ';')) return refuse_too_long();
  for (const MapEntry* slot : zem::util::sl_items<MapEntry>(ZEMAD_MapEntryList)) {
    const int code = append_slot(slot);
    if (code != kFormatted) return code;
  }
  return append_end();
}

std::size_t ZEMAD_EventLimit() { return event.limit; }

const char* ZEMAD_EventText() { return event.text.c_str(); }

const char* ZEMAD_quote_string(const char* text) {
  const std::string_view plain = text == nullptr ? std::string_view() : text;
  if (!zem::kernel::needs_quotes(plain)) return text;
  zem::kernel::quote(plain, event.quoted);
  return event.quoted.c_str();
}
