// Classes that want the same id are a chain through `next_`, in file order; the others stand in one
// array, in file order, too. Candidates merges the two.
#include "adapters/libzemad/class_index.h"

#include <algorithm>
#include <utility>

#include "adapters/libzemad/entry_view.h"
#include "adapters/libzemad/evaluation.h"
#include "adapters/libzemad/select.h"

namespace zem::kernel {
namespace {

/// Ids are looked up in an array while it would not be much longer than the list of classes.
constexpr std::size_t kNumbersPerClass = 4;
constexpr std::size_t kNumbersMin = 1024;

/// The text of a string constant; nothing for any other operand.
std::optional<std::string_view> constant_text(const SL_List* constants, int index) {
  const auto* entry = static_cast<const AttributeEntry*>(SL_GetPos(constants, index));
  if (!is_text(entry)) return std::nullopt;
  return text_of(*entry);
}

/// The number that `id` writes in the usual way; nothing for "007", "+7" or a long one.
std::optional<std::size_t> number_of(std::string_view id) {
  constexpr std::size_t kDigitsMax = 9;
  if (id.empty() || id.size() > kDigitsMax || (id.front() == '0' && id.size() > 1)) {
    return std::nullopt;
  }
  std::size_t number = 0;
  for (const char digit : id) {
    if (digit < '0' || digit > '9') return std::nullopt;
    number = number * 10 + static_cast<std::size_t>(digit - '0');
  }
  return number;
}

}  // namespace

std::optional<std::string_view> wanted_id(const Config* config, const SL_List* constants) {
  if (config == nullptr) return std::nullopt;
  const auto* first = static_cast<const Select*>(SL_GetPos(config->SelectList, 0));
  if (first == nullptr || first->Attr == nullptr || first->Key != nullptr ||
      first->Value == nullptr) {
    return std::nullopt;
  }
  const SelectOperation& name = *first->Attr;
  const SelectOperation& value = *first->Value;
  if (name.Operator != ZEMAD_OPERATOR_EQUAL || name.Find != ZEMAD_GetAttributeConstant ||
      value.Operator != ZEMAD_OPERATOR_EQUAL || value.Get != ZEMAD_GetConstantEntry ||
      constant_text(constants, name.Index) != ClassIndex::kEventId) {
    return std::nullopt;
  }
  return constant_text(constants, value.Index);
}

std::uint32_t ClassIndex::Candidates::next() {
  if (std::exchange(is_named_, false)) keyed_ = index_->next_[keyed_];
  const std::vector<std::uint32_t>& others = index_->others_;
  const std::uint32_t other = other_ < others.size() ? others[other_] : kEnd;
  const std::uint32_t next = std::min(keyed_, other);
  if (next == kEnd) return kEnd;
  if (next == other) {
    ++other_;
  } else {
    is_named_ = true;
  }
  return next;
}

/// From the last class to the first, so that each chain grows at its head.
ClassIndex::ClassIndex(const SL_List* classes, const SL_List* constants) {
  const auto count = static_cast<std::size_t>(SL_NbrElm(classes));
  first_by_number_.assign(std::max(kNumbersPerClass * count, kNumbersMin), kEnd);
  next_.assign(count, kEnd);
  for (auto position = static_cast<std::uint32_t>(count); position-- > 0;) {
    const auto* config = static_cast<const Config*>(SL_GetPos(classes, static_cast<int>(position)));
    const auto id = wanted_id(config, constants);
    if (!id) {
      others_.push_back(position);
      continue;
    }
    std::uint32_t& first = first_slot(*id);
    next_[position] = first;
    first = position;
  }
  std::ranges::reverse(others_);
}

std::uint32_t& ClassIndex::first_slot(std::string_view id) {
  const auto number = number_of(id);
  if (number && *number < first_by_number_.size()) return first_by_number_[*number];
  return first_by_text_.try_emplace(id, kEnd).first->second;
}

std::uint32_t ClassIndex::first_with(std::string_view id) const {
  const auto number = number_of(id);
  if (number && *number < first_by_number_.size()) return first_by_number_[*number];
  const auto found = first_by_text_.find(id);
  return found == first_by_text_.end() ? kEnd : found->second;
}

}  // namespace zem::kernel
