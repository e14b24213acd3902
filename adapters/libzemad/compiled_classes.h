/// What is made of the class file once it has been read, so that an event finds its class without
/// all of them being tried (class_index.h), and its text without a record being made
/// (class_plans.h). It belongs to the lists of parse_config.h and is made and dropped with them;
/// classes that come into those lists by another way have no compiled form: they are tried one by
/// one.
#pragma once

#include "adapters/libzemad/class_index.h"
#include "adapters/libzemad/class_plans.h"

namespace zem::kernel {

class CompiledClasses {
 public:
  CompiledClasses(const SL_List* classes, const SL_List* constants, const SL_List* defaults);

  /// The classes that were compiled.
  [[nodiscard]] const SL_List* classes() const noexcept { return classes_; }
  [[nodiscard]] const ClassIndex& index() const noexcept { return index_; }
  /// The first class that takes the event, and what it makes of it: with kText the event text, in
  /// `text`, whatever its length. Nothing is reported; where something would have to be, the answer
  /// is kUnknown. Allocates only for a text longer than `text` ever held.
  [[nodiscard]] Outcome classify(const EventView& event, EventText& text);

 private:
  [[nodiscard]] ClassIndex::Candidates candidates_for(const EventView& event) const;

  const SL_List* classes_;
  ClassIndex index_;
  ClassPlans plans_;
};

/// Compiles the lists in force.
void compile_classes();
void forget_compiled_classes();
/// The compiled form of the classes in force, or null when they have none.
[[nodiscard]] CompiledClasses* compiled_classes();

}  // namespace zem::kernel
