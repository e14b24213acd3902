/// The event buffers: a queue between the source, which appends, and the kernel, which works on the
/// oldest event until it is discarded.
#include <deque>
#include <memory>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/keywords.h"
#include "util/heap.h"

SL_List* ZEMAD_attribute_list = nullptr;

namespace {

constexpr zem::log::Source kSource{zem::log::kDriver, "driver"};
constexpr std::size_t kValuesBytes = ZEMAD_max_keywords * sizeof(void*);

struct EventEntry {
  AttributeEntry** values;  ///< ZEMAD_max_keywords of them; the source sets those it knows
  SL_List* attributes;      ///< of Attribute
};

std::span<AttributeEntry*> values_of(const EventEntry& entry) {
  if (entry.values == nullptr) return {};
  return {entry.values, ZEMAD_max_keywords};
}

void free_entry(EventEntry* entry) {
  for (AttributeEntry* value : values_of(*entry)) ZEMAD_FreeAttributeEntry(value);
  zem::util::release(entry->values);
  SL_DelAll(entry->attributes, zem::util::sl_free<ZEMAD_FreeAttribute>);
  zem::util::release(entry);
}
using EntryPtr = std::unique_ptr<EventEntry, zem::util::FreeWith<free_entry>>;

/// Oldest first; the front one is being processed.
std::deque<EntryPtr> ZEMAD_event_buffer;

int refuse(const char* text) {
  zem::log::report(kSource, zem::log::kMinor, 1, text);
  return -1;
}

}  // namespace

int ZEMAD_EventBufferInit() {
  ZEMAD_event_buffer.clear();
  return 0;
}

int ZEMAD_CheckBuffer() { return ZEMAD_event_buffer.size() < kEventQueueMax ? 0 : -1; }

int ZEMAD_GetNewEventBuffer(AttributeEntry*** values, SL_List** attributes) {
  if (ZEMAD_CheckBuffer() != 0) return -1;
  EntryPtr entry(static_cast<EventEntry*>(zem::util::allocate(sizeof(EventEntry))));
  if (!entry) return refuse("cannot allocate memory for buffer entry");
  entry->values = static_cast<AttributeEntry**>(zem::util::allocate(kValuesBytes));
  if (entry->values == nullptr) return refuse("cannot allocate memory for keyword values");
  entry->attributes = SL_Create();
  if (entry->attributes == nullptr) return refuse("cannot allocate memory for attribute list");
  *values = entry->values;
  *attributes = entry->attributes;
  ZEMAD_event_buffer.push_back(std::move(entry));
  return 0;
}

int ZEMAD_GetNextEvent() {
  if (ZEMAD_event_buffer.empty()) return -1;
  const EventEntry& head = *ZEMAD_event_buffer.front();
  zem::kernel::bind_keywords(values_of(head));
  ZEMAD_attribute_list = head.attributes;
  return 0;
}

int ZEMAD_DiscardEvent() {
  zem::kernel::bind_keywords({});
  ZEMAD_attribute_list = nullptr;
  ZEMAD_FreeEventBuffer();
  return 0;
}

int ZEMAD_FreeEventBuffer() {
  if (ZEMAD_event_buffer.empty()) return -1;
  ZEMAD_event_buffer.pop_front();
  return 0;
}
