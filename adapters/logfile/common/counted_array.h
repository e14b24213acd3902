/// An array whose every element holds a counted reference: what enters is raised, what leaves is
/// lowered and destroyed at 0. For the long lists that only ever grow at their end; a CountedList
/// (counted_list.h) takes four times the memory and can also give up its elements one by one.
#pragma once

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
