/// The sender configuration for the length of a test: what zem_agent_getenv answers.
#pragma once

#include <string_view>

#include "agent/agent_util.h"
#include "tests/support/temp_dir.h"

namespace zem::test {

class AgentSettings {
 public:
  /// `lines` as they stand in the file, each ended by a newline.
  explicit AgentSettings(std::string_view lines) { set(lines); }
  AgentSettings(const AgentSettings&) = delete;
  AgentSettings& operator=(const AgentSettings&) = delete;
  /// Leaves an empty configuration.
  ~AgentSettings() { set(""); }

  void set(std::string_view lines) { common_agent_init(dir_.write("agent.conf", lines).c_str()); }

 private:
  TempDir dir_;
};

}  // namespace zem::test
