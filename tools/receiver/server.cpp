#include "tools/receiver/server.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "tools/receiver/endpoint.h"
#include "util/signal_notes.h"

namespace zem::receiver {
namespace {

using util::Clock;
using util::Milliseconds;
using util::Note;
using util::NoteSet;
using util::Result;
using util::Seconds;
using util::Status;
using util::UniqueFd;
using util::WaitEnd;

constexpr std::size_t kReadBytes = 65'536;
constexpr int kReadyMax = 256;
constexpr int kListenQueue = 4'096;
/// What the kernel may hold of one connection that we have not read, in round numbers; left to the
/// system it grows to megabytes, for each of a thousand connections, and is lost when we die.
constexpr int kReceiveBufferBytes = 65'536;
/// Lines are written at the latest when this many bytes wait.
constexpr std::size_t kOutputBytes = 262'144;
/// How long peers have to hear that the server goes and to finish what they are sending.
constexpr Milliseconds kFarewell{1'000};
/// After the system had no descriptor left for another connection.
constexpr Milliseconds kAcceptPause{1'000};

Milliseconds now() { return util::current<Clock>().now(); }

Status listen_at(int fd, const sockaddr_in& address) {
  const int on = 1;
  ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  // Connections inherit it, if it is set before the first comes.
  ::setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &kReceiveBufferBytes, sizeof kReceiveBufferBytes);
  if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1) {
    return util::last_error("bind", endpoint_text(address));
  }
  if (::listen(fd, kListenQueue) == -1) return util::last_error("listen", endpoint_text(address));
  return {};
}

/// From now on the kernel drops every packet that would open a connection: the peer tries again
/// later and is refused then. Those that are open already can be accepted in peace, and none is
/// reset between the last accept and the close, with an event in it that its sender believes sent.
void turn_newcomers_away(int listener) {
  sock_filter drop_all{BPF_RET | BPF_K, 0, 0, 0};
  const sock_fprog filter{1, &drop_all};
  ::setsockopt(listener, SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter);
}

bool is_shortage(int code) {
  return code == EMFILE || code == ENFILE || code == ENOBUFS || code == ENOMEM;
}

}  // namespace

struct Server::Connection {
  Connection(UniqueFd accepted, const sockaddr_in& from, std::size_t event_bytes_max)
      : socket(std::move(accepted)), peer(endpoint_text(from)), decoder(event_bytes_max) {}

  [[nodiscard]] Milliseconds deadline() const {
    return decoder.is_midway() ? frame_began + kFrameLimit : last_input + kIdleLimit;
  }

  UniqueFd socket;
  std::string peer;
  FrameDecoder decoder;
  Milliseconds last_input = now();
  Milliseconds frame_began = last_input;
  std::uint64_t events = 0;
};

Server::Server(ServerOptions options, EventOutput& output)
    : options_(std::move(options)),
      output_(output),
      epoll_(::epoll_create1(EPOLL_CLOEXEC)),
      buffer_(kReadBytes) {}

Server::~Server() = default;

Result<sockaddr_in> Server::start() {
  if (!epoll_.is_open()) return util::last_error("epoll_create1", "");
  listener_ = UniqueFd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!listener_.is_open()) return util::last_error("socket", "");
  if (const Status listening = listen_at(listener_.get(), options_.listen_on); !listening.ok()) {
    return listening.error();
  }
  epoll_event interest{};
  interest.data.fd = listener_.get();
  if (::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, listener_.get(), &interest) == -1) {
    return util::last_error("epoll_ctl", "listening socket");
  }
  set_accepting(true);
  sockaddr_in address{};
  socklen_t size = sizeof address;
  ::getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&address), &size);
  next_check_ = now() + kFrameLimit;
  return address;
}

// --- Waiting ---

Status Server::turn(std::optional<Milliseconds> limit) { return wait_and_serve(limit, true); }

Status Server::wait_and_serve(std::optional<Milliseconds> limit, bool ends_on_notes) {
  pollfd ready{epoll_.get(), POLLIN, 0};
  const NoteSet ends_on = ends_on_notes ? Note::kReload | Note::kCleanup : NoteSet::kNone;
  const WaitEnd end = util::wait_for({&ready, 1}, next_wait(limit), ends_on);
  if (end == WaitEnd::kFailed) return util::last_error("ppoll", "connections");
  if (end == WaitEnd::kReady) {
    if (Status served = serve_ready(); !served.ok()) return served;
  }
  if (now() >= next_check_) close_overdue();
  review_accepting();
  return output_.flush();
}

/// Until the next connection may be overdue, or accepting may go on; without end when neither is to
/// be expected.
std::optional<Milliseconds> Server::next_wait(std::optional<Milliseconds> limit) const {
  std::optional<Milliseconds> wake_at;
  if (limit.has_value()) wake_at = now() + *limit;
  const auto not_after = [&](Milliseconds moment) {
    wake_at = std::min(wake_at.value_or(moment), moment);
  };
  if (!connections_.empty()) not_after(next_check_);
  if (listener_.is_open() && !is_accepting_ && connections_.size() < options_.connections_max) {
    not_after(accept_again_at_);
  }
  if (!wake_at.has_value()) return std::nullopt;
  return std::max(*wake_at - now(), Milliseconds{0});
}

Status Server::serve_ready() {
  std::array<epoll_event, kReadyMax> ready{};
  const int count = ::epoll_wait(epoll_.get(), ready.data(), kReadyMax, 0);
  if (count == -1 && errno != EINTR) return util::last_error("epoll_wait", "connections");
  for (int i = 0; i < count; ++i) {
    const int fd = ready[static_cast<std::size_t>(i)].data.fd;
    if (fd == listener_.get()) {
      accept_waiting();
    } else {
      serve(fd);
    }
    if (output_.lines().size() < kOutputBytes) continue;
    if (Status written = output_.flush(); !written.ok()) return written;
  }
  return {};
}

// --- Accepting ---

void Server::accept_waiting() {
  while (is_accepting_ && accept_one()) {
    if (connections_.size() >= options_.connections_max) set_accepting(false);
  }
}

/// False when nobody waits, or the system is short of what a connection needs.
bool Server::accept_one() {
  sockaddr_in from{};
  socklen_t size = sizeof from;
  UniqueFd socket(::accept4(listener_.get(), reinterpret_cast<sockaddr*>(&from), &size,
                            SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!socket.is_open()) {
    if (!is_shortage(errno)) return errno == EINTR || errno == ECONNABORTED;
    accept_again_at_ = now() + kAcceptPause;
    set_accepting(false);
    return false;
  }
  const int fd = socket.get();
  epoll_event interest{};
  interest.events = EPOLLIN;
  interest.data.fd = fd;
  if (::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, fd, &interest) == -1) return true;
  ++counters_.connections;
  auto connection = std::make_unique<Connection>(std::move(socket), from, options_.event_bytes_max);
  report(*connection, "connected");
  next_check_ = std::min(next_check_, connection->deadline());
  connections_.emplace(fd, std::move(connection));
  return true;
}

void Server::set_accepting(bool accepting) {
  is_accepting_ = accepting;
  epoll_event interest{};
  interest.events = accepting ? static_cast<std::uint32_t>(EPOLLIN) : 0U;
  interest.data.fd = listener_.get();
  ::epoll_ctl(epoll_.get(), EPOLL_CTL_MOD, listener_.get(), &interest);
}

void Server::review_accepting() {
  if (is_accepting_ || !listener_.is_open()) return;
  if (connections_.size() >= options_.connections_max || now() < accept_again_at_) return;
  set_accepting(true);
}

// --- One connection ---

void Server::serve(int fd) {
  const auto found = connections_.find(fd);
  if (found == connections_.end()) return;  // closed earlier in this turn
  Connection& connection = *found->second;
  const ssize_t got = read_from(connection);
  if (got > 0) {
    take_bytes(connection, {buffer_.data(), static_cast<std::size_t>(got)});
  } else if (got == 0) {
    end_of_stream(connection, 0);
  } else if (errno != EAGAIN && errno != EINTR) {
    end_of_stream(connection, errno);
  }
}

ssize_t Server::read_from(Connection& connection) {
  return ::recv(connection.socket.get(), buffer_.data(), buffer_.size(), MSG_DONTWAIT);
}

void Server::take_bytes(Connection& connection, std::string_view bytes) {
  const bool was_midway = connection.decoder.is_midway();
  const std::uint64_t events_before = connection.events;
  const Violation violation =
      connection.decoder.feed(bytes, [&](std::string_view text) { take_event(connection, text); });
  if (violation != Violation::kNone) {
    ++counters_.violations;
    close(connection, text_of(violation));
    return;
  }
  connection.last_input = now();
  const bool is_new_frame = !was_midway || connection.events != events_before;
  if (is_new_frame) connection.frame_began = connection.last_input;
  next_check_ = std::min(next_check_, connection.deadline());
}

void Server::take_event(Connection& connection, std::string_view text) {
  ++connection.events;
  ++counters_.events;
  counters_.event_bytes += text.size();
  options_.append_line({text, connection.peer, std::chrono::system_clock::now()}, output_.lines());
}

void Server::end_of_stream(Connection& connection, int code) {
  if (connection.decoder.is_midway()) ++counters_.cut_short;
  std::string why = connection.decoder.is_midway() ? "closed within a frame" : "closed";
  if (code != 0) why += std::string(" by an error: ") + std::strerror(code);
  close(connection, why);
}

void Server::close_overdue() {
  const Milliseconds moment = now();
  std::vector<Connection*> overdue;
  next_check_ = moment + kFrameLimit;
  for (const auto& [fd, connection] : connections_) {
    if (connection->deadline() <= moment) {
      overdue.push_back(connection.get());
    } else {
      next_check_ = std::min(next_check_, connection->deadline());
    }
  }
  for (Connection* connection : overdue) {
    const bool is_midway = connection->decoder.is_midway();
    ++(is_midway ? counters_.overdue : counters_.idle);
    close(*connection, is_midway ? "closed: half a frame for too long" : "closed: silent too long");
  }
}

void Server::close(Connection& connection, std::string_view why) {
  report(connection, std::string(why) + ", events: " + std::to_string(connection.events));
  connections_.erase(connection.socket.get());
}

void Server::report(const Connection& connection, std::string_view what) const {
  if (options_.report) options_.report(connection.peer + " " + std::string(what));
}

// --- The end ---

Status Server::stop() {
  turn_newcomers_away(listener_.get());
  set_accepting(true);
  while (accept_one()) {
  }
  is_accepting_ = false;
  listener_.reset();
  for (const auto& [fd, connection] : connections_) ::shutdown(fd, SHUT_WR);
  const Milliseconds ends = now() + kFarewell;
  while (!connections_.empty() && now() < ends) {
    if (Status served = wait_and_serve(ends - now(), false); !served.ok()) return served;
  }
  connections_.clear();
  return output_.flush();
}

}  // namespace zem::receiver
