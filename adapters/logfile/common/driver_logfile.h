/// The log-file source's side of the driver contract (adapters/libzemad/driver.h): starts the
/// source from the environment and the sender configuration, and turns each matched message into an
/// event.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/logfile/common/SysLogDriver.h"
#include "util/strobj.h"

class FormatSpec;

extern std::unique_ptr<SysLogDriver> sd;  ///< null before the start and after the clean-up
extern tvStrobj local_host;
extern tvStrobj local_host_ip_addr;  ///< dotted; "???" when it can not be resolved

/// Queues the event of a match: "_event_id" (`index`), the slots that the message's variables fill,
/// and the defaults of "hostname" and "origin". 0, or -1 when the frame has no room.
int genEvent(FormatSpec* spec, int index);

namespace zem::source {

/// Files of the source in the communication directory, told apart by host and source id.
struct FilePaths {
  std::string lock;
  std::string fifo;
};
/// From KORVANE_COMM_DIR and ZEMAD_LOGFILE_ID or their defaults.
[[nodiscard]] FilePaths file_paths(const std::string& host);

/// PollInterval in seconds; 120 when it is not set, and (with a warning) when it is no number above
/// zero.
[[nodiscard]] long poll_interval_s();

/// The fields of LogSources between commas, empty ones left out.
[[nodiscard]] std::vector<std::string> log_sources();

}  // namespace zem::source
