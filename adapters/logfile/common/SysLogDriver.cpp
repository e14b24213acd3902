#include "adapters/logfile/common/SysLogDriver.h"

#include <fcntl.h>
#include <malloc.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "adapters/libzemad/driver.h"
#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogPoll.h"
#include "adapters/logfile/common/format_report.h"
#include "adapters/logfile/common/line_reader.h"
#include "agent/agent_comm.h"
#include "agent/agent_util.h"
#include "util/seam.h"
#include "util/signal_notes.h"
#include "util/text.h"

namespace {

using namespace std::chrono_literals;
using zem::util::Clock;
using zem::util::Milliseconds;
using zem::util::Note;
using zem::util::UniqueFd;
using zem::util::WaitEnd;

constexpr Milliseconds kWaitMax = 300s;
constexpr int kRetryDefaultS = 120;
/// Keeps a descriptor that is ready without ever giving a byte (a regular file in the FIFO's place)
/// from costing a whole processor.
constexpr Milliseconds kEmptyReadPause = 100ms;

/// All drivers of the process share it: a half-read line outlives its driver.
zem::format::LineReader& line_reader() {
  static zem::format::LineReader reader;
  return reader;
}

/// `format` holds one %d, for errno.
[[noreturn]] void fail_with_errno(const char* format) {
  const std::string text = zem::util::format_text("%s, errno=%d", format, errno);
  efcn(kReportPlain, "%s", text.c_str());
  std::exit(1);
}

UniqueFd open_or_fail(const char* path, int flags, const char* failure) {
  UniqueFd fd(::open(path, flags | O_CLOEXEC, 0644));
  if (!fd.is_open()) fail_with_errno(failure);
  return fd;
}

Milliseconds retry_interval() {
  const char* value = zem_agent_getenv("RetryInterval");
  const int seconds = value == nullptr ? 0 : zem::util::saturating_atoi(value);
  if (seconds == 0) return std::chrono::seconds(kRetryDefaultS);
  return std::chrono::seconds(std::max(seconds, 1));
}

/// What is left of the time in which events in the cache may wait for a message to come, counted
/// from the moment the wait began; zero or less when it is over.
Milliseconds rest_of_retry_interval(Milliseconds entered) {
  return entered + retry_interval() - zem::util::current<Clock>().now();
}

}  // namespace

SysLogDriver::SysLogDriver(const char* fmtFile, const char* lockFile, const char* fifo,
                           char** sources, long interval, const char* unmatchLogPath)
    : LogDriver(fmtFile, unmatchLogPath, 1) {
  std::fflush(stdout);
  takeLock(lockFile);
  openFifo(fifo);
  orderFmts();
  compile();
  const std::vector<FormatSpec*> last_to_first = specs();
  auto index = static_cast<int>(last_to_first.size());
  for (const FormatSpec* spec : last_to_first) events_.prepare(*spec, --index);
  ::malloc_trim(0);  // what reading and compiling took on the way goes back to the system
  if (sources != nullptr && sources[0] != nullptr)
    poller = std::make_unique<LogPoll>(sources, interval, fifoWrite.get());
  dbgdump();
}

SysLogDriver::SysLogDriver(const char* fmtFile) : LogDriver(fmtFile, nullptr, 1) {
  write_cds(nullptr);
}

SysLogDriver::~SysLogDriver() {
  poller.reset();  // it writes into the FIFO: first to go
  fifoWrite.reset();
  fifoRead.reset();
  lockFd.reset();
}

/// The text ends with its NUL byte. The file is neither locked nor ever removed: another adapter
/// with the same name takes it over. It may lie in a public directory, hence no symbolic link.
void SysLogDriver::takeLock(const char* lockFile) {
  lockFd = open_or_fail(lockFile, O_WRONLY | O_CREAT | O_NOFOLLOW, "lock file open failed");
  if (::ftruncate(lockFd.get(), 0) == -1) fail_with_errno("ftruncate failed");
  const std::string pid = zem::util::format_text("%d\n", static_cast<int>(::getpid()));
  const auto size = static_cast<ssize_t>(pid.size() + 1);
  if (::write(lockFd.get(), pid.c_str(), pid.size() + 1) != size)
    fail_with_errno("cannot write PID to lock file");
}

/// The write end is the poller's way in, and while it is open a logger that closes its own end
/// leaves no end of file behind.
void SysLogDriver::openFifo(const char* fifo) {
  fifoRead = open_or_fail(fifo, O_RDONLY | O_NONBLOCK, "FIFO open(read) failed");
  fifoWrite = open_or_fail(fifo, O_WRONLY | O_NONBLOCK, "FIFO open(write) failed");
  if (::fcntl(fifoRead.get(), F_GETFL) == -1) fail_with_errno("F_GETFL failed");
}

const char* SysLogDriver::getLine() {
  if (const char* line = lineAtHand(); line != nullptr) return line;
  ZEMAD_AboutToWait();
  const Milliseconds entered = zem::util::current<Clock>().now();
  for (;;) {
    if (!waitForInput(entered)) return nullptr;
    readInput();
    if (const char* line = line_reader().next(); line != nullptr) return line;
  }
}

/// A line that can be had without a wait: one that was read already, or that the next read brings
/// while the FIFO fills one read after the other. Null when there is none, or a pending reload or
/// clean-up wants to be seen to.
const char* SysLogDriver::lineAtHand() {
  for (;;) {
    if (const char* line = line_reader().next(); line != nullptr) return line;
    if (!line_reader().was_filled() || zem::util::is_wait_unwelcome()) return nullptr;
    LogPoll::pollWhenDue();
    readInput();
  }
}

bool SysLogDriver::hasInputAtHand() const {
  return line_reader().has_line() || line_reader().was_filled();
}

/// False when the wait ends without input. The poller runs before every wait, so that a busy FIFO
/// can not starve it.
bool SysLogDriver::waitForInput(Milliseconds entered) {
  for (;;) {
    LogPoll::pollWhenDue();
    const bool retrying = ZEMAD_no_connection != 0;
    const Milliseconds rest =
        retrying ? std::min(kWaitMax, rest_of_retry_interval(entered)) : kWaitMax;
    pollfd input{fifoRead.get(), POLLIN, 0};
    switch (zem::util::wait_for({&input, 1}, rest, Note::kReload | Note::kCleanup | Note::kPoll)) {
      case WaitEnd::kReady:
        return true;
      case WaitEnd::kNoted:
        if (zem::util::is_wait_unwelcome()) return false;
        break;
      case WaitEnd::kTimedOut:
        if (retrying && rest_of_retry_interval(entered) <= 0ms) return false;
        break;
      case WaitEnd::kInterrupted:
        break;
      case WaitEnd::kFailed:
        efcn(kReportPlain, "select on FIFO failed, errno=%d", errno);
        (void)zem::util::current<Clock>().sleep(kEmptyReadPause);
        break;
    }
  }
}

/// A read that follows a full one without a wait may find nothing; any other has been promised
/// something.
void SysLogDriver::readInput() {
  const bool was_promised = !line_reader().was_filled();
  const ssize_t count = line_reader().fill(fifoRead.get());
  if (count > 0 || (count == -1 && errno == EAGAIN && !was_promised)) return;
  if (count < 0) efcn(kReportPlain, "read on FIFO failed, errno=%d", errno);
  (void)zem::util::current<Clock>().sleep(kEmptyReadPause);
}

FormatSpec* SysLogDriver::nextMsg(int& index) {
  if (getLine() != nullptr) return bind(line_reader().whole_line(), index);
  index = kNoMessage;
  return nullptr;
}

int SysLogDriver::iodesc() const noexcept { return lockFd.get(); }
