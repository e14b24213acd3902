// The daemon from its start to its main loop, one line per stage. It never returns normally: a
// stage that fails ends the process with status 1, and the loop runs until a signal kills it.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <span>

#include "adapters/libzemad/command_line.h"
#include "adapters/libzemad/daemonize.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/frame.h"
#include "adapters/libzemad/main_loop.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/signals.h"
#include "adapters/libzemad/zem_io.h"
#include "agent/agent_comm.h"
#include "agent/agent_util.h"
#include "util/start_directory.h"

namespace {

using namespace zem;
using namespace zem::frame;

void require(bool done, int number, const char* text) {
  if (done) return;
  log::report(kSource, log::kFatal, number, text);
  std::exit(1);
}

CommandLine command_line_or_usage(std::span<char* const> arguments) {
  const auto line = read_command_line(arguments);
  if (line.has_value()) return *line;
  std::fputs(usage_text(arguments[0]).c_str(), stdout);
  std::exit(1);
}

void adopt(const CommandLine& line) {
  if (line.foreground) ZEMAD_Daemon = 0;
  if (line.debug) debug = 1;
  const Places places = find_places(line, std::getenv("ZEMADHOME"));
  std::fputs(places.notice.c_str(), stdout);
  const util::Status published = publish(places);
  if (published.ok()) return;
  std::fprintf(stderr, "%s\n", published.error().text().c_str());
  std::exit(1);
}

}  // namespace

int main(int argc, char* argv[]) try {
  fill_standard_descriptors();
  ignore_file_size_limit();
  const CommandLine line = command_line_or_usage({argv, static_cast<std::size_t>(argc)});
  if (!line.keep_descriptors) close_inherited_descriptors();
  util::remember_start_directory();
  adopt(line);

  // Deliberate: the sender configuration comes before the log, whose places it names; when it can
  // not be read, only the exit status tells (StartUpFailure, ConfigurationMissing).
  require(zem_agent_init(ZEMAD_GlobalConfigFile) == 0, 1, "zem_agent_init failed");
  std::printf("Running %s : %s\n", line.program.c_str(), "Korvane/Omnivue Adapter Starting");
  if (zem_agent_match("WellBehavedDaemon", "T") == 1) ZEMAD_Daemon = 0;
  if (ZEMAD_Daemon == 1) go_into_background();

  ZEMAD_ErrorInit();
  require(ZEMAD_KernelInit() == 0, 1, "Can not initialize kernel");
  require(ZEMAD_ZemIoInit() >= 0, 1, "Can not initialize ZEM I/F");
  // Before the driver: a signal that arrives while it starts is heeded by the loop, and cleans up
  // what was started.
  require(install_handler(SIGHUP, ZEMAD_MainReload, Delivery::kAlways), 2,
          "Can not install SIGHUP handler");
  require(install_handler(SIGTERM, ZEMAD_MainCleanup, Delivery::kOnce), 2,
          "Can not install SIGTERM handler");
  require(install_handler(SIGINT, ZEMAD_MainCleanup, Delivery::kOnce), 2,
          "Can not install SIGINT handler");
  require(ZEMAD_DriverInit() >= 0, 1, "Can not initialize driver");
  ZEMAD_MainLoop();
} catch (const std::bad_alloc&) {
  fatal_memory_error();  // where a room can go on without the memory, it does
}
