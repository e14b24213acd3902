#include "bench/road/sink.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <vector>

namespace zem::bench {

namespace {

constexpr std::size_t kPieceBytes = 1U << 18;

int checked(int result, const char* what) {
  if (result == -1) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

sockaddr* generic(sockaddr_in& address) { return reinterpret_cast<sockaddr*>(&address); }

util::UniqueFd listen_on_loopback(int& port) {
  util::UniqueFd listener(checked(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  checked(::bind(listener.get(), generic(address), length), "bind");
  checked(::listen(listener.get(), SOMAXCONN), "listen");
  checked(::getsockname(listener.get(), generic(address), &length), "getsockname");
  port = ntohs(address.sin_port);
  return listener;
}

/// False when `stop` has ended.
bool wait_readable(int fd, int stop) {
  pollfd both[] = {{.fd = fd, .events = POLLIN, .revents = 0},
                   {.fd = stop, .events = POLLIN, .revents = 0}};
  while (::poll(both, 2, -1) == -1 && errno == EINTR) {
  }
  return both[1].revents == 0;
}

}  // namespace

TcpSink::TcpSink(EventForm form, const std::string& record) : form_(form) {
  if (!record.empty()) {
    record_.reset(std::fopen(record.c_str(), "we"));
    if (record_ == nullptr) checked(-1, record.c_str());
  }
  listener_ = listen_on_loopback(port_);
  int ends[2] = {-1, -1};
  checked(::pipe2(ends, O_CLOEXEC), "pipe");
  stop_read_ = util::UniqueFd(ends[0]);
  stop_write_ = util::UniqueFd(ends[1]);
  thread_ = std::thread([this] { serve(); });
}

TcpSink::~TcpSink() {
  stop_write_.reset();
  thread_.join();
}

void TcpSink::serve() {
  while (wait_readable(listener_.get(), stop_read_.get())) {
    const util::UniqueFd connection(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (connection.is_open()) drain(connection.get());
  }
}

void TcpSink::drain(int connection) {
  EventCounter counter(form_, record_.get());
  std::vector<char> piece(kPieceBytes);
  while (wait_readable(connection, stop_read_.get())) {
    const ssize_t bytes = ::recv(connection, piece.data(), piece.size(), 0);
    if (bytes <= 0) return;
    events_ += counter.count({piece.data(), static_cast<std::size_t>(bytes)});
  }
}

std::uint64_t FileSink::count() {
  if (!file_.is_open()) file_ = util::UniqueFd(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
  std::vector<char> piece(kPieceBytes);
  for (;;) {
    const ssize_t bytes = ::read(file_.get(), piece.data(), piece.size());
    if (bytes <= 0) return events_;
    events_ += counter_.count({piece.data(), static_cast<std::size_t>(bytes)});
  }
}

}  // namespace zem::bench
