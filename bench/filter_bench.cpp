// Deciding whether an event is held back, by number of filters, none of which takes it: the event
// is parsed once (not at all without filters) and asked by each. BM_FilterOtherClass has filters
// that end at the class, BM_FilterSameClass those that end at the last of two values.
#include <benchmark/benchmark.h>

#include <string>

#include "agent/event_filter.h"

namespace zem::bench {
namespace {

constexpr const char* kEvent =
    "Su_Failed;date='Nov  5 09:00:00';hostname=mailhost;pid=4711;user=alice;tty=pts/0;"
    "msg='it''s alice; failed';origin=10.1.0.7;severity=WARNING;END\n\x01";

/// `count` filters for events of the class `class_name`.
void add_filters(std::int64_t count, const std::string& class_name) {
  zem_filters_clear();
  for (std::int64_t i = 0; i < count; ++i) {
    std::string line = "Class=" + class_name + ";user=bob" + std::to_string(i) + ";";
    zem_add_filter(line.data(), 0);
  }
}

void filter(benchmark::State& state, const char* class_name) {
  add_filters(state.range(0), class_name);
  for (auto _ : state) benchmark::DoNotOptimize(zem_filter_event(kEvent, 0));
  zem_filters_clear();
}

void BM_FilterOtherClass(benchmark::State& state) { filter(state, "Su_Done"); }
void BM_FilterSameClass(benchmark::State& state) { filter(state, "Su_Failed"); }

void counts(benchmark::internal::Benchmark* bench) {
  bench->ArgName("filters")->Arg(0)->Arg(1)->Arg(10)->Arg(100);
}

BENCHMARK(BM_FilterOtherClass)->Apply(counts);
BENCHMARK(BM_FilterSameClass)->Apply(counts);

}  // namespace
}  // namespace zem::bench

BENCHMARK_MAIN();
