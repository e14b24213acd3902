// The road from a line to the event text: microseconds of processor time an event, by number of
// FORMATs, each with its generated class. BM_Road takes the short one (a view of the match, the
// compiled classes), BM_RoadIndexed the long one by records with the class found by its id, and
// BM_RoadPlain the same with every class tried. All include matching; BM_RoadMatch is that alone.
// BM_Load reads a class file and compiles it.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/short_road.h"
#include "adapters/libzemad/zem_io.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/event_maker.h"
#include "bench/workload.h"
#include "tests/support/class_text.h"
#include "tests/support/temp_dir.h"

namespace zem::bench {
namespace {

constexpr std::size_t kMessages = 1 << 14;
constexpr format::LocalHost kHost = {"hostA", "192.0.2.1"};

std::string class_text(const LogDriver& set, const test::TempDir& dir) {
  const std::string path = dir / "classes";
  set.write_cds(path.c_str());
  return test::read_file(path);
}

struct Case {
  explicit Case(const benchmark::State& state)
      : workload(static_cast<std::size_t>(state.range(0))),
        set(dir.write("formats", workload.format_file()).c_str(), nullptr, 1),
        classes(class_text(set, dir)),
        messages(workload.messages(kMessages, Mix::kUniform)) {
    set.orderFmts();
    ZEMAD_ZemIoInit();
    for (const std::string& message : messages) match(message);
    at = 0;
  }

  FormatSpec* match(const std::string& message) { return set.bind(message.c_str(), index); }
  FormatSpec* match_next() { return match(messages[at++ % kMessages]); }
  void write_short(const FormatSpec& spec) {
    const auto outcome = frame::write_event(maker.view(spec, index, kHost, set.captures()), text);
    benchmark::DoNotOptimize(outcome);
    bytes += text.size();
  }
  void write_long(const FormatSpec& spec) {
    event::queue_event(spec, index, kHost);
    ZEMAD_GetNextEvent();
    const char* class_name = ZEMAD_KernelSelect();
    if (class_name != nullptr) benchmark::DoNotOptimize(ZEMAD_FormatEvent(class_name));
    bytes += std::char_traits<char>::length(ZEMAD_EventText());
    ZEMAD_KernelSelectCleanup();
    ZEMAD_DiscardEvent();
  }

  test::TempDir dir;
  Workload workload;
  LogDriver set;
  test::ScopedClasses classes;
  std::vector<std::string> messages;
  event::EventMaker maker;
  kernel::EventText text;
  int index = 0;
  std::size_t at = 0;
  std::size_t bytes = 0;  ///< of event text
};

void BM_Road(benchmark::State& state) {
  Case c(state);
  kernel::compile_classes();
  for (const std::string& message : c.messages) c.write_short(*c.match(message));
  c.bytes = 0;
  for (auto _ : state) c.write_short(*c.match_next());
  state.counters["event_bytes"] =
      static_cast<double>(c.bytes) / static_cast<double>(state.iterations());
}

void BM_RoadMatch(benchmark::State& state) {
  Case c(state);
  for (auto _ : state) benchmark::DoNotOptimize(c.match_next());
}

void BM_RoadIndexed(benchmark::State& state) {
  Case c(state);
  kernel::compile_classes();
  for (auto _ : state) c.write_long(*c.match_next());
}

void BM_RoadPlain(benchmark::State& state) {
  Case c(state);
  for (auto _ : state) c.write_long(*c.match_next());
}

void BM_Load(benchmark::State& state) {
  const test::TempDir dir;
  const Workload workload(static_cast<std::size_t>(state.range(0)));
  const LogDriver set(dir.write("formats", workload.format_file()).c_str(), nullptr, 1);
  const std::string text = class_text(set, dir);
  for (auto _ : state) {
    const test::ScopedClasses classes(text);
    kernel::compile_classes();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->ArgName("formats")->RangeMultiplier(10)->Range(10, 10'000);
}

BENCHMARK(BM_Road)->Apply(sizes);
BENCHMARK(BM_RoadMatch)->Apply(sizes);
BENCHMARK(BM_RoadIndexed)->Apply(sizes);
BENCHMARK(BM_RoadPlain)->Apply(sizes);
BENCHMARK(BM_Load)
    ->ArgName("formats")
    ->RangeMultiplier(10)
    ->Range(1000, 100'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zem::bench

BENCHMARK_MAIN();
