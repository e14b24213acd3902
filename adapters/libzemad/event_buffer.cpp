/// The event buffers: a queue between the source, which appends, and the kernel, which works on the
/// oldest event until it is discarded. An event may wait as a view, but only alone: as soon as
/// another one comes behind it, or somebody asks for it by the functions of the driver contract, it
/// becomes records like all others.
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/event_view.h"
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
/// Only while the queue is empty otherwise.
std::optional<zem::kernel::EventView> waiting_view;

int refuse(const char* text) {
  zem::log::report(kSource, zem::log::kMinor, 1, text);
  return -1;
}

int append_entry(AttributeEntry*** values, SL_List** attributes) {
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

/// An attribute that can not be made is left out.
void append_attribute(SL_List* attributes, const char* name, const char* value) {
  using zem::kernel::AttributeEntryPtr;
  AttributeEntryPtr name_entry(ZEMAD_MakeStringAttributeEntry(name));
  AttributeEntryPtr value_entry(ZEMAD_MakeStringAttributeEntry(value));
  AttributeEntryPtr key_entry(ZEMAD_MakeStringAttributeEntry(""));
  if (!name_entry || !value_entry || !key_entry) return;
  zem::kernel::AttributePtr attribute(
      ZEMAD_MakeAttribute(name_entry.get(), key_entry.get(), value_entry.get()));
  if (!attribute) return;
  for (AttributeEntryPtr* owned : {&name_entry, &key_entry, &value_entry}) {
    static_cast<void>(owned->release());
  }
  if (SL_InsLast(attributes, attribute.get()) == 1) static_cast<void>(attribute.release());
}

/// The records that the view stands for.
void append_records(const zem::kernel::EventView& view) {
  AttributeEntry** keyword_values = nullptr;
  SL_List* attributes = nullptr;
  if (append_entry(&keyword_values, &attributes) != 0) return;
  *keyword_values = ZEMAD_MakeStringAttributeEntry("");
  for (std::size_t i = 0; i < view.values.size(); ++i) {
    append_attribute(attributes, view.layout->names()[i].c_str(),
                     std::string(view.values[i]).c_str());
  }
}

}  // namespace

namespace zem::kernel {

int queue_event(const EventView& view) {
  if (ZEMAD_CheckBuffer() != 0) return -1;
  settle_event();
  waiting_view = view;
  if (!ZEMAD_event_buffer.empty()) settle_event();
  return 0;
}

void settle_event() {
  if (waiting_view) append_records(*std::exchange(waiting_view, std::nullopt));
}

const EventView* waiting_event() { return waiting_view ? &*waiting_view : nullptr; }

void drop_waiting_event() { waiting_view.reset(); }

}  // namespace zem::kernel

int ZEMAD_EventBufferInit() {
  zem::kernel::drop_waiting_event();
  ZEMAD_event_buffer.clear();
  return 0;
}

int ZEMAD_CheckBuffer() {
  const std::size_t queued = ZEMAD_event_buffer.size() + (waiting_view ? 1 : 0);
  return queued < kEventQueueMax ? 0 : -1;
}

int ZEMAD_GetNewEventBuffer(AttributeEntry*** values, SL_List** attributes) {
  if (ZEMAD_CheckBuffer() != 0) return -1;
  zem::kernel::settle_event();
  return append_entry(values, attributes);
}

int ZEMAD_GetNextEvent() {
  zem::kernel::settle_event();
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
  zem::kernel::settle_event();
  if (ZEMAD_event_buffer.empty()) return -1;
  ZEMAD_event_buffer.pop_front();
  return 0;
}
