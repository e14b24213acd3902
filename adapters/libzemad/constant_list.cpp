/// Constants are stored once and named by their position. Beside the list stands a hash index, so
/// that a file of a hundred thousand classes is read in linear time; whoever changes the list by
/// another way finds the index made anew.
#include <cstring>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "adapters/libzemad/parse_config.h"
#include "util/slist.h"

SL_List* ZEMAD_ConstantList = nullptr;

namespace zem::kernel {

namespace {

class ConstantIndex {
 public:
  /// Brings the index in step with `list`.
  void follow(const SL_List* list) {
    if (list == list_ && SL_NbrElm(list) == count_) return;
    texts_.clear();
    numbers_.clear();
    list_ = list;
    count_ = 0;
    for (const auto* entry : util::sl_items<AttributeEntry>(list)) add(entry);
  }

  /// `entry` is the list's next element.
  void add(const AttributeEntry* entry) {
    if (entry->Type == ZEMAD_TYPE_STRING) {
      texts_.try_emplace(static_cast<const char*>(entry->Value), count_);
    } else if (entry->Type == ZEMAD_TYPE_INT) {
      numbers_.try_emplace(number_of(entry), count_);
    }
    ++count_;
  }

  /// Position, or -1.
  [[nodiscard]] int find(std::string_view text) const { return position(texts_, text); }
  [[nodiscard]] int find(std::int32_t number) const { return position(numbers_, number); }

 private:
  static std::int32_t number_of(const AttributeEntry* entry) {
    std::int32_t number = 0;
    std::memcpy(&number, entry->Value, sizeof number);
    return number;
  }

  template <class Key>
  static int position(const std::unordered_map<Key, int>& positions, const Key& key) {
    const auto found = positions.find(key);
    return found == positions.end() ? -1 : found->second;
  }

  const SL_List* list_ = nullptr;
  int count_ = 0;
  std::unordered_map<std::string_view, int> texts_;  ///< views into the list's entries
  std::unordered_map<std::int32_t, int> numbers_;
};

std::unique_ptr<ConstantIndex>& constant_index() {
  static std::unique_ptr<ConstantIndex> index;
  return index;
}

/// The index in step with the list, which is made on first use; null when that fails.
ConstantIndex* current_index() {
  if (ZEMAD_ConstantList == nullptr) ZEMAD_ConstantList = SL_Create();
  if (ZEMAD_ConstantList == nullptr) return nullptr;
  if (!constant_index()) constant_index() = std::make_unique<ConstantIndex>();
  constant_index()->follow(ZEMAD_ConstantList);
  return constant_index().get();
}

int append(ConstantIndex& index, AttributeEntryPtr entry) {
  if (!entry || SL_InsLast(ZEMAD_ConstantList, entry.get()) == 0) return -1;
  index.add(entry.release());
  return SL_NbrElm(ZEMAD_ConstantList) - 1;
}

}  // namespace

void forget_constant_index() { constant_index().reset(); }

}  // namespace zem::kernel

int ZEMAD_AddConstantString(const char* text) {
  auto* index = zem::kernel::current_index();
  if (index == nullptr) return -1;
  const int known = index->find(std::string_view(text));
  if (known >= 0) return known;
  return append(*index, zem::kernel::AttributeEntryPtr(ZEMAD_MakeStringAttributeEntry(text)));
}

int ZEMAD_AddConstantInt(long value) {
  auto* index = zem::kernel::current_index();
  if (index == nullptr) return -1;
  const int known = index->find(static_cast<std::int32_t>(value));
  if (known >= 0) return known;
  return append(*index, zem::kernel::AttributeEntryPtr(ZEMAD_MakeIntAttributeEntry(value)));
}
