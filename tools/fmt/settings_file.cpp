// The reader of the configuration complains on standard output, where the tool's results go. While
// it reads, standard output is another name for standard error.
#include "tools/fmt/settings_file.h"

#include <unistd.h>

#include <cstdio>

#include "agent/agent_util.h"
#include "tools/fmt/command.h"
#include "tools/fmt/format_file.h"
#include "util/unique_fd.h"

namespace zem::fmt {
namespace {

class OutputAside {
 public:
  OutputAside() : output_(::dup(STDOUT_FILENO)) { redirect(STDERR_FILENO); }
  OutputAside(const OutputAside&) = delete;
  OutputAside& operator=(const OutputAside&) = delete;
  ~OutputAside() { redirect(output_.get()); }

 private:
  static void redirect(int target) {
    (void)std::fflush(stdout);
    (void)::dup2(target, STDOUT_FILENO);
  }

  util::UniqueFd output_;
};

}  // namespace

void load_settings(const std::string& path) {
  require_readable(path);
  const OutputAside aside;
  if (common_agent_init(path.c_str()) == 0) return;
  throw Failure(ExitStatus::kNoInput, path + ": the configuration can not be read");
}

}  // namespace zem::fmt
