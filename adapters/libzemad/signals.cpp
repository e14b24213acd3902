#include "adapters/libzemad/signals.h"

#include <csignal>

#include "adapters/libzemad/frame.h"
#include "util/signal_notes.h"

namespace zem::frame {
namespace {

volatile std::sig_atomic_t reinstall_failed = 0;

/// One-shot, and without restart of interrupted calls. The signal itself stays blocked while its
/// handler runs: a second SIGHUP waits until the handler has installed itself again.
bool set_one_shot_action(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigemptyset(&action.sa_mask);
  return ::sigaction(signal, &action, nullptr) == 0;
}

bool open_signal(int signal) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  return ::sigprocmask(SIG_UNBLOCK, &set, nullptr) == 0;
}

}  // namespace

bool install_handler(int signal, void (*handler)(int)) {
  return set_one_shot_action(signal, handler) && open_signal(signal);
}

bool take_reinstall_failure() {
  const bool failed = reinstall_failed != 0;
  reinstall_failed = 0;
  return failed;
}

}  // namespace zem::frame

void ZEMAD_MainReload(int signal) {
  zem::util::leave_note(zem::util::Note::kReload);
  if (!zem::frame::set_one_shot_action(signal, ZEMAD_MainReload)) zem::frame::reinstall_failed = 1;
}

/// Deliberate: not installed again, so that the next signal of the kind ends the process at once
/// (Signals.SecondTermKillsTheIdleDaemon).
void ZEMAD_MainCleanup(int /*signal*/) { zem::util::leave_note(zem::util::Note::kCleanup); }
