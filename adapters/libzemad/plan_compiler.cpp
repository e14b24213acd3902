#include "adapters/libzemad/plan_compiler.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "adapters/libzemad/class_index.h"
#include "adapters/libzemad/entry_view.h"
#include "adapters/libzemad/evaluation.h"
#include "adapters/libzemad/quoting.h"
#include "adapters/libzemad/select.h"
#include "adapters/libzemad/slot_text.h"
#include "util/text_table.h"

namespace zem::kernel {
namespace {

constexpr std::size_t kTextMax = std::numeric_limits<std::uint16_t>::max();
constexpr std::size_t kItemsMax = std::numeric_limits<std::uint8_t>::max();

// SELECT ------------------------------------------------------------------------------------------

const AttributeEntry* constant_at(const SL_List* constants, int index) {
  const auto* entry = static_cast<const AttributeEntry*>(SL_GetPos(constants, index));
  return entry == nullptr || entry->Value == nullptr ? nullptr : entry;
}

std::optional<NameTest> name_test(int operator_code) {
  switch (operator_code) {
    case ZEMAD_OPERATOR_EQUAL:
      return NameTest::kEqual;
    case ZEMAD_OPERATOR_PREFIX:
      return NameTest::kPrefix;
    case ZEMAD_OPERATOR_SUFFIX:
      return NameTest::kSuffix;
    default:
      return std::nullopt;
  }
}

/// Of a text against a text. Ordering and inequality hold for whatever is no number.
std::optional<ValueTest> value_test(int operator_code) {
  switch (operator_code) {
    case ZEMAD_OPERATOR_EQUAL:
      return ValueTest::kEqual;
    case ZEMAD_OPERATOR_PREFIX:
      return ValueTest::kPrefix;
    case ZEMAD_OPERATOR_SUFFIX:
      return ValueTest::kSuffix;
    case ZEMAD_OPERATOR_CONTAINS:
      return ValueTest::kContains;
    case ZEMAD_OPERATOR_NOT_EQUAL:
    case ZEMAD_OPERATOR_GREATER:
    case ZEMAD_OPERATOR_GREATER_EQUAL:
    case ZEMAD_OPERATOR_LESS:
    case ZEMAD_OPERATOR_LESS_EQUAL:
      return ValueTest::kNone;
    default:
      return std::nullopt;  // refused with a message
  }
}

/// False when the test is not between texts that are known beforehand. A test against a number
/// fails without a word, since no value of a view is a number.
bool set_value_test(const SelectOperation* operation, const SL_List* constants, ItemTest& item) {
  if (operation == nullptr) return true;
  if (operation->Get != ZEMAD_GetConstantEntry) return false;
  const AttributeEntry* operand = constant_at(constants, operation->Index);
  const auto test = value_test(operation->Operator);
  if (operand == nullptr || !test) return false;
  item.value_test = is_text(operand) ? *test : ValueTest::kNever;
  item.value = is_text(operand) ? text_of(*operand) : std::string_view();
  return true;
}

/// Nothing for the empty name, too: the table of keywords answers to it.
std::optional<ItemTest> item_test(const Select* item, const SL_List* constants) {
  if (item == nullptr || item->Attr == nullptr || item->Key != nullptr) return std::nullopt;
  if (item->Attr->Find != ZEMAD_GetAttributeConstant) return std::nullopt;
  const AttributeEntry* name = constant_at(constants, item->Attr->Index);
  const auto test = name_test(item->Attr->Operator);
  if (!is_text(name) || text_of(*name).empty() || !test) return std::nullopt;
  ItemTest result{*test, ValueTest::kNone, text_of(*name), {}};
  if (!set_value_test(item->Value, constants, result)) return std::nullopt;
  return result;
}

using Items = std::vector<ItemTest>;

/// Nothing when the class has no items or one that can not be decided on texts alone.
std::optional<Items> select_items(const Config& config, const SL_List* constants) {
  Items items;
  items.reserve(static_cast<std::size_t>(SL_NbrElm(config.SelectList)));
  for (const auto* item : util::sl_items<Select>(config.SelectList)) {
    const auto test = item_test(item, constants);
    if (!test) return std::nullopt;
    items.push_back(*test);
  }
  if (items.empty() || items.size() > kItemsMax) return std::nullopt;
  // The index has compared the id: without that test the class shares its selection with others.
  if (wanted_id(&config, constants)) items.front().value_test = ValueTest::kNone;
  return items;
}

/// Equal for equal tests, and only for those: no text holds a NUL.
std::string key_of(const Items& items) {
  constexpr std::size_t kUsualItemBytes = 16;
  std::string key;
  key.reserve(kUsualItemBytes * items.size());
  for (const ItemTest& item : items) {
    key += static_cast<char>(item.name_test);
    key += static_cast<char>(item.value_test);
    key.append(item.name).push_back('\0');
    if (item.value_test != ValueTest::kNone) key.append(item.value);
    key.push_back('\0');
  }
  return key;
}

// MAP ---------------------------------------------------------------------------------------------

struct DraftSlot {
  std::string_view name;
  std::vector<DraftPiece> value;
};

/// The slots in the order in which they are sent. Nothing when one can not be foreseen, also if a
/// later line takes its place: the plain evaluation works out every line.
class SlotDrafts {
 public:
  SlotDrafts(const SL_List* constants, std::size_t items) : constants_(constants), items_(items) {}

  [[nodiscard]] bool add_lines(const SL_List* lines) {
    slots_.reserve(slots_.size() + static_cast<std::size_t>(SL_NbrElm(lines)));
    for (const Map* line : util::sl_items<Map>(lines)) {
      if (!add_line(line)) return false;
    }
    return true;
  }
  [[nodiscard]] const std::vector<DraftSlot>& slots() const { return slots_; }

 private:
  bool add_line(const Map* line) {
    if (line == nullptr || line->SlotName == nullptr) return false;
    auto value = draft_slot(*line, constants_, items_);
    if (!value || !fits(*value)) return false;
    const std::string_view name = line->SlotName;
    const auto known = std::ranges::find(slots_, name, &DraftSlot::name);
    if (known != slots_.end()) {
      known->value = std::move(*value);
    } else {
      slots_.push_back({name, std::move(*value)});
    }
    return true;
  }

  /// The sizes have 16 bits in a plan.
  static bool fits(const std::vector<DraftPiece>& value) {
    return value.size() <= kTextMax && std::ranges::all_of(value, [](const DraftPiece& piece) {
             return piece.text.size() <= kTextMax;
           });
  }

  const SL_List* constants_;
  std::size_t items_;
  std::vector<DraftSlot> slots_;
};

void append_quoted(std::string_view text, std::string& out) {
  const std::size_t begin = out.size();
  out.resize(begin + quoted_bytes_max(text.size()));
  const char* const end = write_quoted(text, out.data() + begin);
  out.resize(static_cast<std::size_t>(end - out.data()));
}

/// Like a plain line: an attribute's text and nothing else.
bool is_operand(const std::vector<DraftPiece>& value) {
  return value.size() == 1 && value[0].text.empty() && value[0].part != Part::kNothing &&
         value[0].conversion.is_plain();
}

bool is_text_alone(const std::vector<DraftPiece>& value) {
  return value.size() == 1 && value[0].part == Part::kNothing;
}

}  // namespace

// The plans ---------------------------------------------------------------------------------------

class PlanCompiler {
 public:
  PlanCompiler(const SL_List* constants, const SL_List* defaults)
      : constants_(constants), defaults_(defaults) {}

  void add(const Config* config) { result_.plans_.push_back(plan_of(config)); }
  ClassPlans take() {
    result_.texts_ = texts_.take_texts();
    result_.texts_.append(EventText::kBlockBytes, '\0');
    return std::move(result_);
  }

 private:
  Plan plan_of(const Config* config) {
    Plan plan;
    if (config == nullptr) return plan;
    const auto items = select_items(*config, constants_);
    if (!items) return plan;
    plan.selection = selection_of(*items);
    plan.kind = config->ClassName == nullptr ? Plan::Kind::kDiscards : Plan::Kind::kSelects;
    if (plan.kind == Plan::Kind::kDiscards || SL_NbrElm(config->FetchList) > 0) return plan;
    SlotDrafts drafts(constants_, items->size());
    if (!drafts.add_lines(defaults_) || !drafts.add_lines(config->MapList)) return plan;
    const std::string name = std::string(config->ClassName) + ';';
    if (name.size() > kTextMax) return plan;
    plan.name_begin = stored(name);
    plan.name_length = static_cast<std::uint16_t>(name.size());
    const auto behind_others = static_cast<std::uint32_t>(result_.steps_.size());
    write_steps(drafts.slots());
    plan.step_count = static_cast<std::uint32_t>(result_.steps_.size()) - behind_others;
    plan.first_step = once_only(behind_others);
    plan.kind = Plan::Kind::kWrites;
    return plan;
  }

  /// Where the steps from `first` on stand. They are taken back when an earlier class has the same.
  std::uint32_t once_only(std::uint32_t first) {
    static_assert(std::has_unique_object_representations_v<Step>);
    const auto bytes = std::as_bytes(std::span(result_.steps_).subspan(first));
    const auto [number, is_new] =
        steps_.add({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (is_new) {
      first_steps_.push_back(first);
    } else {
      result_.steps_.resize(first);
    }
    return first_steps_[number];
  }

  std::uint32_t selection_of(const Items& items) {
    const auto [number, is_new] = selections_.add(key_of(items));
    if (is_new) result_.selections_.emplace_back(items);
    return number;
  }

  void write_steps(const std::vector<DraftSlot>& slots) {
    for (const DraftSlot& slot : slots) {
      append_quoted(slot.name, text_);
      text_ += '=';
      write_value(slot.value);
      text_ += ';';
    }
    text_ += "END\n";
    write_text();
  }

  void write_value(const std::vector<DraftPiece>& value) {
    if (is_text_alone(value)) {
      append_quoted(value[0].text, text_);
    } else if (is_operand(value)) {
      write_step(value[0].part, value[0].item);
    } else {
      write_text();
      write_group(value);
    }
  }

  /// A step with the text that has gathered, and `part` behind it.
  void write_step(Part part, std::size_t item) {
    std::string_view rest = text_;
    for (; rest.size() > kTextMax; rest.remove_prefix(kTextMax)) {
      result_.steps_.push_back({stored(rest.substr(0, kTextMax)), kTextMax, Part::kNothing, 0});
    }
    result_.steps_.push_back({stored(rest), static_cast<std::uint16_t>(rest.size()), part,
                              static_cast<std::uint8_t>(item)});
    text_.clear();
  }

  void write_text() {
    if (!text_.empty()) write_step(Part::kNothing, 0);
  }

  void write_group(const std::vector<DraftPiece>& value) {
    const auto first = static_cast<std::uint32_t>(result_.pieces_.size());
    for (const DraftPiece& piece : value) {
      result_.pieces_.push_back({stored(piece.text), static_cast<std::uint16_t>(piece.text.size()),
                                 piece.part, static_cast<std::uint8_t>(piece.item),
                                 piece.conversion});
    }
    result_.steps_.push_back({first, static_cast<std::uint16_t>(value.size()), Part::kGroup, 0});
  }

  /// Where the text stands among the texts, each of which is there once.
  std::uint32_t stored(std::string_view text) {
    return static_cast<std::uint32_t>(texts_.begin(texts_.add(text).number));
  }

  const SL_List* constants_;
  const SL_List* defaults_;
  ClassPlans result_;
  util::TextTable selections_;  ///< by key_of
  util::TextTable texts_;
  util::TextTable steps_;                   ///< by their bytes
  std::vector<std::uint32_t> first_steps_;  ///< of those
  std::string text_;                        ///< what the next step begins with
};

ClassPlans compile_plans(const SL_List* classes, const SL_List* constants,
                         const SL_List* defaults) {
  PlanCompiler compiler(constants, defaults);
  for (const auto* config : util::sl_items<Config>(classes)) compiler.add(config);
  return compiler.take();
}

}  // namespace zem::kernel
