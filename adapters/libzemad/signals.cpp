// SIGTERM and SIGINT are one-shot: the second of a kind meets the default action and kills.
//
// SIGHUP must never kill. A one-shot handler that installs itself again comes close but not all the
// way: between the kernel's reset to the default action and its blocking of the signal another
// SIGHUP ends the process (a burst of 2000 does it in one run out of seven). So the handler stays.
#include "adapters/libzemad/signals.h"

#include <csignal>

#include "adapters/libzemad/frame.h"
#include "util/signal_notes.h"

namespace zem::frame {
namespace {

bool open_signal(int signal) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  return ::sigprocmask(SIG_UNBLOCK, &set, nullptr) == 0;
}

}  // namespace

bool install_handler(int signal, void (*handler)(int), Delivery delivery) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = delivery == Delivery::kOnce ? static_cast<int>(SA_RESETHAND) : 0;
  sigemptyset(&action.sa_mask);
  return ::sigaction(signal, &action, nullptr) == 0 && open_signal(signal);
}

void ignore_file_size_limit() { (void)std::signal(SIGXFSZ, SIG_IGN); }

}  // namespace zem::frame

void ZEMAD_MainReload(int /*signal*/) { zem::util::leave_note(zem::util::Note::kReload); }

/// Deliberate: not installed again, so that the next signal of the kind ends the process at once
/// (SignalSequence.EndsByTheDefaultActionOfTheSecondSignalOfAKind).
void ZEMAD_MainCleanup(int /*signal*/) { zem::util::leave_note(zem::util::Note::kCleanup); }
