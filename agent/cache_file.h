/// The cache file on disk: event texts one after another, each ending in the byte 0x01, oldest
/// first. Empty events (0x01 beside 0x01) are places of events that were sent and have not been cut
/// off yet; every reader skips them. What a process that died left half done (an event without its
/// end, a cut of the head) is put right by `repair`, before the file is read or appended to.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "util/result.h"
#include "util/unique_fd.h"

namespace zem::agent {

class CacheFile {
 public:
  enum class Missing { kFail, kCreate };

  /// Opens the file for reading and writing. Symbolic links are not followed; what is no regular
  /// file is refused, and nothing is ever waited for.
  static util::Result<CacheFile> open(const std::string& path, Missing missing);

  [[nodiscard]] const std::string& path() const { return path_; }

  /// Takes the write lock of the whole file, or takes it again: it goes whenever this process
  /// closes any descriptor of the file. False when another process holds it; never waits.
  [[nodiscard]] bool lock();

  [[nodiscard]] util::Result<off_t> size() const;
  /// Cuts off an event at the end that is not complete and, when `lock` can be had, finishes a cut
  /// of the head.
  [[nodiscard]] util::Status repair();
  /// Finishes a cut of the head that another process left half done, and that `repair` can not see
  /// because something was appended behind it. Reads the whole file; the lock is held.
  [[nodiscard]] util::Status finish_head_cut();
  [[nodiscard]] util::Status append(std::string_view events);
  /// Removes the first `bytes` bytes. The lock is held.
  [[nodiscard]] util::Status remove_head(off_t bytes);
  /// Marks the event at `at`, of `length` bytes with its end, as sent: it is empty from here on.
  [[nodiscard]] util::Status erase(off_t at, std::size_t length);
  /// True when the process died while it erased this event: it was sent.
  [[nodiscard]] bool is_half_erased(off_t at, std::size_t length) const;
  /// Bytes read; less than asked for at the end of the file.
  [[nodiscard]] util::Result<std::size_t> read(off_t at, std::span<char> out) const;
  /// Offset just behind the first event end at or after `from`; the file's size when there is none.
  [[nodiscard]] util::Result<off_t> end_of_event(off_t from) const;

  /// Hands the descriptor over to the caller, who closes it.
  [[nodiscard]] int release() { return fd_.release(); }

 private:
  CacheFile(std::string path, util::UniqueFd fd) : path_(std::move(path)), fd_(std::move(fd)) {}
  [[nodiscard]] util::Status cut_torn_tail();

  std::string path_;
  util::UniqueFd fd_;
};

/// "cache file PATH: what", to the trace.
void trace_cache(std::string_view path, std::string_view what);

}  // namespace zem::agent
