#include "bench/road/yardsticks.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "adapters/logfile/common/LogDriver.h"
#include "agent/wire_frame.h"
#include "bench/road/feed.h"
#include "bench/road/sink.h"
#include "util/unique_fd.h"

namespace zem::bench {

namespace {

constexpr std::size_t kReadBytes = 1U << 16;

double thread_us() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

/// Processor time of `work` over the `count` messages it deals with.
template <class Work>
double us_each(std::size_t count, Work work) {
  const double before = thread_us();
  work();
  return (thread_us() - before) / static_cast<double>(count);
}

std::vector<std::string_view> lines_of(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t bytes = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, bytes));
    text.remove_prefix(bytes);
  }
  return lines;
}

void read_to_the_end(int fd) {
  std::vector<char> piece(kReadBytes);
  while (::read(fd, piece.data(), piece.size()) > 0) {
  }
}

util::UniqueFd connect_to_port(int port) {
  util::UniqueFd stream(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int on = 1;
  ::setsockopt(stream.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  const auto* generic = reinterpret_cast<const sockaddr*>(&address);
  if (::connect(stream.get(), generic, sizeof address) == -1) {
    throw std::runtime_error("no connection to our own receiver");
  }
  return stream;
}

}  // namespace

double split_lines_us(std::string_view messages) {
  std::size_t lines = 0;
  std::size_t longest = 0;
  const double total = us_each(1, [&] {
    for (std::size_t at = 0; at < messages.size(); ++lines) {
      const std::size_t end = std::min(messages.find('\n', at), messages.size());
      longest = std::max(longest, end - at);
      at = end + 1;
    }
  });
  if (longest == 0) throw std::runtime_error("no messages");
  return total / static_cast<double>(lines);
}

double read_fifo_us(std::string_view messages) {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) == -1) throw std::runtime_error("no pipe");
  const util::UniqueFd out(ends[0]);
  std::thread writer([messages, in = util::UniqueFd(ends[1])] { write_all(in.get(), messages); });
  const double us = us_each(lines_of(messages).size(), [&] { read_to_the_end(out.get()); });
  writer.join();
  return us;
}

double send_each_us(std::string_view events) {
  TcpSink sink(EventForm::kFrames, "");
  const util::UniqueFd stream = connect_to_port(sink.port());
  const std::vector<std::string_view> texts = lines_of(events);
  std::array<std::byte, agent::kFrameBytesMax> frame{};
  return us_each(texts.size(), [&] {
    for (const std::string_view text : texts) {
      const std::size_t bytes = agent::write_frame(text, {}, frame);
      if (::send(stream.get(), frame.data(), bytes, MSG_NOSIGNAL) != static_cast<ssize_t>(bytes)) {
        throw std::runtime_error("our own receiver has gone");
      }
    }
  });
}

double match_us(const char* format_file, std::string_view messages) {
  LogDriver set(format_file, nullptr, 0);
  set.orderFmts();
  std::string texts(messages);
  std::vector<const char*> lines;
  for (const std::string_view line : lines_of(texts)) lines.push_back(line.data());
  std::ranges::replace(texts, '\n', '\0');
  int index = 0;
  std::size_t unmatched = 0;
  if (set.bind(lines.front(), index) == nullptr) ++unmatched;
  const double us = us_each(lines.size(), [&] {
    for (const char* line : lines)
      unmatched += static_cast<std::size_t>(set.bind(line, index) == nullptr);
  });
  if (unmatched != 0) throw std::runtime_error("a message matches no FORMAT");
  return us;
}

}  // namespace zem::bench
