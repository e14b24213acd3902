#include "adapters/libzemad/short_road.h"

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/event_sender.h"
#include "adapters/libzemad/main_loop.h"
#include "adapters/libzemad/zem_io.h"

namespace zem::frame {

using kernel::Outcome;

/// One look at the finished text is as good as the long road's look before every piece, which asks
/// for n + piece < limit with n bytes so far: what a piece leaves behind it, itself, a separator
/// and the five bytes or more that follow in any text, is all in the final length.
Outcome write_event(const kernel::EventView& event, kernel::EventText& text) {
  kernel::CompiledClasses* classes = kernel::compiled_classes();
  if (classes == nullptr || log::is_traced()) return Outcome::kUnknown;
  const Outcome outcome = classes->classify(event, text);
  const bool is_too_long = outcome == Outcome::kText && text.size() >= ZEMAD_EventLimit();
  return is_too_long ? Outcome::kUnknown : outcome;
}

void process_waiting_event() {
  static kernel::EventText text;  // keeps its room
  const kernel::EventView* event = kernel::waiting_event();
  if (event == nullptr) return;
  const Outcome outcome = write_event(*event, text);
  if (outcome == Outcome::kUnknown) return;
  kernel::drop_waiting_event();
  if (outcome == Outcome::kText && !send_event_text(text.view())) {
    log::report(kSource, log::kMinor, 1, "SendEvent error");
  }
}

}  // namespace zem::frame
