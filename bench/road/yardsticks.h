/// What the road can not do without, alone: the figures that its cost is compared with. All are
/// microseconds of processor time of the calling thread for each message.
#pragma once

#include <string_view>

namespace zem::bench {

/// Finding the ends of the lines of `messages` in memory.
[[nodiscard]] double split_lines_us(std::string_view messages);

/// Reading `messages` out of a FIFO that another thread fills, 64 KiB at a time.
[[nodiscard]] double read_fifo_us(std::string_view messages);

/// One send for each line of `events`, over TCP on loopback to a receiver in another thread.
[[nodiscard]] double send_each_us(std::string_view events);

/// Matching each of `messages` against the FORMATs of a file, with the set compiled before. Throws
/// std::runtime_error when one matches none.
[[nodiscard]] double match_us(const char* format_file, std::string_view messages);

}  // namespace zem::bench
