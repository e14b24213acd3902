/// An array whose every element holds a counted reference: what enters is raised, what leaves is
/// lowered and destroyed at 0. For the many short lists of a set; each element of a CountedList
/// (counted_list.h) takes four times the memory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "adapters/logfile/common/ref.h"

namespace zem::format {

template <class T>
class CountedArray {
 public:
  CountedArray() = default;
  CountedArray(const CountedArray&) = delete;
  CountedArray& operator=(const CountedArray&) = delete;
  ~CountedArray() { clear(); }

  void reserve(std::size_t elements) { elements_.reserve(elements); }
  /// Gives back the memory for elements that will not come.
  void shrink_to_fit() { elements_.shrink_to_fit(); }
  void append(T* element) {
    elements_.push_back(element);
    hold(element);
  }
  /// Puts `element` at the place of `old`, which is let go; `old` is in the array.
  void replace(T* old, T* element) {
    *std::ranges::find(elements_, old) = hold(element);
    let_go(old);
  }
  /// Lets go of the first element that is `element`; nothing happens when there is none.
  void remove(T* element) {
    const auto found = std::ranges::find(elements_, element);
    if (found == elements_.end()) return;
    elements_.erase(found);
    let_go(element);
  }
  void clear() {
    for (T* element : elements_) let_go(element);
    elements_.clear();
  }

  [[nodiscard]] bool empty() const { return elements_.empty(); }
  [[nodiscard]] std::size_t size() const { return elements_.size(); }
  [[nodiscard]] T* operator[](std::size_t i) const { return elements_[i]; }
  [[nodiscard]] T* const* begin() const { return elements_.data(); }
  [[nodiscard]] T* const* end() const { return elements_.data() + elements_.size(); }

 private:
  std::vector<T*> elements_;
};

}  // namespace zem::format
