/// An event as its source has it, before any record is made: the names of its attributes and, as
/// views, their texts. Most events are classified and written out from the view alone
/// (short_road.h); the records that the kernel's functions work on are made when somebody asks for
/// the event by those (ZEMAD_GetNextEvent). A view stands for records of which every attribute has
/// a name and a value that are strings without a NUL byte and an empty string as its key, and whose
/// keyword is an empty string, too.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zem::kernel {

/// The names of the attributes, in order. One object serves all events of a kind, so that whoever
/// has looked for a name once knows its place the next time.
class EventLayout {
 public:
  explicit EventLayout(std::vector<std::string> names);

  /// Never 0, and never given to another layout of this process.
  [[nodiscard]] std::uint32_t id() const noexcept { return id_; }
  [[nodiscard]] const std::vector<std::string>& names() const noexcept { return names_; }
  /// Where the first attribute `_event_id` stands, or -1.
  [[nodiscard]] int event_id() const noexcept { return event_id_; }

 private:
  std::uint32_t id_;
  std::vector<std::string> names_;
  int event_id_;
};

struct EventView {
  const EventLayout* layout;
  std::span<const std::string_view> values;  ///< as many as the layout has names
};

/// Queues the event; 0, or -1 when the queue is full. The view and its texts are borrowed until the
/// event is processed: whoever lets go of them earlier calls `settle_event` before. A source is
/// asked for the next event after the last one was processed, which settles most.
int queue_event(const EventView& view);
/// Makes records of an event that waits as a view, so that the view may go.
void settle_event();
/// The event that waits as a view, or null. It is the only one in the queue then.
[[nodiscard]] const EventView* waiting_event();
/// Takes it off the queue.
void drop_waiting_event();

}  // namespace zem::kernel
