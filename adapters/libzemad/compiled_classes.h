/// What is made of the class file once it has been read, so that an event finds its class without
/// all of them being tried. It belongs to the lists of parse_config.h and is made and dropped with
/// them; classes that come into those lists by another way have no compiled form, and are tried one
/// by one.
#pragma once

#include "adapters/libzemad/class_index.h"

namespace zem::kernel {

struct CompiledClasses {
  CompiledClasses(const SL_List* configurations, const SL_List* constants)
      : list(configurations), index(configurations, constants) {}

  const SL_List* list;  ///< the classes that were compiled
  ClassIndex index;
};

/// Compiles the lists in force.
void compile_classes();
void forget_compiled_classes();
/// The compiled form of the classes in force, or null when they have none.
[[nodiscard]] const CompiledClasses* compiled_classes();

}  // namespace zem::kernel
