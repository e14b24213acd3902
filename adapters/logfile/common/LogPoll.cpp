// How a source is read. The offset always stands at the beginning of a line: bytes behind the last
// newline are read again by a later pass, when the line is complete. A line is at most 512 bytes,
// newline included; of a longer one every 512 bytes without a newline among them are skipped.
//
//   offset                      size when the pass began
//     |one\n|two\n|half a li     |
//            ^ offset after the pass: "one" and "two" are written, the half line is not
//
// The pipe takes 4096 bytes (less what waits in it) per pass: within that a line is written whole
// or not at all, and the write never blocks.
#include "adapters/logfile/common/LogPoll.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <new>
#include <span>

#include "adapters/logfile/common/format_report.h"
#include "util/signal_notes.h"
#include "util/unique_fd.h"

namespace {

using zem::util::UniqueFd;

constexpr long kSmallestPipe = 513;  ///< a line and one byte
constexpr long kCongestedIntervalS = 10;
constexpr std::size_t kLineBytesMax = 512;
constexpr std::size_t kChunkBytes = 512;

/// The one poller that the signal handler serves.
LogPoll* served_poller = nullptr;

UniqueFd open_source(const char* name) {
  return UniqueFd(::open(name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

const char* text_of(const tvStrobj& name) { return name.getString(); }

/// The process may have been started with the signal blocked.
void open_alarm() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGALRM);
  ::sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

void arm(long seconds) { ::alarm(static_cast<unsigned>(std::min<long>(seconds, INT_MAX))); }

int count_of(char** sources) {
  int count = 0;
  while (sources[count] != nullptr) ++count;
  return count;
}

long pipe_size_of(int fd) {
  const long size = ::fpathconf(fd, _PC_PIPE_BUF);
  return size < 1 ? kSmallestPipe : size;
}

}  // namespace

/// The line under construction, on its way into the pipe.
class LogPoll::LineWriter {
 public:
  LineWriter(int fd, off_t offset, long space) : fd_(fd), offset_(offset), space_(space) {}

  /// False once a write was refused: the line stays in its source for the next pass.
  [[nodiscard]] bool add(std::span<const char> bytes) {
    for (const char byte : bytes) {
      if (!hasRoom()) return true;
      if (length_ == kLineBytesMax) dropLine();
      line_[length_++] = byte;
      if (byte == '\n' && !writeLine()) return false;
    }
    return true;
  }

  /// True while the pipe has more room than the line needs so far.
  [[nodiscard]] bool hasRoom() const { return space_ > length(); }
  [[nodiscard]] off_t offset() const { return offset_; }
  /// Where the next byte of the source comes from.
  [[nodiscard]] off_t position() const { return offset_ + length(); }
  [[nodiscard]] long space() const { return space_; }
  [[nodiscard]] int length() const { return static_cast<int>(length_); }

 private:
  void dropLine() {
    offset_ += length();
    length_ = 0;
  }

  [[nodiscard]] bool writeLine() {
    ssize_t written = -1;
    do {
      written = ::write(fd_, line_.data(), length_);
    } while (written == -1 && errno == EINTR);
    if (written > 0) space_ -= written;
    if (written != length()) {
      efcn(kReportPlain, "error writing to fifo, errno=%d", errno);
      return false;
    }
    dropLine();
    return true;
  }

  int fd_;
  off_t offset_;
  long space_;
  std::array<char, kLineBytesMax> line_{};
  std::size_t length_ = 0;
};

LogPoll::LogPoll(char** sources, long interval, int outFd)
    : pipeSize_(pipe_size_of(outFd)), interval_(interval), outFd_(outFd) {
  const int count = count_of(sources);
  try {
    sources_.reserve(static_cast<std::size_t>(count));
  } catch (const std::bad_alloc&) {
    efcn(kReportPlain, "cannot allocate resources for %d sources, errno=%d", count, ENOMEM);
    std::exit(1);
  }
  for (int i = 0; i < count; ++i) addSource(sources[i]);

  served_poller = this;
  struct sigaction action {};
  action.sa_handler = pollw;
  sigemptyset(&action.sa_mask);
  if (::sigaction(SIGALRM, &action, &previousAction_) == -1) {
    efcn(kReportPlain, "cannot install SIGALRM handler, errno=%d", errno);
    std::exit(1);
  }
  open_alarm();
  arm(interval_);
}

LogPoll::~LogPoll() {
  ::alarm(0);
  served_poller = nullptr;
  if (::sigaction(SIGALRM, &previousAction_, nullptr) == -1)
    efcn(kReportPlain, "cannot restore SIGALRM handler, errno=%d", errno);
}

void LogPoll::addSource(const char* name) {
  const UniqueFd file = open_source(name);
  if (!file.is_open() && errno != ENOENT) {
    efcn(kReportPlain, "cannot open %s, errno=%d", name, errno);
    std::exit(1);
  }
  struct stat found {};
  const bool is_known = file.is_open() && ::fstat(file.get(), &found) == 0;
  sources_.push_back({tvStrobj(name), is_known ? found.st_size : 0});
}

void LogPoll::poll() {
  long next = interval_;
  long space = pipeSpace();
  for (Source& source : sources_) {
    if (space <= 0) break;
    bool congested = false;
    space = follow(source, space, congested);
    if (congested) next = std::min(interval_, kCongestedIntervalS);
  }
  arm(next);
}

long LogPoll::pipeSpace() const {
  int waiting = 0;
  if (::ioctl(outFd_, FIONREAD, &waiting) == -1) {
    efcn(kReportPlain, "cannot fstat the output pipe, errno=%d", errno);
    return 0;
  }
  return pipeSize_ - waiting;
}

long LogPoll::follow(Source& source, long space, bool& congested) const {
  const UniqueFd file = open_source(text_of(source.name));
  if (!file.is_open()) {
    if (errno != ENOENT)
      efcn(kReportPlain, "cannot open %s, errno=%d", text_of(source.name), errno);
    return space;
  }
  struct stat found {};
  if (::fstat(file.get(), &found) == -1) {
    efcn(kReportPlain, "cannot fstat %s, errno=%d", text_of(source.name), errno);
    return space;
  }
  // Rotated or truncated. A new file that has grown past the old offset already is not noticed.
  if (source.offset > found.st_size) source.offset = 0;
  ::lseek(file.get(), source.offset, SEEK_SET);

  LineWriter line(outFd_, source.offset, space);
  std::array<char, kChunkBytes> chunk;
  while (line.hasRoom()) {
    const ssize_t count = ::read(file.get(), chunk.data(), chunk.size());
    if (count <= 0 || line.position() > found.st_size) break;
    if (!line.add({chunk.data(), static_cast<std::size_t>(count)})) break;
  }
  source.offset = line.offset();
  congested = !line.hasRoom();
  if (congested)
    wfcn(kReportPlain, "Buffer length = %d, pipe space = %d", line.length(),
         static_cast<int>(line.space()));
  return line.space();
}

void LogPoll::pollWhenDue() {
  if (zem::util::take_note(zem::util::Note::kPoll) && served_poller != nullptr)
    served_poller->poll();
}

void pollw(int /*signal*/) { zem::util::leave_note(zem::util::Note::kPoll); }
