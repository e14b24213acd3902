/// What can be doubtful in a format file that the engine accepts. Each check looks at the whole
/// model and adds its findings; entries with faults of their own are left alone.
#pragma once

#include <span>

#include "tools/fmt/finding.h"
#include "tools/fmt/format_model.h"

namespace zem::fmt {

using FormatCheck = void (*)(const FormatModel& model, Findings& findings);

// variable_checks.cpp: from the message to the slots.
void check_unmapped_variables(const FormatModel& model, Findings& findings);
void check_variables_mapped_twice(const FormatModel& model, Findings& findings);
void check_dropped_inheritance(const FormatModel& model, Findings& findings);
void check_stars(const FormatModel& model, Findings& findings);
void check_blanks(const FormatModel& model, Findings& findings);

// order_checks.cpp: which FORMAT wins.
void check_any(const FormatModel& model, Findings& findings);
void check_never_winning(const FormatModel& model, Findings& findings);
void check_duplicate_formats(const FormatModel& model, Findings& findings);

// slot_checks.cpp: what a slot is made of.
void check_duplicate_slots(const FormatModel& model, Findings& findings);
void check_defaults(const FormatModel& model, Findings& findings);
void check_printf_arguments(const FormatModel& model, Findings& findings);

// class_text_checks.cpp: what the class language will not read when it is generated.
void check_names(const FormatModel& model, Findings& findings);
void check_constants(const FormatModel& model, Findings& findings);

/// All of them, in the order in which findings of the same place are shown.
[[nodiscard]] std::span<const FormatCheck> format_checks();

/// True when no message can be bound by `loser` that `winner` would not bind as well; false when
/// that is not so or can not be shown.
[[nodiscard]] bool takes_every_line_of(const FormatSpec& winner, const FormatSpec& loser);

}  // namespace zem::fmt
