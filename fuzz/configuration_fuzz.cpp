// Foreign bytes as a sender configuration, and an event text against the filters it sets up. The
// input is the file, then a line of "%%", then the event; without that line the event is empty.

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "agent/agent_util.h"
#include "agent/cache_settings.h"
#include "agent/event_filter.h"
#include "agent/evt_buffer.h"
#include "util/expect.h"
#include "util/heap.h"
#include "util/unique_fd.h"

namespace {

constexpr std::string_view kSeparator = "\n%%\n";

void read_configuration(std::string_view text) {
  const zem::util::UniqueFd file(::memfd_create("configuration", MFD_CLOEXEC));
  zem::util::expect(
      ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size()),
      "a file in memory takes the configuration");
  const std::string path = "/proc/self/fd/" + std::to_string(file.get());
  zem::util::expect(common_agent_init(path.c_str()) == 0, "a regular file is always read");
}

void ask_for_settings() {
  for (const auto* pair : zem::util::sl_items<const zem_env_pair>(default_agent_info.environment)) {
    zem::util::expect(zem_agent_getenv(pair->key) != nullptr, "what is stored is found");
    static_cast<void>(zem_agent_match(pair->key, "YES"));
    int count = 0;
    zem_split_entries(pair->key, &count);
    zem::util::expect(count >= 0 && count <= kLocationsMax, "eight fields at most");
  }
  default_buffer_config = {};
  const zem_buffer_config& config = zem::agent::buffer_config();
  zem::util::expect(config.shrink_bytes >= config.event_bytes && config.block_bytes > 0,
                    "the cache's sizes make sense");
}

void filter_event(const std::string& text) {
  const int length = static_cast<int>(std::string_view(text.c_str()).size());
  const zem::util::HeapText terminated(zem_normalize_msg(text.c_str(), length));
  const char* const event = terminated == nullptr ? text.c_str() : terminated.get();
  for (const int cache : {0, 1}) {
    const int held_back = zem_filter_event(event, cache);
    zem::util::expect(held_back == 0 || held_back == 1, "an event passes or is held back");
  }
  static_cast<void>(filter_events(text));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  // Complaints about lines are the expected outcome of nearly every input.
  return std::freopen("/dev/null", "w", stdout) != nullptr ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t at = input.find(kSeparator);
  const bool has_event = at != std::string_view::npos;
  read_configuration(has_event ? input.substr(0, at + 1) : input);
  ask_for_settings();
  filter_event(has_event ? std::string(input.substr(at + kSeparator.size())) : std::string());
  return 0;
}
