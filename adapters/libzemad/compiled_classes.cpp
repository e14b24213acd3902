#include "adapters/libzemad/compiled_classes.h"

#include <memory>
#include <new>

#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/plan_compiler.h"

namespace zem::kernel {
namespace {

std::unique_ptr<CompiledClasses>& in_force() {
  static std::unique_ptr<CompiledClasses> classes;
  return classes;
}

}  // namespace

CompiledClasses::CompiledClasses(const SL_List* classes, const SL_List* constants,
                                 const SL_List* defaults)
    : classes_(classes),
      index_(classes, constants),
      plans_(compile_plans(classes, constants, defaults)) {}

ClassIndex::Candidates CompiledClasses::candidates_for(const EventView& event) const {
  const int id = event.layout->event_id();
  if (id < 0) return index_.without_id();
  return index_.of(event.values[static_cast<std::size_t>(id)]);
}

Outcome CompiledClasses::classify(const EventView& event, EventText& text) {
  ClassIndex::Candidates candidates = candidates_for(event);
  for (auto at = candidates.next(); at != ClassIndex::kEnd; at = candidates.next()) {
    switch (plans_.try_class(at, event)) {
      case ClassPlans::Fit::kNo:
        break;
      case ClassPlans::Fit::kYes:
        return plans_.carry_out(at, event, text);
      case ClassPlans::Fit::kUnknown:
        return Outcome::kUnknown;
    }
  }
  return Outcome::kDropped;
}

/// Short of memory the kernel does without: it only takes longer.
void compile_classes() try {
  in_force() = std::make_unique<CompiledClasses>(ZEMAD_ConfigurationList, ZEMAD_ConstantList,
                                                 ZEMAD_DefaultMapList);
} catch (const std::bad_alloc&) {
  forget_compiled_classes();
}

void forget_compiled_classes() { in_force().reset(); }

CompiledClasses* compiled_classes() {
  CompiledClasses* classes = in_force().get();
  return classes != nullptr && classes->classes() == ZEMAD_ConfigurationList ? classes : nullptr;
}

}  // namespace zem::kernel
