#include "agent/cache_settings.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>

#include "agent/agent_util.h"

zem_buffer_config default_buffer_config;

namespace {

constexpr std::int64_t kKilobyte = 1024;
/// Sums of a few sizes must not overflow.
constexpr std::int64_t kBytesMax = std::numeric_limits<std::int64_t>::max() / 4;
/// Larger blocks read no faster, and a mistyped length must not take the memory of the host.
constexpr std::int64_t kBlockBytesMax = 16 * kKilobyte * kKilobyte;
constexpr std::int64_t kDefaultBlockBytes = 64 * kKilobyte;

/// The number a value begins with, saturated; `fallback` when it does not begin with a digit.
std::int64_t number(const char* key, std::int64_t fallback) {
  const char* const value = zem_agent_getenv(key);
  if (value == nullptr || std::isdigit(static_cast<unsigned char>(*value)) == 0) return fallback;
  const std::string_view text(value);
  std::int64_t parsed = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), parsed);
  return result.ec == std::errc() ? std::min(parsed, kBytesMax) : kBytesMax;
}

std::int64_t kilobytes(const char* key, std::int64_t fallback) {
  return std::min(number(key, fallback), kBytesMax / kKilobyte) * kKilobyte;
}

std::int64_t block_length() {
  const std::int64_t bytes = number("BufEvtRdBlkLen", kDefaultBlockBytes);
  return bytes == 0 ? kDefaultBlockBytes : std::min(bytes, kBlockBytesMax);
}

}  // namespace

void init_buffer_config() {
  zem_buffer_config& config = default_buffer_config;
  const char* const path = zem_agent_getenv("BufEvtPath");
  config.path = path == nullptr ? "/etc/Korvane/zem/cache" : path;
  config.max_bytes = kilobytes("BufEvtMaxSize", 64);
  config.event_bytes = number("EventMaxSize", 4096);
  config.shrink_bytes = std::max(kilobytes("BufEvtShrinkSize", 8), config.event_bytes);
  config.block_bytes = block_length();
  config.flush_rate = static_cast<std::uint16_t>(number("BufferFlushRate", 0) & 0xFFFF);
  config.is_caching_on = zem_agent_match("BufferEvents", "NO") == 0;
  config.is_read = true;
}

namespace zem::agent {

const zem_buffer_config& buffer_config() {
  if (!default_buffer_config.is_read) init_buffer_config();
  return default_buffer_config;
}

}  // namespace zem::agent
