/// The receiving server: accepts connections, takes events off them and writes each as one line.
/// One thread, level-triggered epoll: thousands of connections cost nothing while they are silent,
/// and there is no library to bring along. Peers are not trusted: every connection has a bounded
/// buffer and a time limit, and what is no event closes the connection it came on, no other.
#pragma once

#include <netinet/in.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/receiver/event_line.h"
#include "tools/receiver/event_output.h"
#include "tools/receiver/frame_decoder.h"
#include "util/clock.h"
#include "util/result.h"
#include "util/unique_fd.h"

namespace zem::receiver {

/// A frame that has begun is complete within this time: a largest event takes less even over a slow
/// line, and a peer that feeds byte by byte can not hold a buffer for long.
inline constexpr util::Seconds kFrameLimit{30};
/// A connection between two events may be silent for this long.
inline constexpr util::Seconds kIdleLimit{600};

struct ServerOptions {
  sockaddr_in listen_on{};
  std::size_t event_bytes_max = 65'536;
  /// Further peers wait in the listen queue until one of these leaves.
  std::size_t connections_max = 1'024;
  /// append_text_line or append_json_line.
  std::function<void(const Received&, std::string&)> append_line = append_text_line;
  /// Told of every connection that comes and goes; may be empty.
  std::function<void(const std::string&)> report;
};

struct Counters {
  std::uint64_t connections = 0;
  std::uint64_t events = 0;
  std::uint64_t event_bytes = 0;
  std::uint64_t violations = 0;  ///< connections closed for what they sent
  std::uint64_t cut_short = 0;   ///< connections that their peer closed within a frame
  std::uint64_t overdue = 0;     ///< connections closed for half a frame that was not completed
  std::uint64_t idle = 0;        ///< connections closed for silence
};

class Server {
 public:
  /// `output` must outlive the server.
  Server(ServerOptions options, EventOutput& output);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  /// Opens the listening socket; tells where it listens.
  [[nodiscard]] util::Result<sockaddr_in> start();

  /// One wait, at most `limit` long, and everything that is ready then. Ends at once when a reload
  /// or clean-up is noted. Fails only when output or epoll fail.
  [[nodiscard]] util::Status turn(std::optional<util::Milliseconds> limit = std::nullopt);

  /// Ends in good order: nobody new gets in, peers are told, and what they have sent by then is
  /// received and written. Takes a second at most, longer only as the output demands.
  [[nodiscard]] util::Status stop();

  [[nodiscard]] const Counters& counters() const { return counters_; }
  [[nodiscard]] std::size_t connection_count() const { return connections_.size(); }

 private:
  struct Connection;

  util::Status wait_and_serve(std::optional<util::Milliseconds> limit, bool ends_on_notes);
  [[nodiscard]] std::optional<util::Milliseconds> next_wait(
      std::optional<util::Milliseconds> limit) const;
  util::Status serve_ready();

  void accept_waiting();
  bool accept_one();
  void set_accepting(bool accepting);
  void review_accepting();

  void serve(int fd);
  [[nodiscard]] ssize_t read_from(Connection& connection);
  void take_bytes(Connection& connection, std::string_view bytes);
  void take_event(Connection& connection, std::string_view text);
  void end_of_stream(Connection& connection, int code);
  void close_overdue();
  void close(Connection& connection, std::string_view why);
  void report(const Connection& connection, std::string_view what) const;

  ServerOptions options_;
  EventOutput& output_;
  util::UniqueFd epoll_;
  util::UniqueFd listener_;
  bool is_accepting_ = false;
  util::Milliseconds accept_again_at_{0};  ///< after the system was short of something
  util::Milliseconds next_check_{0};       ///< no connection is overdue before
  std::unordered_map<int, std::unique_ptr<Connection>> connections_;
  std::vector<char> buffer_;  ///< what one read takes, for all connections
  Counters counters_;
};

}  // namespace zem::receiver
