// One pass of the loop, in the order of its safe points:
//
//   notes      SIGTERM, SIGINT: clean up, then idle for good.  SIGHUP: reload.
//   wait       on what the driver names, unless input is at hand; the log-file source is always
//              ready and waits inside
//   get        at most one message becomes an event
//   process    each queued event: kernel, sender, discard
//   send       what was gathered, unless more input is at hand
//   retry      an empty event, while no server can be reached
//
// A note left at any moment ends the waits below the pass, so the top of the next one is never far.
#include "adapters/libzemad/main_loop.h"

#include <cstdlib>
#include <optional>

#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/event_sender.h"
#include "adapters/libzemad/frame.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/kernel_dump.h"
#include "adapters/libzemad/parse_config.h"
#include "adapters/libzemad/short_road.h"
#include "adapters/libzemad/zem_io.h"
#include "agent/agent_comm.h"
#include "util/signal_notes.h"

namespace zem::frame {
namespace {

using util::Note;

void minor(const char* text) { log::report(kSource, log::kMinor, 1, text); }
void major(const char* text) { log::report(kSource, log::kMajor, 1, text); }

/// Events that there are already leave together, after the last of them.
void drain_queue() {
  const GatheringScope gathering;
  process_waiting_event();
  while (ZEMAD_GetNextEvent() != -1) {
    log::trace(kSource, "Main loop : processing event");
    if (ZEMAD_ProcessEvent() < 0) minor("ProcessEvent error");
    log::trace(kSource, "Main loop : freeing event buffer");
    if (ZEMAD_DiscardEvent() < 0) minor("Main loop : DiscardEvent error");
  }
}

/// True when the note was there. What was gathered leaves first: while the note is there it keeps
/// every wait on the way short.
bool take_up(Note note) {
  if (!util::is_noted(note)) return false;
  send_gathered();
  return util::take_note(note);
}

/// Nothing is left to do but to die of the next signal; a second kind of signal cleans up again.
[[noreturn]] void stay_idle() {
  for (;;) {
    (void)util::wait_for({}, std::nullopt, util::NoteSet::kNone | Note::kCleanup);
    if (util::take_note(Note::kCleanup)) clean_up();
  }
}

}  // namespace

bool heed_notes() {
  if (take_up(Note::kCleanup)) {
    clean_up();
    return false;
  }
  // Taken before the work: a SIGHUP that arrives meanwhile asks for another reload.
  if (take_up(Note::kReload)) {
    log::trace(kSource, "Restarting...");
    ZEMAD_MainRestart = 1;
  }
  if (ZEMAD_MainRestart == 1) {
    reload();
    ZEMAD_MainRestart = 0;
  }
  return true;
}

void run_pass(util::FdSet& set) {
  if (ZEMAD_InputAtHand == 0) ZEMAD_SpecGetReadFds(&set);
  log::trace(kSource, "Main loop : waiting for event");
  const int ready = ZEMAD_InputAtHand != 0 ? 1 : ZEMAD_WaitEvent(&set, -1);
  if (ready < 0) minor("WaitEvent error");
  if (ready > 0) {
    log::trace(kSource, "Main loop : receiving event");
    if (ZEMAD_GetEvent(&set) < 0) minor("GetEvent error");
  }
  drain_queue();
  if (ZEMAD_InputAtHand == 0) send_gathered();
  retry_connection();
}

void reload() {
  zem_agent_cleanup();
  if (zem_agent_init(ZEMAD_GlobalConfigFile) != 0) {
    log::report(kSource, log::kFatal, 1, "zem_agent_init failed");
    std::exit(1);
  }
  ZEMAD_ErrorReload();
  if (ZEMAD_KernelReload() != 1) major("Cannot reload configuration");
  if (ZEMAD_DriverReload() < 0) major("Cannot reload driver");
  if (ZEMAD_ZemIoReload() < 0) major("Cannot reload ZemIO");
}

void clean_up() {
  log::trace(kSource, "Cleaning up...");
  zem_agent_cleanup();
  if (ZEMAD_DriverCleanup() < 0) major("Cannot clean up driver");
  if (ZEMAD_ZemIoCleanup() < 0) major("Cannot clean up Z/EM interface");
  ZEMAD_ErrorCleanup();
  log::trace(kSource, "Finished Cleaning up, Exiting...");
}

}  // namespace zem::frame

void ZEMAD_MainLoop() {
  zem::log::trace(zem::frame::kSource, "Starting main loop...\n");
  zem::util::FdSet set;
  ZEMAD_MainRestart = 0;
  zem_agent_send("");
  while (zem::frame::heed_notes()) zem::frame::run_pass(set);
  zem::frame::stay_idle();
}

int ZEMAD_ProcessEvent() {
  using namespace zem;
  log::trace(frame::kSource, "ProcessEvent : ...");
  if (log::listens(log::kKernel, log::kNormal)) frame::dump_kernel();
  if (const char* class_name = ZEMAD_KernelSelect(); class_name != nullptr) {
    log::trace(frame::kSource, "ProcessEvent : sending event");
    if (ZEMAD_SendEvent(class_name) < 0) frame::minor("SendEvent error");
  }
  ZEMAD_KernelSelectCleanup();
  return 0;
}
