/// Puts zem_server under load. Two kinds:
///
///   server_load ADDRESS:PORT held CONNECTIONS EVENTS_PER_S SECONDS    on connections that stay
///   open server_load ADDRESS:PORT single CONNECTIONS_PER_S SECONDS         one event each
///
/// Prints what was sent, how fast, and how many sends or connections failed; fails when one did.
/// script/server-load runs it and looks at the server meanwhile.
#include <arpa/inet.h>
#include <sys/resource.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "agent/peer_io.h"
#include "agent/sockobx.h"
#include "agent/wire_frame.h"

namespace {

using SteadyClock = std::chrono::steady_clock;
using zem::agent::ConnectionPtr;

constexpr std::size_t kEventBytes = 200;
/// As a flush sends them. A send for each event would cost this program so much that two cores do
/// not bring 50,000 of them to the server.
constexpr long kEventsAtATime = 5;

struct Endpoint {
  in_addr_t address = 0;
  in_port_t port = 0;
};

struct Outcome {
  long sent = 0;
  long failed = 0;
  double seconds = 0;
};

long number(std::string_view text) {
  long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value <= 0) {
    throw std::invalid_argument("no number: " + std::string(text));
  }
  return value;
}

Endpoint endpoint(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string::npos) throw std::invalid_argument("no ADDRESS:PORT: " + text);
  const long port = number(std::string_view(text).substr(colon + 1));
  return {::inet_addr(text.substr(0, colon).c_str()), htons(static_cast<std::uint16_t>(port))};
}

std::string event() {
  std::string text = "Load;text=";
  text.append(kEventBytes - text.size() - 6, 'x');
  return text + ";END\n\x01";
}

/// Frames of so many events, one after the other.
std::vector<std::byte> frames(long count) {
  std::array<std::byte, zem::agent::kFrameBytesMax> frame{};
  const std::size_t bytes = zem::agent::write_frame(event(), {}, frame);
  std::vector<std::byte> all;
  for (long i = 0; i < count; ++i) all.insert(all.end(), frame.data(), frame.data() + bytes);
  return all;
}

ConnectionPtr connect(const Endpoint& server) {
  int error = 0;
  return ConnectionPtr(eipc_create_remote_client(server.address, server.port, &error));
}

bool send(eipc_handle* connection, const std::string& text) {
  int error = 0;
  return connection != nullptr &&
         eipc_send(connection, text.data(), static_cast<int>(text.size()), 0, 0, &error) == 0;
}

/// Calls `step` `rate` times a second, in bursts every five milliseconds; true means it succeeded.
template <class Step>
Outcome pace(long rate, long seconds, Step step) {
  constexpr std::chrono::milliseconds kBurst{5};
  Outcome outcome;
  const long total = rate * seconds;
  const auto begun = SteadyClock::now();
  for (long done = 0; done < total;) {
    const std::chrono::duration<double> passed = SteadyClock::now() - begun;
    const long due = std::min(total, static_cast<long>(passed.count() * static_cast<double>(rate)));
    for (; done < due; ++done) ++(step(done) ? outcome.sent : outcome.failed);
    std::this_thread::sleep_for(kBurst);
  }
  outcome.seconds = std::chrono::duration<double>(SteadyClock::now() - begun).count();
  return outcome;
}

void allow_descriptors() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == -1) return;
  limit.rlim_cur = limit.rlim_max;
  ::setrlimit(RLIMIT_NOFILE, &limit);
}

Outcome load_held(const Endpoint& server, long connections, long rate, long seconds) {
  allow_descriptors();
  const std::vector<std::byte> load = frames(kEventsAtATime);
  std::vector<ConnectionPtr> held;
  for (long i = 0; i < connections; ++i) held.push_back(connect(server));
  Outcome outcome = pace(rate / kEventsAtATime, seconds, [&](long i) {
    const ConnectionPtr& connection = held[static_cast<std::size_t>(i % connections)];
    return connection != nullptr &&
           zem::agent::send_all(connection->socket.get(), load, zem::agent::kSendStallLimit) == 0;
  });
  outcome.sent *= kEventsAtATime;
  outcome.failed *= kEventsAtATime;
  return outcome;
}

Outcome load_single(const Endpoint& server, long rate, long seconds) {
  const std::string text = event();
  return pace(rate, seconds, [&](long) {
    const ConnectionPtr connection = connect(server);
    const bool sent = send(connection.get(), text);
    if (sent) eipc_shutdown(connection.get());
    return sent;
  });
}

Outcome run(const std::vector<std::string>& arguments) {
  if (arguments.size() == 5 && arguments[1] == "held") {
    return load_held(endpoint(arguments[0]), number(arguments[2]), number(arguments[3]),
                     number(arguments[4]));
  }
  if (arguments.size() == 4 && arguments[1] == "single") {
    return load_single(endpoint(arguments[0]), number(arguments[2]), number(arguments[3]));
  }
  throw std::invalid_argument(
      "usage: server_load ADDRESS:PORT held CONNECTIONS EVENTS_PER_S SECONDS\n"
      "       server_load ADDRESS:PORT single CONNECTIONS_PER_S SECONDS");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Outcome outcome = run({argv + 1, argv + argc});
    std::printf("sent %ld events in %.2f s, %.0f/s, failed %ld\n", outcome.sent, outcome.seconds,
                static_cast<double>(outcome.sent) / outcome.seconds, outcome.failed);
    return outcome.failed == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return EXIT_FAILURE;
  }
}
