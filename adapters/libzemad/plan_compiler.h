/// Makes the plans (class_plans.h) of a class file.
#pragma once

#include "adapters/libzemad/class_plans.h"
#include "adapters/libzemad/configuration.h"

namespace zem::kernel {

/// `classes` are Config records; they, `constants` and `defaults` must outlive the plans and stay
/// as they are.
[[nodiscard]] ClassPlans compile_plans(const SL_List* classes, const SL_List* constants,
                                       const SL_List* defaults);

}  // namespace zem::kernel
