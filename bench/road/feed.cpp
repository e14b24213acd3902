#include "bench/road/feed.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace zem::bench {

namespace {

constexpr std::size_t kWriteBytesMax = 1U << 16;

}  // namespace

util::UniqueFd open_fifo(const std::string& path) {
  util::UniqueFd fifo(::open(path.c_str(), O_RDWR | O_CLOEXEC));
  if (!fifo.is_open()) throw std::system_error(errno, std::generic_category(), path);
  return fifo;
}

util::UniqueFd connect_to(const std::string& path, std::chrono::seconds patience) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) throw std::runtime_error("too long: " + path);
  path.copy(address.sun_path, path.size());
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (std::chrono::steady_clock::now() < deadline) {
    util::UniqueFd stream(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const auto* generic = reinterpret_cast<const sockaddr*>(&address);
    if (::connect(stream.get(), generic, sizeof address) == 0) return stream;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  throw std::runtime_error("nobody listens at " + path);
}

void write_all(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), std::min(bytes.size(), kWriteBytesMax));
    if (written == -1 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "can not feed the program");
    }
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  if (!file) throw std::runtime_error("can not read " + path);
  return text;
}

std::size_t bytes_of_lines(std::string_view text, std::size_t count) {
  std::size_t at = 0;
  while (count-- > 0) {
    const std::size_t end = text.find('\n', at);
    if (end == std::string_view::npos) return text.size();
    at = end + 1;
  }
  return at;
}

}  // namespace zem::bench
