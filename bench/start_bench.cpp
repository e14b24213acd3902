// Start-up: reading a format file, ordering the set and compiling it with the first message, by
// number of FORMATs. `heap_MiB` is what the set occupies afterwards; `items_per_second`, FORMATs by
// processor time, stays the same when nothing is quadratic.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdint>
#include <string>

#include "adapters/logfile/common/LogDriver.h"
#include "bench/workload.h"
#include "tests/support/temp_dir.h"

namespace zem::bench {
namespace {

double heap_mib() {
  const auto info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd) / (1 << 20);
}

void BM_Start(benchmark::State& state) {
  const auto formats = static_cast<std::size_t>(state.range(0));
  Workload workload(formats);
  const test::TempDir dir;
  const std::string path = dir.write("formats", workload.format_file());
  const std::string message = workload.message(0);
  const double before = heap_mib();
  for (auto _ : state) {
    LogDriver set(path.c_str(), nullptr, 1);
    set.orderFmts();
    int index = 0;
    benchmark::DoNotOptimize(set.bind(message.c_str(), index));
    state.counters["heap_MiB"] = heap_mib() - before;
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(formats));
}

BENCHMARK(BM_Start)
    ->ArgName("formats")
    ->RangeMultiplier(10)
    ->Range(1000, 100'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zem::bench

BENCHMARK_MAIN();
