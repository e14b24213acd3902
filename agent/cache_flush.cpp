#include "agent/cache_flush.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "agent/agent_comm.h"
#include "agent/connector.h"
#include "agent/event_filter.h"
#include "agent/evt_buffer.h"
#include "util/clock.h"
#include "util/signal_notes.h"

// A file of three events, the flush posting the second (each 0x01 shown as a dot):
//
//   A;END\n.B;END\n.C;END\n.
//   .......B;END\n.C;END\n.        A was posted and emptied: after a crash here nothing repeats
//   .......B;END\n.C;END\n.        B is posted; after a crash here it is posted once more
//   ..............C;END\n.
//   C;END\n.                       a clean-up is pending: the head is cut off, the rest stays
//
// An event that no server takes goes back in through its post, to the end of the file, beyond the
// size that this flush looks at, and then leaves the top like any other.

namespace zem::agent {
namespace {

using util::Clock;
using util::Result;
using util::Status;

constexpr util::Seconds kPause{60};

bool flush_under_way = false;

/// Says for a scope that a flush is under way: to the handle, so that its events are not filtered
/// again, and to this process.
class FlushScope {
 public:
  explicit FlushScope(zem_handle& handle) : handle_(handle) {
    flush_under_way = true;
    handle_.flushing = true;
  }
  FlushScope(const FlushScope&) = delete;
  FlushScope& operator=(const FlushScope&) = delete;
  ~FlushScope() {
    handle_.flushing = false;
    flush_under_way = false;
  }

 private:
  zem_handle& handle_;
};

/// Reads the complete, non-empty events of a file in blocks, up to the size it is given.
class EventReader {
 public:
  EventReader(const CacheFile& file, off_t size, std::int64_t block_bytes)
      : file_(file), size_(size), block_bytes_(block_bytes) {}

  /// The next event, with its end, in `event`; false when there is none.
  bool next(std::string& event) {
    std::size_t searched = begin_;
    for (;;) {
      begin_ = std::min(buffer_.find_first_not_of(kEventEnd, begin_), buffer_.size());
      const std::size_t end = buffer_.find(kEventEnd, std::max(begin_, searched));
      if (end != std::string::npos) {
        event.assign(buffer_, begin_, end + 1 - begin_);
        event_at_ = buffer_at_ + static_cast<off_t>(begin_);
        begin_ = end + 1;
        return true;
      }
      searched = buffer_.size() - begin_;
      if (!read_block()) return false;
    }
  }

  /// Where the event that `next` gave begins in the file.
  [[nodiscard]] off_t event_at() const { return event_at_; }

  /// How far the file was read, when `next` found no further event.
  [[nodiscard]] off_t position() const { return buffer_at_ + static_cast<off_t>(begin_); }

  /// The first `bytes` bytes of the file are gone: all places move up.
  void move_up(off_t bytes) {
    buffer_at_ -= bytes;
    event_at_ -= bytes;
    size_ -= bytes;
  }

 private:
  /// Moves what is left of the buffer to its start and reads one block behind it.
  bool read_block() {
    buffer_.erase(0, begin_);
    buffer_at_ += static_cast<off_t>(std::exchange(begin_, 0));
    const std::size_t kept = buffer_.size();
    const off_t from = buffer_at_ + static_cast<off_t>(kept);
    const off_t want = std::min<off_t>(block_bytes_, size_ - from);
    if (want <= 0) return false;
    buffer_.resize(kept + static_cast<std::size_t>(want));
    const Result<std::size_t> got = file_.read(from, std::span(buffer_).subspan(kept));
    buffer_.resize(kept + (got ? got.value() : 0));
    return buffer_.size() > kept;
  }

  const CacheFile& file_;
  off_t size_;
  std::int64_t block_bytes_;
  std::string buffer_;
  off_t buffer_at_ = 0;    ///< where in the file the buffer begins
  std::size_t begin_ = 0;  ///< in the buffer: what was not given yet
  off_t event_at_ = 0;
};

class Flush {
 public:
  Flush(CacheFile& file, off_t size, const zem_buffer_config& config, const PostEvent& post,
        const PostEvent& put_back)
      : file_(file),
        reader_(file, size, config.block_bytes),
        rate_(config.flush_rate),
        post_(post),
        put_back_(put_back) {}

  int run() {
    while (reader_.next(event_)) {
      if (!handle_event()) return finish();
    }
    gone_ = reader_.position();  // with the empty events behind the last one
    return finish();
  }

 private:
  /// Posts the event and takes it out of the file; false when the flush ends here.
  bool handle_event() {
    const bool is_first = !std::exchange(is_past_first_, true);
    const bool was_sent = is_first && file_.is_half_erased(reader_.event_at(), event_.size());
    const int result = was_sent ? 0 : post_timed();
    is_locked_ = file_.lock();  // an event that went back into the file has cost us the lock
    if (!is_locked_ || result < 0 || !take_out()) return false;
    if (result > 0) ++posted_;
    if (util::is_wait_unwelcome()) return false;
    return result <= 0 || pause_if_due();
  }

  int finish() {
    if (is_locked_) cut_head();
    return posted_;
  }

  bool take_out() {
    if (!file_.erase(reader_.event_at(), event_.size()).ok()) return false;
    gone_ = reader_.event_at() + static_cast<off_t>(event_.size());
    return true;
  }

  /// Posts the event. When it came back after as long as a try to connect may take, the servers do
  /// not answer, and the events behind it would each wait as long one after the other: they are put
  /// back as they would be then.
  int post_timed() {
    if (is_hopeless_) return put_back_(event_.c_str());
    auto& clock = util::current<Clock>();
    const auto begun = clock.now();
    const int result = post_(event_.c_str());
    is_hopeless_ = ZEMAD_no_connection != 0 && clock.now() - begun >= kConnectLimit;
    return result;
  }

  /// After every `rate_` events the head is cut and the flush pauses; false when the pause ended
  /// for a pending reload or clean-up.
  bool pause_if_due() {
    if (rate_ == 0 || posted_ % rate_ != 0 || is_hopeless_) return true;
    cut_head();
    return util::current<Clock>().sleep(kPause);
  }

  void cut_head() {
    if (gone_ == 0) return;
    const off_t bytes = std::exchange(gone_, 0);
    const Status removed = file_.remove_head(bytes);
    if (removed.ok()) {
      reader_.move_up(bytes);
    } else {
      trace_cache(file_.path(), removed.error().text() + "; sent events stay in it, emptied");
    }
  }

  CacheFile& file_;
  EventReader reader_;
  int rate_;
  const PostEvent& post_;
  const PostEvent& put_back_;
  std::string event_;
  off_t gone_ = 0;  ///< bytes at the top whose events have left
  int posted_ = 0;
  bool is_locked_ = true;
  bool is_hopeless_ = false;
  bool is_past_first_ = false;
};

}  // namespace

int flush_cache(CacheFile& file, const zem_buffer_config& config, const PostEvent& post,
                const PostEvent& put_back) {
  Status repaired = file.repair();
  if (repaired.ok()) repaired = file.finish_head_cut();
  const Result<off_t> size = file.size();
  if (!repaired.ok() || !size) return 0;
  return Flush(file, size.value(), config, post, put_back).run();
}

bool is_flush_under_way() { return flush_under_way; }

}  // namespace zem::agent

int zem_flush_events(zem_handle* handle) { return zem_flush_events_from_file(handle, nullptr); }

int zem_flush_events_from_file(zem_handle* handle, const char* path) {
  using namespace zem::agent;
  if (handle == nullptr || is_flush_under_way()) return 0;
  const zem_buffer_config& config = buffer_config();
  const std::string target = path == nullptr ? config.path : path;
  auto file = CacheFile::open(target, CacheFile::Missing::kFail);
  if (!file) {
    if (file.error().code != ENOENT) trace_cache(target, file.error().text());
    return file.error().code;
  }
  if (!file->lock()) return 0;
  const FlushScope scope(*handle);
  return flush_cache(
      *file, config, [&](const char* event) { return zem_put_event(handle, event); },
      zem_buffer_event);
}
