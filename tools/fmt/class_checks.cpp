#include "tools/fmt/class_checks.h"

#include <array>

namespace zem::fmt {
namespace {

constexpr std::array kChecks = {
    ClassCheck{check_event_ids},      ClassCheck{check_formats_without_class},
    ClassCheck{check_classes_behind}, ClassCheck{check_classes_without_select},
    ClassCheck{check_outcomes},       ClassCheck{check_unfilled_slots},
    ClassCheck{check_printf_formats}};

}  // namespace

std::span<const ClassCheck> class_checks() { return kChecks; }

}  // namespace zem::fmt
