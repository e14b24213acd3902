/// The second half of `explain`: which class took an event, why those before it did not, and what
/// leaves.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tools/fmt/class_outline.h"
#include "tools/fmt/class_trace.h"
#include "tools/fmt/console.h"
#include "tools/fmt/kernel.h"
#include "tools/fmt/source_text.h"

namespace zem::fmt {

class ClassExplainer {
 public:
  /// The outline of the class file that the kernel has loaded; all are borrowed. With `shows_all`
  /// also the classes of other FORMATs are listed one by one.
  ClassExplainer(const ClassFileOutline& outline, const SourceText& source, bool shows_all,
                 Console& console)
      : outline_(outline),
        source_(source),
        shows_all_(shows_all),
        out_(console.out),
        paint_(console.paint) {}

  /// The event stays as it is, but not the kernel's per-event lists.
  void show(const KernelEvent& event) const;

 private:
  using Slots = std::vector<std::pair<std::string, std::string>>;

  void show_trials(const std::vector<ClassTrial>& trials) const;
  void show_others(std::size_t count) const;
  void show_trial(std::size_t index, const ClassTrial& trial) const;
  [[nodiscard]] std::string reason(std::size_t index, const ClassTrial& trial) const;
  [[nodiscard]] bool is_other_id(std::size_t index, const ClassTrial& trial) const;
  void show_selected(std::size_t index, const KernelEvent& event, const Slots& outgoing,
                     const std::string& text) const;
  void show_fetches(std::size_t index) const;
  void show_slots(const Slots& outgoing) const;
  void show_text(const std::string& text) const;
  [[nodiscard]] std::string title(std::size_t index) const;
  [[nodiscard]] std::string quote(Span where) const;

  const ClassFileOutline& outline_;
  const SourceText& source_;
  bool shows_all_;
  Output& out_;
  const Painter& paint_;
};

}  // namespace zem::fmt
