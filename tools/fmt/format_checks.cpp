#include "tools/fmt/format_checks.h"

#include <array>

namespace zem::fmt {
namespace {

constexpr std::array<FormatCheck, 13> kChecks = {
    check_any,
    check_duplicate_formats,
    check_names,
    check_never_winning,
    check_unmapped_variables,
    check_stars,
    check_blanks,
    check_variables_mapped_twice,
    check_dropped_inheritance,
    check_duplicate_slots,
    check_defaults,
    check_printf_arguments,
    check_constants,
};

}  // namespace

std::span<const FormatCheck> format_checks() { return kChecks; }

}  // namespace zem::fmt
