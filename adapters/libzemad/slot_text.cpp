#include "adapters/libzemad/slot_text.h"

#include <string_view>
#include <utility>

#include "adapters/libzemad/evaluation.h"

namespace zem::kernel {
namespace {

/// A wider conversion comes from a mistake, and may be refused for its size.
constexpr std::size_t kWidthMax = 4096;

class SlotDraft {
 public:
  SlotDraft(const SL_List* constants, std::size_t items) : constants_(constants), items_(items) {}

  /// False when it can not be foreseen what the variable gives.
  [[nodiscard]] bool add(const Variable* variable, const Conversion& conversion) {
    if (variable == nullptr) return false;
    if (variable->Routine == ZEMAD_EvalConstantEntry) {
      return add_constant(variable->Index, conversion);
    }
    const Part part = part_of(variable->Routine);
    const auto item = static_cast<std::size_t>(variable->Index);
    if (part == Part::kNothing || variable->Index < 0 || item >= items_) return false;
    pieces_.push_back({std::exchange(text_, {}), part, item, conversion});
    return true;
  }

  void add(std::string_view text) { text_ += text; }

  std::vector<DraftPiece> finish() {
    if (!text_.empty() || pieces_.empty())
      pieces_.push_back({std::move(text_), Part::kNothing, 0, {}});
    return std::move(pieces_);
  }

 private:
  static Part part_of(ZEMAD_EvalRoutine routine) {
    if (routine == ZEMAD_EvalNameAttrEntry) return Part::kName;
    if (routine == ZEMAD_EvalKeyAttrEntry) return Part::kKey;
    if (routine == ZEMAD_EvalValueAttrEntry) return Part::kValue;
    return Part::kNothing;
  }

  bool add_constant(int index, const Conversion& conversion) {
    const char* shown = ZEMAD_AttributeEntryValueToString(
        static_cast<const AttributeEntry*>(SL_GetPos(constants_, index)));
    if (shown == nullptr) return false;
    conversion.append(shown, text_);
    return true;
  }

  const SL_List* constants_;
  std::size_t items_;
  std::vector<DraftPiece> pieces_;
  std::string text_;  ///< what comes before the next piece
};

/// The variables without a format, one behind the other.
bool draft_plain(const SL_List* variables, SlotDraft& draft) {
  for (const auto* variable : util::sl_items<Variable>(variables)) {
    if (!draft.add(variable, {})) return false;
  }
  return true;
}

/// False for every format that the plain evaluation complains of.
bool draft_printf(std::string_view format, const SL_List* variables, SlotDraft& draft) {
  for (const auto* variable : util::sl_items<Variable>(variables)) {
    const std::size_t percent = format.find('%');
    if (percent == std::string_view::npos) return false;
    draft.add(format.substr(0, percent));
    format.remove_prefix(percent + 1);
    const Conversion conversion = take_conversion(format);
    if (!conversion.is_string || conversion.width > kWidthMax) return false;
    if (!draft.add(variable, conversion)) return false;
  }
  draft.add(format);
  return true;
}

}  // namespace

std::optional<std::vector<DraftPiece>> draft_slot(const Map& line, const SL_List* constants,
                                                  std::size_t items) {
  if (line.Variables == nullptr) return std::nullopt;
  SlotDraft draft(constants, items);
  const bool is_foreseen = line.Format == nullptr
                               ? draft_plain(line.Variables, draft)
                               : draft_printf(line.Format, line.Variables, draft);
  if (!is_foreseen) return std::nullopt;
  return draft.finish();
}

}  // namespace zem::kernel
