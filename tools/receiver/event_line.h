/// The forms in which an event leaves the server: one line each, without a byte that a terminal
/// would obey, and with nothing lost.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace zem::receiver {

/// One received event with what is known of its arrival.
struct Received {
  std::string_view text;
  std::string_view peer;  ///< "127.0.0.1:40000"
  std::chrono::system_clock::time_point at;
};

/// Appends the event text and a newline. The terminator is left out; control characters and bytes
/// that are no UTF-8 are written as \xHH, a backslash as two.
void append_text_line(const Received& received, std::string& out);

/// Appends one JSON object and a newline:
/// {"received":"2024-11-15T09:47:37.123Z","peer":"...","class":"...","slots":{"name":"value",...}}
/// Slots stand in the order of their first appearance; a name that comes again has the array of its
/// values. A text that is no event's has "text" instead of class and slots. Where bytes are no
/// UTF-8, each is written as U+FFFD, and "raw" holds the whole event text in base64.
void append_json_line(const Received& received, std::string& out);

}  // namespace zem::receiver
