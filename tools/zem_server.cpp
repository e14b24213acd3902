/// zem_server: receives events and prints them, for tests, demonstrations and small sites.
#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tools/receiver/endpoint.h"
#include "tools/receiver/event_line.h"
#include "tools/receiver/event_output.h"
#include "tools/receiver/port_registration.h"
#include "tools/receiver/server.h"
#include "util/signal_notes.h"

namespace {

using zem::receiver::EventOutput;
using zem::receiver::PortRegistration;
using zem::receiver::Server;
using zem::receiver::ServerOptions;
using zem::util::Note;
using zem::util::Result;
using zem::util::Status;

constexpr int kOk = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 64;

struct CommandLine {
  std::string listen = "127.0.0.1:5529";
  bool registered = false;
  std::string format = "text";
  std::string output;
  bool append = false;
  bool quiet = false;
  std::size_t event_bytes_max = 65'536;
  std::size_t connections_max = 1'024;
  bool stats = false;
};

std::string check_endpoint(const std::string& text) {
  return zem::receiver::parse_endpoint(text).has_value() ? "" : "wanted: ADDRESS:PORT, not " + text;
}

void describe(CLI::App& app, CommandLine& line) {
  constexpr std::size_t kEventBytesMost = 16'777'216;
  constexpr std::size_t kConnectionsMost = 1'000'000;
  app.add_option("--listen", line.listen, "where to listen, ADDRESS:PORT; port 0 takes any")
      ->check(CLI::Validator(check_endpoint, "ADDRESS:PORT"))
      ->capture_default_str();
  app.add_flag("--register", line.registered, "announce the port to the port mapper");
  app.add_option("--format", line.format, "how events are written")
      ->check(CLI::IsMember({"text", "json"}))
      ->capture_default_str();
  CLI::Option* const output = app.add_option("--output", line.output, "file instead of stdout");
  app.add_flag("--append", line.append, "keep what the file holds")->needs(output);
  app.add_flag("--quiet", line.quiet, "no line on standard error for each connection");
  app.add_option("--max-event", line.event_bytes_max, "longest event that is taken, in bytes")
      ->check(CLI::Range(std::size_t{1}, kEventBytesMost))
      ->capture_default_str();
  app.add_option("--max-connections", line.connections_max, "connections served at a time")
      ->check(CLI::Range(std::size_t{1}, kConnectionsMost))
      ->capture_default_str();
  app.add_flag("--stats", line.stats, "counters on standard error at the end");
}

void say(const std::string& text) { std::fprintf(stderr, "zem_server: %s\n", text.c_str()); }

int fail(const zem::util::Error& error) {
  say(error.text());
  return kFailed;
}

extern "C" void on_reload(int /*signal*/) { zem::util::leave_note(Note::kReload); }
extern "C" void on_stop(int /*signal*/) { zem::util::leave_note(Note::kCleanup); }

void install(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  ::sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
}

void install_handlers() {
  install(SIGHUP, on_reload);
  install(SIGTERM, on_stop);
  install(SIGINT, on_stop);
  install(SIGPIPE, SIG_IGN);
}

/// As many descriptors as the connections need, as far as the system lets us.
void raise_descriptor_limit(std::size_t connections) {
  constexpr rlim_t kOthers = 64;
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == -1) return;
  const rlim_t wanted = std::min<rlim_t>(connections + kOthers, limit.rlim_max);
  if (limit.rlim_cur >= wanted) return;
  limit.rlim_cur = wanted;
  ::setrlimit(RLIMIT_NOFILE, &limit);
}

ServerOptions options_of(const CommandLine& line) {
  ServerOptions options;
  options.listen_on = *zem::receiver::parse_endpoint(line.listen);
  options.event_bytes_max = line.event_bytes_max;
  options.connections_max = line.connections_max;
  if (line.format == "json") options.append_line = zem::receiver::append_json_line;
  if (!line.quiet) options.report = say;
  return options;
}

void print_stats(const zem::receiver::Counters& counters) {
  std::fprintf(stderr,
               "zem_server: connections %ju, events %ju, bytes %ju, violations %ju, cut short %ju, "
               "half frames overdue %ju, idle %ju\n",
               counters.connections, counters.events, counters.event_bytes, counters.violations,
               counters.cut_short, counters.overdue, counters.idle);
}

Status serve(Server& server, EventOutput& output) {
  while (!zem::util::take_note(Note::kCleanup)) {
    if (zem::util::take_note(Note::kReload)) {
      if (const Status reopened = output.reopen(); !reopened.ok()) say(reopened.error().text());
    }
    if (Status served = server.turn(); !served.ok()) return served;
  }
  return server.stop();
}

/// An existing file is emptied only now that the address is ours: a second server that was started
/// by mistake does not take the first one's events away.
Status start_output(const CommandLine& line, EventOutput& output) {
  return line.append ? Status() : output.clear();
}

int run(const CommandLine& line, EventOutput& output) {
  raise_descriptor_limit(line.connections_max);
  install_handlers();
  Server server(options_of(line), output);
  const Result<sockaddr_in> listening = server.start();
  if (!listening.has_value()) return fail(listening.error());
  if (const Status started = start_output(line, output); !started.ok())
    return fail(started.error());
  std::optional<PortRegistration> registration;
  if (line.registered) registration.emplace(ntohs((*listening).sin_port));
  if (registration.has_value() && !registration->is_announced()) {
    say("the port mapper did not take the port: is rpcbind running on this host?");
    return kFailed;
  }
  say("listening on " + zem::receiver::endpoint_text(*listening));
  const Status served = serve(server, output);
  if (line.stats) print_stats(server.counters());
  return served.ok() ? kOk : fail(served.error());
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Receives events and writes each as one line."};
  app.name("zem_server");
  CommandLine line;
  describe(app, line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kOk : kUsage;
  }
  if (line.output.empty()) {
    EventOutput output = EventOutput::to_standard_output();
    return run(line, output);
  }
  Result<EventOutput> file = EventOutput::to_file(line.output);
  return file.has_value() ? run(line, *file) : fail(file.error());
}
