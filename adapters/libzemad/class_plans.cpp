#include "adapters/libzemad/class_plans.h"

#include <algorithm>
#include <utility>

namespace zem::kernel {
namespace {

bool name_holds(const ItemTest& item, std::string_view name) {
  switch (item.name_test) {
    case NameTest::kPrefix:
      return name.starts_with(item.name);
    case NameTest::kSuffix:
      return name.ends_with(item.name);
    case NameTest::kEqual:
      break;
  }
  return name == item.name;
}

bool value_holds(const ItemTest& item, std::string_view value) {
  switch (item.value_test) {
    case ValueTest::kNone:
      return true;
    case ValueTest::kEqual:
      return value == item.value;
    case ValueTest::kPrefix:
      return value.starts_with(item.value);
    case ValueTest::kSuffix:
      return value.ends_with(item.value);
    case ValueTest::kContains:
      return value.find(item.value) != std::string_view::npos;
    case ValueTest::kNever:
      break;
  }
  return false;
}

/// What `part` shows of the attribute at `place`. The key of every attribute of a view is empty.
std::string_view shown(Part part, const EventView& event, std::size_t place) {
  if (part == Part::kValue) return event.values[place];
  if (part == Part::kName) return event.layout->names()[place];
  return {};
}

}  // namespace

// Selection ---------------------------------------------------------------------------------------

Selection::Selection(std::vector<ItemTest> items) : items_(std::move(items)) {
  for (std::uint32_t i = 0; i < items_.size(); ++i) {
    if (items_[i].value_test != ValueTest::kNone) tested_.push_back(i);
  }
}

bool Selection::holds(const EventView& event) {
  if (layout_ != event.layout->id()) find_places(*event.layout);
  return is_complete_ && std::ranges::all_of(tested_, [&](std::uint32_t item) {
           return value_holds(items_[item], event.values[places_[item]]);
         });
}

void Selection::find_places(const EventLayout& layout) {
  layout_ = layout.id();
  is_complete_ = false;
  places_.clear();
  for (const ItemTest& item : items_) {
    const auto found = std::ranges::find_if(
        layout.names(), [&](const std::string& name) { return name_holds(item, name); });
    if (found == layout.names().end()) return;
    places_.push_back(static_cast<std::uint32_t>(found - layout.names().begin()));
  }
  is_complete_ = true;
}

// ClassPlans --------------------------------------------------------------------------------------

ClassPlans::Fit ClassPlans::try_class(std::size_t position, const EventView& event) {
  const Plan& plan = plans_[position];
  if (plan.kind == Plan::Kind::kUnknown) return Fit::kUnknown;
  return selections_[plan.selection].holds(event) ? Fit::kYes : Fit::kNo;
}

Outcome ClassPlans::carry_out(std::size_t position, const EventView& event, EventText& text) {
  const Plan& plan = plans_[position];
  if (plan.kind == Plan::Kind::kDiscards) return Outcome::kDropped;
  if (plan.kind != Plan::Kind::kWrites) return Outcome::kUnknown;
  const Selection& selection = selections_[plan.selection];
  text.clear();
  text.append(text_of(plan.name_begin, plan.name_length));
  for (const Step& step : std::span(steps_).subspan(plan.first_step, plan.step_count)) {
    switch (step.part) {
      case Part::kNothing:
        text.append(text_of(step.begin, step.length));
        break;
      case Part::kGroup:
        text.append_quoted(group_text(step, selection, event));
        break;
      default:
        text.append(text_of(step.begin, step.length),
                    shown(step.part, event, selection.place(step.item)));
        break;
    }
  }
  return Outcome::kText;
}

std::string_view ClassPlans::group_text(const Step& group, const Selection& selection,
                                        const EventView& event) {
  group_.clear();
  for (const Piece& piece : std::span(pieces_).subspan(group.begin, group.length)) {
    group_.append(text_of(piece.begin, piece.length));
    if (piece.part == Part::kNothing) continue;
    piece.conversion.append(shown(piece.part, event, selection.place(piece.item)), group_);
  }
  return group_;
}

}  // namespace zem::kernel
