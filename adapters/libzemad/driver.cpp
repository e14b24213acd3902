#include "adapters/libzemad/driver.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <vector>

#include "adapters/libzemad/error.h"
#include "adapters/libzemad/keywords.h"
#include "util/signal_notes.h"

int ZEMAD_use_select = 1;
int ZEMAD_InputAtHand = 0;

namespace {

using zem::util::FdSet;
using zem::util::Milliseconds;
using zem::util::Note;
using zem::util::WaitEnd;

constexpr zem::log::Source kSource{zem::log::kDriver, "driver"};

[[noreturn]] void give_up(const char* text) {
  zem::log::report(kSource, zem::log::kFatal, 1, text);
  std::exit(1);
}

[[noreturn]] void give_up_and_release_source(const char* text) {
  zem::log::report(kSource, zem::log::kFatal, 1, text);
  ZEMAD_SpecDriverCleanup();
  std::exit(1);
}

/// Nothing for a wait without end; more seconds than poll can count are as many as it can.
std::optional<Milliseconds> time_out_of(long seconds) {
  if (seconds < 0) return std::nullopt;
  constexpr long kSecondsMax = std::numeric_limits<int>::max() / 1000;
  return Milliseconds(std::min(seconds, kSecondsMax) * 1000);
}

/// The descriptors of `set` to be read, in an array that keeps its room from wait to wait.
std::vector<pollfd>& to_poll(const FdSet& set) {
  static std::vector<pollfd> polled;
  polled.clear();
  for (int fd = set.next(0); fd < FdSet::kCapacity; fd = set.next(fd + 1)) {
    polled.push_back({fd, POLLIN, 0});
  }
  return polled;
}

/// Leaves the readable descriptors in `set` and counts them; -1 when one is not open.
int keep_ready(const std::vector<pollfd>& polled, FdSet& set) {
  int ready = 0;
  for (const pollfd& each : polled) {
    if ((each.revents & POLLNVAL) != 0) return -1;
    if (each.revents == 0) {
      set.clear(each.fd);
    } else {
      ++ready;
    }
  }
  return ready;
}

/// What is ready needs no wait, and so there is none that a pending note could end: the source is
/// asked, looks at its notes itself, and nothing is reported.
WaitEnd wait_for_ready(std::vector<pollfd>& polled, std::optional<Milliseconds> time_out) {
  const WaitEnd at_once = zem::util::wait_for(polled, Milliseconds{0}, zem::util::NoteSet::kNone);
  if (at_once == WaitEnd::kReady) return at_once;
  return zem::util::wait_for(polled, time_out, Note::kReload | Note::kCleanup);
}

int wait_readable(FdSet& set, std::optional<Milliseconds> time_out) {
  std::vector<pollfd>& polled = to_poll(set);
  switch (wait_for_ready(polled, time_out)) {
    case WaitEnd::kReady:
    case WaitEnd::kTimedOut:
      return keep_ready(polled, set);
    case WaitEnd::kNoted:
    case WaitEnd::kInterrupted:
    case WaitEnd::kFailed:
      break;
  }
  return -1;
}

}  // namespace

int ZEMAD_DriverInit() {
  zem::log::trace(kSource, "Initializing driver ...");
  if (ZEMAD_SpecDriverInit() < 0) give_up("can not initialize specific driver");
  if (ZEMAD_EventBufferInit() < 0 || !zem::kernel::make_keyword_table()) {
    give_up_and_release_source("can not initialize event buffer");
  }
  zem::log::trace(kSource, "Driver initialization complete");
  return 0;
}

int ZEMAD_DriverReload() {
  zem::log::trace(kSource, "Reloading driver ...");
  if (ZEMAD_SpecDriverReload() < 0) give_up("can not reload specific driver");
  zem::log::trace(kSource, "Driver reload complete");
  return 0;
}

int ZEMAD_DriverCleanup() {
  zem::log::trace(kSource, "Cleanup driver ...");
  if (ZEMAD_SpecDriverCleanup() < 0) {
    zem::log::report(kSource, zem::log::kMajor, 1, "cannot clean specific driver");
  }
  zem::log::trace(kSource, "Driver Cleanup complete");
  return 0;
}

int ZEMAD_WaitEvent(FdSet* set, long seconds) {
  if (ZEMAD_use_select == 0) return 1;
  const int ready = wait_readable(*set, time_out_of(seconds));
  if (ready < 0) {
    zem::log::report(kSource, zem::log::kMinor, 1, "ZEMAD_WaitEvent() : select failed");
  }
  return ready;
}

int ZEMAD_GetEvent(FdSet* /*set*/) {
  if (ZEMAD_SpecGetEvent() >= 0) return 0;
  zem::log::report(kSource, zem::log::kMinor, 1, "ZEMAD_GetEvent() failed");
  return -1;
}
