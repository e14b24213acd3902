/// The events of a log, classified one after another as fast as the daemon does it: from the view
/// of a match straight to the event text, and by records (kernel.h) only where that road is closed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "adapters/libzemad/event_text.h"
#include "adapters/libzemad/event_view.h"
#include "adapters/logfile/common/event_maker.h"
#include "tools/fmt/kernel.h"

namespace zem::fmt {

struct ClassifiedEvent {
  std::optional<std::string_view> class_name;  ///< nothing when it is discarded
  /// "...;END" and a newline; nothing when it is discarded, or refused because it grows too long.
  std::optional<std::string_view> text;
};

/// With a Kernel only, which outlives it, and for one set of FORMATs.
class Classifier {
 public:
  Classifier();

  /// The event of the last match of `spec`, FORMAT `index` of its set, which has captured
  /// `captures`. Good until the next call.
  [[nodiscard]] ClassifiedEvent classify(const FormatSpec& spec, int index,
                                         const format::LocalHost& host,
                                         const format::Captures* captures);

 private:
  [[nodiscard]] ClassifiedEvent by_records(const FormatSpec& spec, int index,
                                           const format::LocalHost& host);

  bool are_names_plain_;  ///< no class name holds the semicolon that ends it in an event text
  event::EventMaker maker_;
  kernel::EventText text_;
  std::optional<KernelEvent> records_;
};

}  // namespace zem::fmt
