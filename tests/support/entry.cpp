#include "tests/support/entry.h"

#include <cstring>

#include "adapters/libzemad/driver.h"
#include "util/expect.h"

namespace zem::test {

Entry Entry::unsigned_number(std::uint32_t number) {
  Entry entry(ZEMAD_TYPE_UINT, Shape::kWithValue);
  entry.number_ = number;
  return entry;
}

kernel::AttributeEntryPtr Entry::make() const {
  if (shape_ == Shape::kNoEntry) return nullptr;
  if (shape_ == Shape::kWithoutValue) {
    return kernel::AttributeEntryPtr(ZEMAD_MakeAttributeEntry(type_, 0, nullptr));
  }
  if (type_ == ZEMAD_TYPE_STRING) {
    return kernel::AttributeEntryPtr(ZEMAD_MakeStringAttributeEntry(text_.c_str()));
  }
  void* value = util::allocate(sizeof number_);
  std::memcpy(value, &number_, sizeof number_);
  return kernel::AttributeEntryPtr(ZEMAD_MakeAttributeEntry(type_, sizeof number_, value));
}

EntryList make_list(std::initializer_list<Entry> entries) {
  EntryList list(SL_Create());
  for (const Entry& entry : entries) SL_InsLast(list.get(), entry.make().release());
  return list;
}

CurrentEvent::CurrentEvent(std::initializer_list<NamedEntry> attributes, const Entry& keyword) {
  AttributeEntry** values = nullptr;
  SL_List* list = nullptr;
  util::expect(ZEMAD_GetNewEventBuffer(&values, &list) == 0, "the queue has room");
  values[0] = keyword.make().release();
  for (const auto& [name, value, key] : attributes) {
    SL_InsLast(list, ZEMAD_MakeAttribute(name.make().release(), key.make().release(),
                                         value.make().release()));
  }
  util::expect(ZEMAD_GetNextEvent() == 0, "the event can be made current");
}

CurrentEvent::~CurrentEvent() { ZEMAD_DiscardEvent(); }

}  // namespace zem::test
