/// SL_ lists: growable arrays of opaque pointers, in insertion order, for the rule kernel and the
/// event output side. A list owns its array, never its elements; whoever releases the list passes
/// the release function of the elements along. A null list is an empty list everywhere.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <memory>

#include "util/heap.h"

struct SL_List {
  void** items;  ///< the elements, in insertion order
  int capacity;  ///< slots allocated: grows by 5
  int count;     ///< slots used
};

/// 1, and only 1, is a hit.
using SL_Match = int (*)(const void* element, const void* key);
using SL_Free = void (*)(void* element);
/// Walk callbacks: 0 stops the walk (it returns 1), -1 aborts it (it returns 0), anything else goes
/// on. A walk that reaches the end returns 0.
using SL_Visit = int (*)(void* element, int position);  ///< positions count from 1
using SL_Visit2 = int (*)(void* element, void* arg);
using SL_VisitVa = int (*)(void* element, va_list args);

/// A new empty list, or null when memory is short.
[[nodiscard]] SL_List* SL_Create();
/// Appends; 1, or 0 on a null list or when memory is short.
int SL_InsLast(SL_List* list, void* element);
/// First element that matches; null when none does or `match` is null.
void* SL_Find(const SL_List* list, const void* key, SL_Match match);
/// Its index from 0, or -1.
int SL_FindPos(const SL_List* list, const void* key, SL_Match match);
/// Releases the first element that matches `element` and puts `element` in its place; 1 or 0.
int SL_FindReplace(SL_List* list, void* element, SL_Match match, SL_Free free_element);
/// Element at `index`, or null outside 0..count-1.
void* SL_GetPos(const SL_List* list, int index);
/// Releases every element in order (a null function releases none), the array and the list.
void SL_DelAll(SL_List* list, SL_Free free_element);
int SL_Walk(const SL_List* list, SL_Visit visit);
int SL_Walk2(const SL_List* list, SL_Visit2 visit, void* arg);
int SL_WalkVa(const SL_List* list, SL_VisitVa visit, ...);
/// Elements in the list; 0 for null.
int SL_NbrElm(const SL_List* list);

namespace zem::util {

namespace detail {
template <class T>
struct ReleasedType;
template <class T>
struct ReleasedType<void (*)(T*)> {
  using Type = T;
};
}  // namespace detail

/// Room for `elements` in a list that has no array yet, for one that will not have more; false when
/// memory is short. A list that gets more all the same grows as ever.
[[nodiscard]] bool sl_reserve(SL_List& list, int elements) noexcept;

/// A typed free function in the shape that SL_DelAll and SL_FindReplace take:
/// `SL_DelAll(list, sl_free<ZEMAD_FreeConfig>)`.
template <auto Free>
void sl_free(void* element) {
  Free(static_cast<typename detail::ReleasedType<decltype(Free)>::Type*>(element));
}

/// Owner of a list and its elements: `SlListOf<ZEMAD_FreeMap>`.
template <auto Free>
struct SlDelete {
  void operator()(SL_List* list) const { SL_DelAll(list, sl_free<Free>); }
};
template <auto Free>
using SlListOf = std::unique_ptr<SL_List, SlDelete<Free>>;

/// Typed look at a list for a range-for: `for (Map* map : sl_items<Map>(list))`. The list must not
/// grow meanwhile.
template <class T>
class SlItems {
 public:
  class Iterator {
   public:
    explicit Iterator(void** at) : at_(at) {}
    T* operator*() const { return static_cast<T*>(*at_); }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    void** at_;
  };

  explicit SlItems(const SL_List* list) : list_(list) {}
  [[nodiscard]] Iterator begin() const {
    return Iterator(list_ == nullptr ? nullptr : list_->items);
  }
  [[nodiscard]] Iterator end() const {
    return Iterator(list_ == nullptr ? nullptr : list_->items + list_->count);
  }
  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(SL_NbrElm(list_)); }

 private:
  const SL_List* list_;
};
template <class T>
[[nodiscard]] SlItems<T> sl_items(const SL_List* list) {
  return SlItems<T>(list);
}

}  // namespace zem::util
