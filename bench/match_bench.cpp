// Matching one message against a set: microseconds of processor time a message, by number of
// FORMATs and mix of messages, the compiled set (BM_Match) beside one FORMAT after the other
// (BM_MatchPlain). BM_MatchAndRead reads every captured value, too.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/matcher/compiled_set.h"
#include "bench/workload.h"

namespace zem::bench {
namespace {

/// So many that no branch is foreseen because the message has been seen before.
constexpr std::size_t kMessages = 1 << 14;

struct Case {
  explicit Case(const benchmark::State& state) {
    Workload workload(static_cast<std::size_t>(state.range(0)));
    for (const std::string& line : workload.format_lines()) {
      auto* spec = format::make_counted<FormatSpec>("f");
      spec->setFmtStr(line.c_str());
      set.addFormatSpec(spec);
    }
    set.orderFmts();
    for (const auto& message :
         workload.messages(kMessages, state.range(1) == 0 ? Mix::kUniform : Mix::kZipf)) {
      starts.push_back(texts.size());
      texts.append(message).push_back('\0');
    }
  }

  [[nodiscard]] const char* next() { return texts.data() + starts[at++ % kMessages]; }

  LogDriver set;
  std::string texts;  ///< one behind the other, as a reader finds them in its buffer
  std::vector<std::size_t> starts;
  std::size_t at = 0;
};

void BM_Match(benchmark::State& state) {
  Case c(state);
  int index = 0;
  benchmark::DoNotOptimize(c.set.bind(c.next(), index));
  for (auto _ : state) benchmark::DoNotOptimize(c.set.bind(c.next(), index));
}

void BM_MatchAndRead(benchmark::State& state) {
  Case c(state);
  format::CompiledSet set(c.set.specs());
  for (auto _ : state) {
    benchmark::DoNotOptimize(set.match(c.next()));
    for (std::size_t k = 0; k < set.captures().count(); ++k) {
      benchmark::DoNotOptimize(set.captures().string(k).getString());
    }
  }
}

FormatSpec* match_plainly(const std::vector<FormatSpec*>& specs, const char* text) {
  SysLogMsg msg(text);
  for (FormatSpec* spec : specs) {
    if (spec->bind(msg) != 0) return spec;
  }
  return nullptr;
}

void BM_MatchPlain(benchmark::State& state) {
  Case c(state);
  const std::vector<FormatSpec*> specs = c.set.specs();
  for (auto _ : state) benchmark::DoNotOptimize(match_plainly(specs, c.next()));
}

void sizes_and_mixes(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"formats", "zipf"});
  bench->ArgsProduct({{10, 100, 1000, 10000}, {0, 1}});
}

BENCHMARK(BM_Match)->Apply(sizes_and_mixes);
BENCHMARK(BM_MatchAndRead)->Apply(sizes_and_mixes);
BENCHMARK(BM_MatchPlain)->Apply(sizes_and_mixes);

}  // namespace
}  // namespace zem::bench

BENCHMARK_MAIN();
