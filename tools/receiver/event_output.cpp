#include "tools/receiver/event_output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <optional>
#include <string_view>
#include <utility>

#include "util/signal_notes.h"

namespace zem::receiver {
namespace {

using util::Result;
using util::Status;
using util::UniqueFd;

/// A pipe that poll(2) calls writable takes this much without blocking.
constexpr std::size_t kPipeChunk = 4096;
constexpr util::Milliseconds kLastChance{1'000};

Result<UniqueFd> open_file(const std::string& path) {
  constexpr mode_t kOwnerOnly = 0600;
  int fd = -1;
  do {
    fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, kOwnerOnly);
  } while (fd == -1 && errno == EINTR);
  if (fd == -1) return util::last_error("open", path);
  return UniqueFd(fd);
}

bool is_regular_file(int fd) {
  struct stat info {};
  return ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
}

/// What a server that was killed may leave behind.
bool ends_within_a_line(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  char last = '\n';
  file.seekg(-1, std::ios::end).get(last);
  return file && last != '\n';
}

/// 0, or why `fd` can not be waited for: ETIMEDOUT when its last chance has passed.
int await_writable(int fd) {
  pollfd output{fd, POLLOUT, 0};
  util::WaitEnd end = util::WaitEnd::kInterrupted;
  while (end == util::WaitEnd::kInterrupted) {
    end = util::wait_for({&output, 1}, std::nullopt, util::NoteSet::kNone | util::Note::kCleanup);
  }
  if (end == util::WaitEnd::kNoted) {
    end = util::wait_for({&output, 1}, kLastChance, util::NoteSet::kNone);
  }
  if (end == util::WaitEnd::kFailed) return errno;
  return end == util::WaitEnd::kTimedOut ? ETIMEDOUT : 0;
}

}  // namespace

EventOutput::EventOutput(UniqueFd fd, std::string name)
    : fd_(std::move(fd)), name_(std::move(name)), is_regular_(is_regular_file(fd_.get())) {}

Result<EventOutput> EventOutput::to_file(const std::string& path) {
  Result<UniqueFd> file = open_file(path);
  if (!file.has_value()) return file.error();
  EventOutput output(*std::move(file), path);
  output.path_ = path;
  if (output.is_regular_ && ends_within_a_line(path)) output.lines_.push_back('\n');
  return output;
}

EventOutput EventOutput::to_standard_output() {
  return {UniqueFd(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)), "standard output"};
}

Status EventOutput::clear() {
  lines_.clear();
  // What is no file has nothing to empty.
  if (is_regular_ && ::ftruncate(fd_.get(), 0) == -1) return util::last_error("truncate", name_);
  return {};
}

Status EventOutput::flush() {
  std::string_view rest = lines_;
  while (!rest.empty()) {
    if (!is_regular_) {
      if (const int code = await_writable(fd_.get()); code != 0) {
        return util::Error{"write", name_, code};
      }
    }
    const std::size_t size = is_regular_ ? rest.size() : std::min(rest.size(), kPipeChunk);
    const ssize_t written = ::write(fd_.get(), rest.data(), size);
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR && errno != EAGAIN) {
      return util::last_error("write", name_);
    }
  }
  lines_.clear();
  return {};
}

Status EventOutput::reopen() {
  if (path_.empty()) return {};
  Result<UniqueFd> file = open_file(path_);
  if (!file.has_value()) return file.error();
  fd_ = *std::move(file);
  is_regular_ = is_regular_file(fd_.get());
  return {};
}

}  // namespace zem::receiver
