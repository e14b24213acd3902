/// Events that leave the house together.
///
/// A system call costs far more than the event that it carries. So while input waits, the daemon
/// does not post each event by itself: it gathers what the messages that are already there become,
/// up to 64 KiB, and lets it leave in one call before it waits, reloads, cleans up or posts
/// anything directly. Nothing ever waits for a message that is still to come.
///
/// Nobody can tell afterwards. What arrives, in which order, and what goes to the cache is the same
/// as if every event had been posted alone, and every event gets its own result:
///
///   gathered      A B C D E F G                  seven events, end to end as they go on the wire
///   offered       A B C D E F G                  one send
///   taken         A B C d                        the kernel has no room for more
///   finished      A B C D                        D is sent to its end, waiting as D alone would
///   offered            E F G                     one send ... fails: the server is gone
///   next location      E                         E is posted alone; to the cache if nobody takes
///   it offered              F G                     one send, over the new connection
///
/// Whatever is more than a send on a healthy connection, connecting, failing over, waiting,
/// caching, is done for one event at a time by the functions that do it for an event posted
/// directly. What is gathered differs from those in one thing: the look at the peer and the look
/// for a cache file are made once for all events of an offer. While the cache holds events, offers
/// are of one event, so that the flush follows the first that arrives.
///
/// A Gathering is the batch; `gather` and `post_gathered` move events in and out. Only one process
/// death loses more than before: what was gathered and has not left is gone with a kill -9.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

#include "agent/event_filter.h"
#include "agent/posting.h"
#include "agent/zem_handle.h"

namespace zem::agent {

class Gathering {
 public:
  /// Large enough that the call is spread over some hundred events, small enough for the kernel to
  /// take most of it at once.
  static constexpr std::size_t kBytesMax = 65'536;
  enum class Form {
    kFrames,  ///< as eipc_send sends: header and text
    kLines,   ///< as the test file holds it: text and newline
  };

  /// False when the event finds no room. `accepted` is what becomes of Outgoing's.
  [[nodiscard]] bool add(const Terminated& event, int accepted, Form form);

  [[nodiscard]] bool empty() const { return first_ == events_.size(); }
  [[nodiscard]] std::size_t count() const { return events_.size() - first_; }
  [[nodiscard]] Outgoing oldest() const;
  /// The `count` oldest events, end to end.
  [[nodiscard]] std::string_view bytes(std::size_t count) const;
  /// How many of the oldest events lie whole in their first `bytes` bytes.
  [[nodiscard]] std::size_t whole_events(std::size_t bytes) const;

  /// Notes behind the newest event that the main loop has ended a pass, where it would have tried
  /// again to reach a server if there had been none.
  void note_pass() { ++events_.back().passes; }
  /// Passes that ended behind the oldest event and before the next one.
  [[nodiscard]] int passes() const { return events_[first_].passes; }

  /// Forgets the `count` oldest events.
  void drop(std::size_t count);

 private:
  /// Places are those in the buffer.
  struct Event {
    std::size_t text_begin;
    std::size_t text_bytes;
    std::size_t end;
    int accepted;
    int passes;
  };

  [[nodiscard]] std::size_t begin() const { return first_ == 0 ? 0 : events_[first_ - 1].end; }

  void append(std::string_view bytes);

  std::vector<char> buffer_;  ///< of kBytesMax bytes, from the first event on
  std::size_t size_ = 0;      ///< bytes in use
  std::vector<Event> events_;
  std::size_t first_ = 0;  ///< the oldest that was not dropped
};

enum class Gathered {
  kYes,
  kHeldBack,  ///< by a filter: its result is 0
  kNotNow,    ///< no room, or not a matter for gathering: to be posted directly, after the others
};

/// Adds an event, as zem_put_event would send it, to what is to leave through `handle`.
[[nodiscard]] Gathered gather(const zem_handle& handle, Gathering& gathering,
                              std::string_view text);

/// An event that was posted alone.
struct PostedAlone {
  bool was_accepted;  ///< zem_put_event would have returned the length of its text
  int passes;         ///< that ended behind it
};

/// Posts everything that was gathered, oldest first. `on_posted` is called for each event that
/// could not leave together with others, right after it was sent, or went to the cache or nowhere.
void post_gathered(zem_handle& handle, Gathering& gathering,
                   const std::function<void(const PostedAlone&)>& on_posted);

}  // namespace zem::agent
