/// Configures the event client for a test.
#pragma once

#include <filesystem>
#include <string>

#include "agent/agent_comm.h"
#include "agent/cache_settings.h"
#include "tests/support/temp_dir.h"
#include "util/expect.h"

namespace zem::test {

[[nodiscard]] inline std::string client_cache_path(const TempDir& dir) { return dir / "cache"; }

/// Reads a configuration of these lines as a fresh process does; the cache is in `dir` and large.
inline void configure_client(const TempDir& dir, const std::string& lines) {
  const std::string path = dir.write(
      "agent.conf", "BufEvtMaxSize=65536\nBufEvtPath=" + client_cache_path(dir) + "\n" + lines);
  util::expect(zem_agent_init(path.c_str()) == 0, "the configuration of a test can be read");
  default_buffer_config = {};
  ZEMAD_no_connection = 0;
  send_events = 1;
  zem_errno = 0;
}

}  // namespace zem::test
