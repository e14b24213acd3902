/// Counted objects of the format engine: components, map entries, map specifications. Each carries
/// its own count, open through `int& refcnt()`, and starts at 0; a holder raises it and lowers it,
/// and the holder that brings it to 0 destroys the object. One thread, plain ints.
///
/// Nobody counts by hand: a single reference is a `Ref`, a list of references a `CountedList`
/// (counted_list.h). A destructor that finds its count above 0 aborts.
#pragma once

#include <memory>
#include <utility>

namespace zem::format {

/// A new object with count 0, for the next line to put into a `Ref` or a `CountedList`.
template <class T, class... Args>
[[nodiscard]] T* make_counted(Args&&... args) {
  return std::make_unique<T>(std::forward<Args>(args)...).release();
}

/// Raises the count; null is allowed.
template <class T>
T* hold(T* object) {
  if (object != nullptr) ++object->refcnt();
  return object;
}

/// Lowers the count and destroys the object at 0; null is allowed.
template <class T>
void let_go(T* object) {
  if (object != nullptr && --object->refcnt() == 0) std::default_delete<T>()(object);
}

/// One counted reference.
template <class T>
class Ref {
 public:
  Ref() noexcept = default;
  explicit Ref(T* object) : object_(hold(object)) {}
  Ref(const Ref& other) : object_(hold(other.object_)) {}
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Ref() { let_go(object_); }

  [[nodiscard]] T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

 private:
  T* object_ = nullptr;
};

}  // namespace zem::format
