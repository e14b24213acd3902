/// Measures one program once and prints what it found, a metric and its value a line:
///
///   measure road ...         a daemon, from the messages it is fed to the events that arrive
///   measure tool ...         a program that reads messages on standard input
///   measure yardsticks ...   what the road can not do without, and matching alone
///
/// us is microseconds of processor time for each message, all threads, start-up left out. Fails
/// when a program loses an event, ends early or stands still. `measure KIND --help` tells the
/// options; script/bench runs it.
#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/road/child.h"
#include "bench/road/feed.h"
#include "bench/road/sink.h"
#include "bench/road/yardsticks.h"

namespace {

using namespace std::chrono_literals;
using namespace zem::bench;
using SteadyClock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

/// A program that has not moved for so long has lost the events that are missing.
constexpr auto kPatience = 20s;

void print(const char* metric, double value) { std::printf("%s %.6g\n", metric, value); }

/// FIFO or stream socket; each is named by a word and a path: "fifo:PATH", "socket:PATH".
struct RoadOptions {
  std::string messages;
  std::string feed;
  std::string receive;
  std::string log;
  std::string record;
  std::string configuration;
  std::size_t warm_up = 2000;
  std::vector<std::string> command;
};

struct Place {
  std::string kind;
  std::string path;
};

Place place_of(const std::string& text) {
  const std::size_t colon = text.find(':');
  return {text.substr(0, colon), colon == std::string::npos ? "" : text.substr(colon + 1)};
}

EventForm form_of(const std::string& kind) {
  const std::map<std::string, EventForm> forms = {
      {"frames", EventForm::kFrames}, {"lines", EventForm::kLines}, {"file", EventForm::kMarks}};
  return forms.at(kind);
}

/// Puts the port of the receiver in the place of every @PORT@ of a configuration file.
void fill_in_port(const std::string& path, int port) {
  constexpr std::string_view kPlace = "@PORT@";
  std::string text = read_file(path);
  for (auto at = text.find(kPlace); at != text.npos; at = text.find(kPlace, at)) {
    text.replace(at, kPlace.size(), std::to_string(port));
  }
  std::ofstream(path, std::ios::binary) << text;
}

std::unique_ptr<Sink> open_sink(const RoadOptions& options) {
  const Place place = place_of(options.receive);
  const EventForm form = form_of(place.kind);
  if (form == EventForm::kMarks) return std::make_unique<FileSink>(form, place.path);
  auto sink = std::make_unique<TcpSink>(form, options.record);
  fill_in_port(options.configuration, sink->port());
  return sink;
}

/// One daemon between its feed and its sink.
class Road {
 public:
  explicit Road(const RoadOptions& options)
      : feed_(place_of(options.feed)), sink_(open_sink(options)) {
    if (feed_.kind == "fifo") input_ = open_fifo(feed_.path);
    started_ = SteadyClock::now();
    child_ = std::make_unique<Child>(options.command, Child::Streams{.output = options.log.c_str(),
                                                                     .error = options.log.c_str()});
    if (feed_.kind == "socket") input_ = connect_to(feed_.path, kPatience);
  }

  /// Feeds `messages`, `count` of them, and waits until each has become an event.
  void play(std::string_view messages, std::uint64_t count) {
    write_all(input_.get(), messages);
    expected_ += count;
    wait();
  }

  [[nodiscard]] const Child& child() const { return *child_; }
  [[nodiscard]] SteadyClock::time_point started() const { return started_; }
  [[nodiscard]] std::uint64_t arrived() { return sink_->count(); }

 private:
  void wait() {
    std::uint64_t last = 0;
    auto moved = SteadyClock::now();
    for (std::uint64_t now = sink_->count(); now < expected_; now = sink_->count()) {
      if (now != last) moved = SteadyClock::now();
      last = now;
      if (!child_->is_running()) throw std::runtime_error("the program has ended");
      if (SteadyClock::now() - moved > kPatience) {
        throw std::runtime_error(std::to_string(expected_ - now) + " of " +
                                 std::to_string(expected_) + " events are missing");
      }
      std::this_thread::sleep_for(100us);
    }
  }

  Place feed_;
  std::unique_ptr<Sink> sink_;
  zem::util::UniqueFd input_;
  std::unique_ptr<Child> child_;
  SteadyClock::time_point started_;
  std::uint64_t expected_ = 0;
};

void measure_road(const RoadOptions& options) {
  const std::string text = read_file(options.messages);
  const std::string_view all = text;
  const std::size_t warm_bytes = bytes_of_lines(all, options.warm_up);
  const auto lines = static_cast<std::uint64_t>(std::ranges::count(all, '\n'));
  Road road(options);

  road.play(all.substr(0, bytes_of_lines(all, 1)), 1);
  const Microseconds start = SteadyClock::now() - road.started();
  const Microseconds start_processor = road.child().processor_time();
  road.play(all.substr(0, warm_bytes), options.warm_up);

  const Microseconds before = road.child().processor_time();
  const auto begun = SteadyClock::now();
  road.play(all, lines);
  const Microseconds wall = SteadyClock::now() - begun;
  const Microseconds used = road.child().processor_time() - before;

  if (road.arrived() != lines + options.warm_up + 1) throw std::runtime_error("too many events");
  print("us", used.count() / static_cast<double>(lines));
  print("rate", static_cast<double>(lines) * 1e6 / wall.count());
  print("rss_mib", static_cast<double>(road.child().resident_kib()) / 1024);
  print("start_s", start.count() / 1e6);
  print("start_cpu_s", start_processor.count() / 1e6);
}

struct ToolOptions {
  std::string messages;
  std::string output;
  std::string log;
  std::vector<std::string> command;
};

Microseconds run_tool(const ToolOptions& options, const char* input) {
  return Child(options.command,
               {.input = input,
                .output = options.output.empty() ? nullptr : options.output.c_str(),
                .error = options.log.c_str()})
      .wait();
}

/// What the program takes without any message is its start-up.
void measure_tool(const ToolOptions& options) {
  const std::string text = read_file(options.messages);
  const auto lines = static_cast<double>(std::ranges::count(text, '\n'));
  const Microseconds start = run_tool(options, nullptr);
  const Microseconds all = run_tool(options, options.messages.c_str());
  print("us", (all - start).count() / lines);
  print("start_cpu_s", start.count() / 1e6);
}

struct YardstickOptions {
  std::string messages;
  std::string events;
  std::string formats;
};

void measure_yardsticks(const YardstickOptions& options) {
  const std::string messages = read_file(options.messages);
  const std::string events = read_file(options.events);
  print("split", split_lines_us(messages));
  print("fifo", read_fifo_us(messages));
  print("send", send_each_us(events));
  print("match", match_us(options.formats.c_str(), messages));
}

void add_road(CLI::App& app, RoadOptions& options) {
  CLI::App* road = app.add_subcommand("road", "A daemon, from its input to the events");
  road->add_option("--messages", options.messages, "What it is fed with")->required();
  road->add_option("--feed", options.feed, "fifo:PATH or socket:PATH")->required();
  road->add_option("--receive", options.receive, "frames or lines (TCP), or file:PATH")->required();
  road->add_option("--log", options.log, "File for its output")->required();
  road->add_option("--configuration", options.configuration, "File that tells it our @PORT@");
  road->add_option("--record", options.record, "File for all that arrives over TCP");
  road->add_option("--warm-up", options.warm_up, "Messages before the clock starts");
  road->add_option("command", options.command, "The program")->required();
  road->callback([&options] { measure_road(options); });
}

void add_tool(CLI::App& app, ToolOptions& options) {
  CLI::App* tool = app.add_subcommand("tool", "A program that reads messages on standard input");
  tool->add_option("--messages", options.messages, "What it reads")->required();
  tool->add_option("--output", options.output, "File for what it prints (default: nowhere)");
  tool->add_option("--log", options.log, "File for its complaints")->required();
  tool->add_option("command", options.command, "The program")->required();
  tool->callback([&options] { measure_tool(options); });
}

void add_yardsticks(CLI::App& app, YardstickOptions& options) {
  CLI::App* yardsticks = app.add_subcommand("yardsticks", "What the road can not do without");
  yardsticks->add_option("--messages", options.messages, "Lines to split and read")->required();
  yardsticks->add_option("--events", options.events, "Lines to send")->required();
  yardsticks->add_option("--formats", options.formats, "Format file to match against")->required();
  yardsticks->callback([&options] { measure_yardsticks(options); });
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Measures one program once");
  app.require_subcommand(1);
  RoadOptions road;
  ToolOptions tool;
  YardstickOptions yardsticks;
  add_road(app, road);
  add_tool(app, tool);
  add_yardsticks(app, yardsticks);
  try {
    app.parse(argc, argv);
    return EXIT_SUCCESS;
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "measure: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
