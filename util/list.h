/// The format engine's list of pointers, with one built-in cursor. The list object is itself the
/// first node, so that its first element lives in it; a list without a first value is empty, and
/// null can not be stored. The list owns its nodes, never what their values point to.
///
/// A walk by the cursor, of which there is only one, so that such walks do not nest:
///
///     for (list[0]; list.has(); list++) use(list());
///
/// A range-for leaves the cursor alone. Neither survives a change of the list.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "util/expect.h"

template <class T>
class tvNode {
  static_assert(std::is_pointer_v<T>);

 public:
  tvNode() = default;
  explicit tvNode(const T& v) : value(v) {}
  tvNode(const tvNode&) = delete;
  tvNode& operator=(const tvNode&) = delete;
  virtual ~tvNode() = default;

  std::unique_ptr<tvNode> next;
  T value = nullptr;
};

template <class T>
class tvList : public tvNode<T> {
 public:
  using Node = tvNode<T>;

  class Iterator {
   public:
    explicit Iterator(const Node* node) : node_(node) {}
    T operator*() const { return node_->value; }
    Iterator& operator++() {
      node_ = node_->next.get();
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    const Node* node_;
  };

  tvList() = default;
  explicit tvList(const T& v) { (*this)(v); }
  /// Walks the other list by its cursor, which has run off the end afterwards.
  tvList(tvList& other) : Node() { *this = other; }
  tvList& operator=(tvList& other);
  ~tvList() override { clear(); }

  /// Appends `v` (not null) in constant time. The cursor stands on it; returns where it is stored.
  T& operator()(const T& v);
  /// Inserts `v` (not null) so that it has index `pos`, or at the end of a shorter list. The cursor
  /// stands on the new node, which for `pos` 0 is the second: the first node takes `v` and hands it
  /// the value it had. Returns where `v` is stored.
  T& operator()(const T& v, unsigned pos);
  /// The value at index `i`, which is inside the list or 0 (null in an empty list); the cursor
  /// stands on it.
  T& operator[](int i);
  /// `v` with the cursor on it when the list has it; otherwise the first element (null in an empty
  /// list), the cursor off the end.
  T& operator[](const T& v);
  /// Replaces the first value that is `before`; returns `after`, or `before` when there is none.
  T& operator()(T& before, T& after);

  /// The value at the cursor; the first one when the cursor is off the end.
  T& operator()() { return cursor_ == nullptr ? this->value : cursor_->value; }
  /// On to the next node; off the end behind the last one.
  void operator++(int) {
    if (cursor_ != nullptr) cursor_ = cursor_->next.get();
  }
  [[nodiscard]] bool has() const { return cursor_ != nullptr && cursor_->value != nullptr; }

  /// Number of elements; the cursor is off the end afterwards.
  int count();
  /// Removes the first value that is `v` and returns it; null when there is none. Afterwards the
  /// cursor is off the end. Nodes do not keep their values: behind a removed first one all values
  /// move one node forward.
  T remove(const T& v);
  /// Empties the list; the cursor is on the first node.
  void clear();

  [[nodiscard]] Iterator begin() const { return Iterator(this->value == nullptr ? nullptr : this); }
  [[nodiscard]] Iterator end() const { return Iterator(nullptr); }

 private:
  [[nodiscard]] bool isEmpty() const { return this->value == nullptr; }
  T& storeFirst(const T& v);
  Node& linkBehind(Node& node, const T& v);
  void dropBehind(Node& node);
  /// The node before the one that holds `v`, from the second node on; null when there is none.
  Node* nodeBefore(const T& v);
  void removeFirst();

  Node* cursor_ = this;
  Node* last_ = this;
};

template <class T>
tvList<T>& tvList<T>::operator=(tvList& other) {
  if (&other != this) {
    clear();
    for (other[0]; other.has(); other++) (*this)(other());
  }
  cursor_ = this;
  return *this;
}

template <class T>
T& tvList<T>::operator()(const T& v) {
  return isEmpty() ? storeFirst(v) : linkBehind(*last_, v).value;
}

template <class T>
T& tvList<T>::operator()(const T& v, unsigned pos) {
  if (isEmpty()) return storeFirst(v);
  if (pos == 0) {
    Node& second = linkBehind(*this, v);
    std::swap(this->value, second.value);
    return this->value;
  }
  Node* node = this;
  for (unsigned step = 1; step < pos && node != last_; ++step) node = node->next.get();
  return linkBehind(*node, v).value;
}

template <class T>
T& tvList<T>::operator[](int i) {
  cursor_ = this;
  for (; i > 0 && cursor_ != nullptr; --i) (*this)++;
  zem::util::expect(i == 0 && cursor_ != nullptr, "an index is inside its tvList");
  return cursor_->value;
}

template <class T>
T& tvList<T>::operator[](const T& v) {
  cursor_ = this;
  while (has() && cursor_->value != v) (*this)++;
  if (!has()) cursor_ = nullptr;
  return (*this)();
}

template <class T>
T& tvList<T>::operator()(T& before, T& after) {
  Node* node = this;
  while (node != nullptr && node->value != before) node = node->next.get();
  if (node == nullptr || isEmpty()) return before;
  zem::util::expect(after != nullptr, "null is not stored in a tvList");
  node->value = after;
  return after;
}

template <class T>
int tvList<T>::count() {
  int elements = 0;
  for ((*this)[0]; has(); (*this)++) ++elements;
  cursor_ = nullptr;
  return elements;
}

template <class T>
T tvList<T>::remove(const T& v) {
  const T removed = v;  // `v` may be the node's own value
  if (isEmpty() || removed == nullptr) return nullptr;
  if (this->value == removed) {
    removeFirst();
  } else {
    Node* before = nodeBefore(removed);
    if (before == nullptr) return nullptr;
    dropBehind(*before);
  }
  cursor_ = nullptr;
  return removed;
}

template <class T>
void tvList<T>::clear() {
  // One by one: a chain that destroys itself would go as deep as it is long.
  while (this->next != nullptr) this->next = std::move(this->next->next);
  this->value = nullptr;
  cursor_ = last_ = this;
}

template <class T>
T& tvList<T>::storeFirst(const T& v) {
  zem::util::expect(v != nullptr, "null is not stored in a tvList");
  cursor_ = this;
  return this->value = v;
}

template <class T>
tvNode<T>& tvList<T>::linkBehind(Node& node, const T& v) {
  zem::util::expect(v != nullptr, "null is not stored in a tvList");
  auto added = std::make_unique<Node>(v);
  added->next = std::move(node.next);
  node.next = std::move(added);
  cursor_ = node.next.get();
  if (last_ == &node) last_ = cursor_;
  return *cursor_;
}

template <class T>
void tvList<T>::dropBehind(Node& node) {
  if (last_ == node.next.get()) last_ = &node;
  node.next = std::move(node.next->next);
}

template <class T>
tvNode<T>* tvList<T>::nodeBefore(const T& v) {
  Node* node = this;
  while (node->next != nullptr && node->next->value != v) node = node->next.get();
  return node->next == nullptr ? nullptr : node;
}

template <class T>
void tvList<T>::removeFirst() {
  if (this->next == nullptr) {
    this->value = nullptr;
    return;
  }
  Node* node = this;
  while (true) {
    node->value = node->next->value;
    if (node->next.get() == last_) break;
    node = node->next.get();
  }
  dropBehind(*node);
}
