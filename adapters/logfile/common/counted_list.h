/// A tvList whose every element holds a counted reference: what enters is raised, what leaves is
/// lowered and destroyed at 0. It is walked by range-for, which leaves the list's own cursor alone,
/// so that walks may nest.
#pragma once

#include <vector>

#include "adapters/logfile/common/ref.h"
#include "util/list.h"

namespace zem::format {

template <class T>
class CountedList {
 public:
  using Iterator = typename tvList<T*>::Iterator;

  CountedList() = default;
  CountedList(const CountedList&) = delete;
  CountedList& operator=(const CountedList&) = delete;
  ~CountedList() { clear(); }

  void append(T* element) { list_(hold(element)); }
  void insertFront(T* element) { list_(hold(element), 0U); }
  /// Puts `element` at the place of `old`, which is let go; `old` is in the list.
  void replace(T* old, T* element) {
    T* held = hold(element);
    list_(old, held);
    let_go(old);
  }
  /// Lets go of the first element that is `element`; nothing happens when there is none.
  void remove(T* element) {
    T* removed = list_.remove(element);
    list_[0];  // the cursor must be rewound after a removal
    let_go(removed);
  }
  void reverse() {
    std::vector<T*> elements;
    for (T* element : *this) elements.push_back(element);
    list_[0];
    for (auto last = elements.rbegin(); last != elements.rend(); ++last, list_++) list_() = *last;
  }
  void clear() {
    for (T* element : *this) let_go(element);
    list_.clear();
  }

  [[nodiscard]] bool empty() const { return begin() == end(); }
  [[nodiscard]] int count() { return list_.count(); }
  /// The list itself, for those who walk it by its cursor. It keeps its references.
  [[nodiscard]] tvList<T*>& list() noexcept { return list_; }

  /// The walk must not outlive a change of the list.
  [[nodiscard]] Iterator begin() const { return list_.begin(); }
  [[nodiscard]] Iterator end() const { return list_.end(); }

 private:
  tvList<T*> list_;
};

}  // namespace zem::format
