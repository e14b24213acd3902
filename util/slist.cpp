#include "util/slist.h"

#include <bit>
#include <limits>

namespace {

constexpr int kGrowth = 5;

/// Elements that the array of a list of this capacity has room for. Deliberate: a capacity grows by
/// five, but the array of a long list doubles, so that appending to it takes no longer than to a
/// short one (SlList.LongListsGrowInFewSteps).
std::size_t room_of(int capacity) noexcept {
  constexpr std::size_t kExactMax = 40;
  const auto elements = static_cast<std::size_t>(capacity);
  return elements <= kExactMax ? elements : std::bit_ceil(elements);
}

bool grow(SL_List& list) noexcept {
  if (list.capacity > std::numeric_limits<int>::max() - kGrowth) return false;
  const int capacity = list.capacity + kGrowth;
  const std::size_t room = room_of(capacity);
  if (room != room_of(list.capacity)) {
    void* items = zem::util::reallocate(list.items, room * sizeof(void*));
    if (items == nullptr) return false;
    list.items = static_cast<void**>(items);
  }
  list.capacity = capacity;
  return true;
}

/// The walks' protocol; `visit(element, position)` calls the walk's callback.
template <class Visit>
int walk(const SL_List* list, Visit visit) {
  for (int i = 0; i < SL_NbrElm(list); ++i) {
    const int answer = visit(list->items[i], i + 1);
    if (answer == 0) return 1;
    if (answer == -1) return 0;
  }
  return 0;
}

}  // namespace

SL_List* SL_Create() { return static_cast<SL_List*>(zem::util::allocate(sizeof(SL_List))); }

int SL_InsLast(SL_List* list, void* element) {
  if (list == nullptr) return 0;
  if (list->count == list->capacity && !grow(*list)) return 0;
  list->items[list->count++] = element;
  return 1;
}

void* SL_Find(const SL_List* list, const void* key, SL_Match match) {
  return SL_GetPos(list, SL_FindPos(list, key, match));
}

int SL_FindPos(const SL_List* list, const void* key, SL_Match match) {
  if (match == nullptr) return -1;
  for (int i = 0; i < SL_NbrElm(list); ++i) {
    if (match(list->items[i], key) == 1) return i;
  }
  return -1;
}

int SL_FindReplace(SL_List* list, void* element, SL_Match match, SL_Free free_element) {
  const int at = SL_FindPos(list, element, match);
  if (at == -1) return 0;
  if (free_element != nullptr) free_element(list->items[at]);
  list->items[at] = element;
  return 1;
}

void* SL_GetPos(const SL_List* list, int index) {
  return index >= 0 && index < SL_NbrElm(list) ? list->items[index] : nullptr;
}

void SL_DelAll(SL_List* list, SL_Free free_element) {
  if (list == nullptr) return;
  if (free_element != nullptr) {
    for (void* element : zem::util::sl_items<void>(list)) free_element(element);
  }
  zem::util::release(list->items);
  zem::util::release(list);
}

int SL_Walk(const SL_List* list, SL_Visit visit) {
  return visit == nullptr ? 0 : walk(list, visit);
}

int SL_Walk2(const SL_List* list, SL_Visit2 visit, void* arg) {
  if (visit == nullptr) return 0;
  return walk(list, [=](void* element, int /*position*/) { return visit(element, arg); });
}

int SL_WalkVa(const SL_List* list, SL_VisitVa visit, ...) {
  if (visit == nullptr) return 0;
  va_list args;
  va_start(args, visit);
  // Each element is shown the arguments from the first one on.
  const int result = walk(list, [&](void* element, int /*position*/) {
    va_list own;
    va_copy(own, args);
    const int answer = visit(element, own);
    va_end(own);
    return answer;
  });
  va_end(args);
  return result;
}

int SL_NbrElm(const SL_List* list) { return list == nullptr ? 0 : list->count; }

bool zem::util::sl_reserve(SL_List& list, int elements) noexcept {
  list.items = static_cast<void**>(allocate(room_of(elements) * sizeof(void*)));
  if (list.items == nullptr) return false;
  list.capacity = elements;
  return true;
}
