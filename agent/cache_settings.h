/// Settings of the cache file. They are read from the configuration once per process, with the
/// first event that meets the cache; a reload does not change them.
#pragma once

#include <cstdint>
#include <string>

struct zem_buffer_config {
  std::string path;
  std::int64_t max_bytes = 0;     ///< largest file
  std::int64_t shrink_bytes = 0;  ///< dropped at least when the file would grow larger
  std::int64_t block_bytes = 0;   ///< read at a time
  std::int64_t event_bytes = 0;   ///< largest event
  std::uint16_t flush_rate = 0;   ///< events sent between two pauses of a flush; 0: no pauses
  bool is_read = false;
  bool is_caching_on = true;
};

extern zem_buffer_config default_buffer_config;

/// Fills `default_buffer_config` from the configuration.
void init_buffer_config();

namespace zem::agent {

/// The settings, read first if that was not done yet.
[[nodiscard]] const zem_buffer_config& buffer_config();

}  // namespace zem::agent
