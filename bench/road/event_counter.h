/// Counts events in a stream of bytes that arrives in pieces, in each of the forms that they leave
/// a program in. Costs next to nothing, since it runs beside the program that is measured.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace zem::bench {

enum class EventForm {
  kFrames,  ///< as sent to an event server: a header that tells the length, the text
  kLines,   ///< each ends in a newline
  kMarks,   ///< as in a test file: each holds one byte 0x01
};

class EventCounter {
 public:
  /// `record`, when it is not null, receives the texts of the events, without headers. It is kept.
  explicit EventCounter(EventForm form, std::FILE* record = nullptr)
      : form_(form), record_(record) {}

  /// The events that end in `bytes`, which continue those of the call before.
  [[nodiscard]] std::uint64_t count(std::string_view bytes);

 private:
  std::uint64_t count_frames(std::string_view bytes);
  void keep(std::string_view text);

  EventForm form_;
  std::FILE* record_;
  std::array<char, 36> header_{};  ///< of the frame that is under way
  std::size_t header_bytes_ = 0;
  std::size_t text_left_ = 0;  ///< of the frame whose header is complete
};

}  // namespace zem::bench
