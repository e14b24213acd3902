#include "adapters/libzemad/compiled_classes.h"

#include <memory>
#include <new>

#include "adapters/libzemad/parse_config.h"

namespace zem::kernel {
namespace {

std::unique_ptr<const CompiledClasses>& in_force() {
  static std::unique_ptr<const CompiledClasses> classes;
  return classes;
}

}  // namespace

/// Short of memory the kernel does without: it only takes longer.
void compile_classes() try {
  in_force() = std::make_unique<CompiledClasses>(ZEMAD_ConfigurationList, ZEMAD_ConstantList);
} catch (const std::bad_alloc&) {
  forget_compiled_classes();
}

void forget_compiled_classes() { in_force().reset(); }

const CompiledClasses* compiled_classes() {
  const CompiledClasses* classes = in_force().get();
  return classes != nullptr && classes->list == ZEMAD_ConfigurationList ? classes : nullptr;
}

}  // namespace zem::kernel
