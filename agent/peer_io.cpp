#include "agent/peer_io.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

#include "util/signal_notes.h"

namespace zem::agent {
namespace {

using util::Clock;
using util::Milliseconds;
using util::Note;
using util::WaitEnd;

/// Set by the first wait that finds a note pending.
std::optional<Milliseconds> grace_ends;

/// `limit`, or what the grace still leaves of it.
Milliseconds within_grace(Milliseconds limit) {
  if (!util::is_wait_unwelcome()) return limit;
  const Milliseconds now = util::current<Clock>().now();
  if (!grace_ends.has_value()) grace_ends = now + kGrace;
  return std::clamp(*grace_ends - now, Milliseconds{0}, limit);
}

constexpr int kGone = POLLRDHUP | POLLERR | POLLHUP | POLLNVAL;

/// What poll(2) sees now.
int look(int fd, short events) {
  pollfd peer{fd, events, 0};
  while (::poll(&peer, 1, 0) == -1 && errno == EINTR) {
  }
  return peer.revents;
}

int send_some(int fd, std::span<const std::byte>& bytes) {
  const ssize_t sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  if (sent < 0) return errno;
  bytes = bytes.subspan(static_cast<std::size_t>(sent));
  return 0;
}

}  // namespace

void renew_grace() { grace_ends.reset(); }

int await_peer(int fd, short events, Milliseconds limit) {
  const Milliseconds ends = util::current<Clock>().now() + limit;
  while (true) {
    const Milliseconds left = std::max(ends - util::current<Clock>().now(), Milliseconds{0});
    const Milliseconds allowed = within_grace(left);
    const util::NoteSet ends_on =
        util::is_wait_unwelcome() ? util::NoteSet::kNone : Note::kReload | Note::kCleanup;
    pollfd peer{fd, events, 0};
    switch (util::wait_for({&peer, 1}, allowed, ends_on)) {
      case WaitEnd::kReady:
        return 0;
      case WaitEnd::kTimedOut:
        return allowed < left ? EINTR : ETIMEDOUT;
      case WaitEnd::kFailed:
        return errno;
      case WaitEnd::kNoted:
      case WaitEnd::kInterrupted:
        break;  // the rest of the wait, or of the grace that has just begun
    }
  }
}

int send_all(int fd, std::span<const std::byte> bytes, Milliseconds stall_limit) {
  while (!bytes.empty()) {
    int code = send_some(fd, bytes);
    if (code == EINTR) continue;
    if (code == EAGAIN) code = await_peer(fd, POLLOUT, stall_limit);
    if (code != 0) return code;
  }
  return 0;
}

bool has_peer_closed(int fd) { return (look(fd, POLLRDHUP) & kGone) != 0; }

bool is_deserted(int fd) {
  const int seen = look(fd, POLLIN | POLLRDHUP);
  if ((seen & POLLIN) == 0) return (seen & kGone) != 0;
  discard_input(fd);
  return has_peer_closed(fd);
}

void discard_input(int fd) {
  // Bounded, so that a peer that never stops talking can not hold us here.
  constexpr int kReadsMax = 64;
  std::array<std::byte, 4096> ignored{};
  for (int reads = 0; reads < kReadsMax; ++reads) {
    if (::recv(fd, ignored.data(), ignored.size(), MSG_DONTWAIT) <= 0) return;
  }
}

}  // namespace zem::agent
