/// Reads one event text, `Class;name=value;name='quoted; value';END`, into its parts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zem::receiver {

struct Slot {
  std::string name;
  std::string value;  ///< quoting undone
};

struct Event {
  std::string class_name;
  std::vector<Slot> slots;  ///< in the order of the text; a name may come again
};

/// The text without the newline and the 0x01 byte that end it on the wire.
[[nodiscard]] std::string_view without_terminator(std::string_view text);

/// Nothing when the text is not an event's.
[[nodiscard]] std::optional<Event> parse_event(std::string_view text);

}  // namespace zem::receiver
