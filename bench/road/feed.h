/// Where a measured program gets its messages from: a FIFO, or a stream socket in the file system.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "util/unique_fd.h"

namespace zem::bench {

/// Opens the FIFO for reading and writing, so that nothing is lost while the program is not there.
[[nodiscard]] util::UniqueFd open_fifo(const std::string& path);

/// Connects to the socket at `path`, and tries again until somebody listens there. Throws
/// std::runtime_error when nobody does for `patience`.
[[nodiscard]] util::UniqueFd connect_to(const std::string& path, std::chrono::seconds patience);

/// Writes all of it, and waits while there is no room. Throws std::system_error.
void write_all(int fd, std::string_view bytes);

/// The bytes of a file. Throws std::runtime_error when it can not be read.
[[nodiscard]] std::string read_file(const std::string& path);

/// How many bytes the first `count` lines of `text` take.
[[nodiscard]] std::size_t bytes_of_lines(std::string_view text, std::size_t count);

}  // namespace zem::bench
