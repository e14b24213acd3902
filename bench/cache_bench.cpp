// The cache file. BM_Append adds one event of 200 bytes, to a file with room and to one that is
// full at 64 KiB and drops its oldest 8 KiB whenever it has to. BM_Flush posts a file's events to
// somebody who takes them at once; BM_FlushPlain cuts each off the top of the file by itself, so
// that its time for an event grows with the number of events.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "agent/cache_file.h"
#include "agent/cache_flush.h"
#include "agent/cache_settings.h"
#include "agent/event_filter.h"
#include "agent/evt_buffer.h"
#include "tests/support/temp_dir.h"
#include "util/expect.h"
#include "util/unique_fd.h"

namespace zem::bench {
namespace {

constexpr std::int64_t kKiB = 1024;
constexpr std::size_t kEventBytes = 200;

std::string one_event() {
  const std::string begin = "Su_Failed;msg=";
  const std::string end = ";END\n\x01";
  return begin + std::string(kEventBytes - begin.size() - end.size(), 'x') + end;
}

/// The notice that every append leaves on standard error goes nowhere for the length of the scope.
class QuietErrors {
 public:
  QuietErrors() : saved_(::dup(STDERR_FILENO)) {
    const util::UniqueFd nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    ::dup2(nowhere.get(), STDERR_FILENO);
  }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;
  ~QuietErrors() { ::dup2(saved_.get(), STDERR_FILENO); }

 private:
  util::UniqueFd saved_;
};

class Cache {
 public:
  Cache() : path_(dir_ / "cache") {}

  void fill(std::int64_t events) {
    std::string content;
    for (std::int64_t i = 0; i < events; ++i) content += one_event();
    dir_.write("cache", content);
  }
  [[nodiscard]] agent::CacheFile open() const {
    auto file = agent::CacheFile::open(path_, agent::CacheFile::Missing::kFail);
    util::expect(file && file->lock(), "nobody else has the file");
    return std::move(*file);
  }
  [[nodiscard]] zem_buffer_config settings(std::int64_t max_bytes) const {
    return {path_, max_bytes, 8 * kKiB, 64 * kKiB, 4 * kKiB, 0, true, true};
  }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  test::TempDir dir_;
  std::string path_;
};

void BM_Append(benchmark::State& state) {
  const Cache cache;
  const QuietErrors quiet;
  default_buffer_config = cache.settings(state.range(0) * kKiB);
  const std::string event = one_event();
  for (auto _ : state) {
    const int cached = zem_buffer_event(event.c_str());
    util::expect(cached == static_cast<int>(kEventBytes), "the event is cached");
  }
  state.SetItemsProcessed(state.iterations());
  default_buffer_config = {};
}

void BM_Flush(benchmark::State& state) {
  Cache cache;
  const agent::PostEvent post = [](const char*) { return static_cast<int>(kEventBytes); };
  for (auto _ : state) {
    state.PauseTiming();
    cache.fill(state.range(0));
    agent::CacheFile file = cache.open();
    state.ResumeTiming();
    const int posted = agent::flush_cache(file, cache.settings(0), post, post);
    util::expect(posted == state.range(0), "all are posted");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_FlushPlain(benchmark::State& state) {
  Cache cache;
  std::vector<char> event(kEventBytes);
  for (auto _ : state) {
    state.PauseTiming();
    cache.fill(state.range(0));
    const agent::CacheFile file = cache.open();
    state.ResumeTiming();
    while (file.read(0, event).value() > 0) trunc_at_top(cache.path().c_str(), kEventBytes);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_Append)->ArgName("max_KiB")->Arg(1 << 20)->Arg(64);
BENCHMARK(BM_Flush)
    ->ArgName("events")
    ->RangeMultiplier(10)
    ->Range(100, 100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FlushPlain)
    ->ArgName("events")
    ->Arg(100)
    ->Arg(300)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zem::bench

BENCHMARK_MAIN();
