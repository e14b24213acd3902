/// What can be doubtful in a class file that the kernel accepts, given the FORMATs whose events it
/// is to classify. Classes with faults of their own are left alone.
#pragma once

#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "tools/fmt/class_outline.h"
#include "tools/fmt/finding.h"
#include "tools/fmt/format_model.h"

namespace zem::fmt {

/// What is known of an event of one FORMAT before any message has come.
struct EventShape {
  std::string id;  ///< the value of "_event_id"
  std::unordered_set<std::string> slots;
};
[[nodiscard]] std::vector<EventShape> event_shapes(const FormatModel& model);

/// False when the item fails for every event of that shape.
[[nodiscard]] bool may_hold(const SelectItem& item, const EventShape& shape);

struct ClassContext {
  const ClassFileOutline& file;
  const FormatModel& formats;
  std::vector<EventShape> shapes;  ///< of the FORMATs, in file order
  Findings& findings;              ///< of the class file
  Findings& format_findings;       ///< of the format file
};

using ClassCheck = void (*)(ClassContext& context);

// reach_checks.cpp: which classes get events, and which events get a class.
void check_event_ids(ClassContext& context);
void check_formats_without_class(ClassContext& context);
void check_classes_behind(ClassContext& context);
void check_classes_without_select(ClassContext& context);

// select_checks.cpp: tests whose outcome is known.
void check_outcomes(ClassContext& context);
void check_unfilled_slots(ClassContext& context);

// printf_checks.cpp
void check_printf_formats(ClassContext& context);

[[nodiscard]] std::span<const ClassCheck> class_checks();

}  // namespace zem::fmt
