/// Entries and events written down as test data: `Entry("text")`, `Entry(5)`, and an event of them
/// that is the current one for the length of a scope. Link zem_frame_test_support.
#pragma once

#include <initializer_list>
#include <string>

#include "adapters/libzemad/configuration.h"

namespace zem::test {

/// What an AttributeEntry is to hold.
class Entry {
 public:
  Entry(const char* text)  // NOLINT(google-explicit-constructor): test data reads like values
      : type_(ZEMAD_TYPE_STRING), text_(text) {}
  Entry(int number)  // NOLINT(google-explicit-constructor)
      : type_(ZEMAD_TYPE_INT), number_(static_cast<std::uint32_t>(number)) {}

  static Entry unsigned_number(std::uint32_t number);
  static Entry null() { return Entry(ZEMAD_TYPE_NULL, Shape::kWithoutValue); }
  /// Of the type, with length 0 and no value.
  static Entry without_value(ZEMAD_Type type) { return {type, Shape::kWithoutValue}; }
  /// No entry at all: a null pointer.
  static Entry none() { return {ZEMAD_TYPE_NULL, Shape::kNoEntry}; }

  [[nodiscard]] kernel::AttributeEntryPtr make() const;

 private:
  enum class Shape { kWithValue, kWithoutValue, kNoEntry };
  Entry(ZEMAD_Type type, Shape shape) : type_(type), shape_(shape) {}

  ZEMAD_Type type_;
  Shape shape_ = Shape::kWithValue;
  std::string text_;
  std::uint32_t number_ = 0;
};

/// A list of entries that owns them.
using EntryList = util::SlListOf<ZEMAD_FreeAttributeEntry>;
[[nodiscard]] EntryList make_list(std::initializer_list<Entry> entries);

struct NamedEntry {
  Entry name;
  Entry value;
  Entry key = "";
};

/// An event of these attributes, queued and made current; discarded at the end of the scope. The
/// varbind keyword has the text "", as the log-file source sets it, unless `keyword` says
/// otherwise.
class CurrentEvent {
 public:
  CurrentEvent(std::initializer_list<NamedEntry> attributes, const Entry& keyword = "");
  CurrentEvent(const CurrentEvent&) = delete;
  CurrentEvent& operator=(const CurrentEvent&) = delete;
  ~CurrentEvent();
};

}  // namespace zem::test
