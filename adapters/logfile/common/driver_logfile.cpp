#include "adapters/logfile/common/driver_logfile.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/frame.h"
#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/SysLogUtils.h"
#include "adapters/logfile/common/event_maker.h"
#include "adapters/logfile/common/format_report.h"
#include "adapters/logfile/common/logfile_utils.h"
#include "util/resolver.h"
#include "util/seam.h"
#include "util/text.h"

std::unique_ptr<SysLogDriver> sd;
tvStrobj local_host;
tvStrobj local_host_ip_addr;

namespace {

constexpr const char* kFormatFile = "zemad_logfile.fmt";
constexpr std::size_t kHostNameBytes = 64;
constexpr int kPollIntervalDefaultS = 120;

std::vector<std::string> file_in;
bool is_output_shown = false;  ///< standard output was a terminal at the start

std::string environment_or(const char* name, const char* otherwise) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : otherwise;
}

void enter_configuration_directory() {
  if (::chdir(ZEMAD_GlobalConfigDir) == 0) return;
  logfile_error(kReportPlain, "cannot chdir to %s, errno=%d", ZEMAD_GlobalConfigDir, errno);
  std::exit(1);
}

void leave_process_group() {
  if (ZEMAD_Daemon != 1 || ::setpgid(0, 0) == 0) return;
  logfile_error(kReportPlain, "setpgrp failed, errno=%d", errno);
  std::exit(1);
}

std::string host_name() {
  auto name = zem::util::current<zem::util::Resolver>().local_host_name(kHostNameBytes);
  if (name) return *name;
  logfile_error(kReportPlain, "cannot get hostname, errno=%d", name.error().code);
  std::exit(1);
}

/// The names as the driver takes them: ended by a null pointer, valid as long as `names`.
std::vector<char*> pointers_to(std::vector<std::string>& names) {
  std::vector<char*> pointers;
  pointers.reserve(names.size() + 1);
  for (std::string& name : names) pointers.push_back(name.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::unique_ptr<SysLogDriver> start_driver(const std::string& host) {
  const zem::source::FilePaths paths = zem::source::file_paths(host);
  const long interval = zem::source::poll_interval_s();
  file_in = zem::source::log_sources();
  return std::make_unique<SysLogDriver>(kFormatFile, paths.lock.c_str(), paths.fifo.c_str(),
                                        pointers_to(file_in).data(), interval,
                                        zem_agent_getenvw("UnmatchLog"));
}

zem::format::LocalHost this_host() {
  return {local_host.getString(), local_host_ip_addr.getString()};
}

}  // namespace

namespace zem::source {

FilePaths file_paths(const std::string& host) {
  const std::string directory = environment_or("KORVANE_COMM_DIR", "/tmp/.korvane");
  const std::string owner = host + "." + environment_or("ZEMAD_LOGFILE_ID", "default");
  return {directory + "/.zemad_logfile.lock." + owner, directory + "/.zemad_logfile.fifo." + owner};
}

long poll_interval_s() {
  const char* value = zem_agent_getenvw("PollInterval");
  if (value == nullptr) return kPollIntervalDefaultS;
  const int interval = util::saturating_atoi(value);
  if (interval >= 1) return interval;
  logfile_warning(kReportPlain, "bad %s %s, using default of %d seconds", "PollInterval", value,
                  kPollIntervalDefaultS);
  return kPollIntervalDefaultS;
}

std::vector<std::string> log_sources() {
  std::vector<std::string> sources;
  const char* value = zem_agent_getenvw("LogSources");
  std::string_view rest = value != nullptr ? value : "";
  while (!rest.empty()) {
    const std::string_view field = rest.substr(0, rest.find(','));
    if (!field.empty()) sources.emplace_back(field);
    rest.remove_prefix(std::min(field.size() + 1, rest.size()));
  }
  return sources;
}

}  // namespace zem::source

int ZEMAD_SpecDriverInit() {
  is_output_shown = ::isatty(STDOUT_FILENO) == 1;
  enter_configuration_directory();
  leave_process_group();
  const std::string host = host_name();
  sd = start_driver(host);
  local_host = host.c_str();
  local_host_ip_addr = SysLogUtils::IPaddr(host.c_str());
  return 0;
}

/// Deliberate: a changed format file, PollInterval, LogSources or UnmatchLog takes a restart
/// (Reload.LeavesTheSourceAsItWas).
int ZEMAD_SpecDriverReload() { return 0; }

int ZEMAD_SpecDriverCleanup() {
  zem::kernel::settle_event();
  ZEMAD_InputAtHand = 0;
  sd.reset();
  file_in.clear();
  return 0;
}

void ZEMAD_SpecGetReadFds(zem::util::FdSet* set) {
  set->clear_all();
  if (sd != nullptr) set->set(sd->iodesc());
}

int ZEMAD_SpecGetEvent() {
  if (sd == nullptr) return 0;
  zem::kernel::settle_event();  // it looks into the message before
  int index = 0;
  FormatSpec* spec = sd->nextMsg(index);
  ZEMAD_InputAtHand = sd->hasInputAtHand() ? 1 : 0;
  if (spec == nullptr && index == SysLogDriver::kNoMessage) return 0;
  if (spec == nullptr) {
    logfile_error(kReportPlain, "failed to bind a message\n");
    return -1;
  }
  if (is_output_shown) spec->dbgmatch();
  return sd->events().queue(*spec, index, this_host(), sd->captures());
}

int genEvent(FormatSpec* spec, int index) {
  return zem::event::queue_event(*spec, index, this_host());
}
