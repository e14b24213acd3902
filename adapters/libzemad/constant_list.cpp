/// Constants are stored once and named by their position. Beside the list stands a hash index, so
/// that a file of a hundred thousand classes is read in linear time; whoever changes the list by
/// another way finds the index made anew.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "adapters/libzemad/parse_config.h"
#include "util/slist.h"
#include "util/text_table.h"

SL_List* ZEMAD_ConstantList = nullptr;

namespace zem::kernel {

namespace {

class ConstantIndex {
 public:
  /// Brings the index in step with `list`.
  void follow(const SL_List* list) {
    if (list == list_ && SL_NbrElm(list) == count_) return;
    texts_.clear();
    positions_.clear();
    numbers_.clear();
    list_ = list;
    count_ = 0;
    for (const auto* entry : util::sl_items<AttributeEntry>(list)) add(entry);
  }

  /// `entry` is the list's next element.
  void add(const AttributeEntry* entry) {
    if (entry->Type == ZEMAD_TYPE_STRING) {
      if (texts_.add(static_cast<const char*>(entry->Value)).is_new) positions_.push_back(count_);
    } else if (entry->Type == ZEMAD_TYPE_INT) {
      numbers_.try_emplace(number_of(entry), count_);
    }
    ++count_;
  }

  /// Position, or -1.
  [[nodiscard]] int find(std::string_view text) const {
    const std::uint32_t known = texts_.find(text);
    return known == util::TextTable::kNone ? -1 : positions_[known];
  }
  [[nodiscard]] int find(std::int32_t number) const {
    const auto found = numbers_.find(number);
    return found == numbers_.end() ? -1 : found->second;
  }

 private:
  static std::int32_t number_of(const AttributeEntry* entry) {
    std::int32_t number = 0;
    std::memcpy(&number, entry->Value, sizeof number);
    return number;
  }

  const SL_List* list_ = nullptr;
  int count_ = 0;
  util::TextTable texts_;
  std::vector<int> positions_;  ///< by number of the text
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

int add_constant(std::string_view text) {
  ConstantIndex* const index = current_index();
  if (index == nullptr) return -1;
  const int known = index->find(text);
  if (known >= 0) return known;
  return append(*index,
                AttributeEntryPtr(ZEMAD_MakeStringAttributeEntry(std::string(text).c_str())));
}

void forget_constant_index() { constant_index().reset(); }

}  // namespace zem::kernel

int ZEMAD_AddConstantString(const char* text) { return zem::kernel::add_constant(text); }

int ZEMAD_AddConstantInt(long value) {
  auto* index = zem::kernel::current_index();
  if (index == nullptr) return -1;
  const int known = index->find(static_cast<std::int32_t>(value));
  if (known >= 0) return known;
  return append(*index, zem::kernel::AttributeEntryPtr(ZEMAD_MakeIntAttributeEntry(value)));
}
