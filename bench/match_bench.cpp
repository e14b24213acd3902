// Matching one message against a set, by number of FORMATs and mix of messages: the compiled set
// (BM_Match) beside one FORMAT after the other (BM_MatchPlain). BM_MatchAndRead reads every
// captured value, too. `message` is the time for one; the times of the library's own columns are
// for a batch.
//
// The messages are those of the workload, of 39 to 172 bytes and 101 on average; a third of them
// have two blanks in the time stamp. They lie in memory one behind the other, as reads bring them,
// and are matched in that order: the cache misses are those of the set, not those of the messages.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <string_view>
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
/// As many as a read of 12 KiB brings; what the library itself does for an iteration vanishes.
constexpr std::size_t kBatch = 128;

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
      sizes.push_back(message.size());
      texts.append(message).push_back('\0');
    }
  }

  /// Hands the next batch of messages to `match`, each with a NUL behind it.
  template <class Match>
  void each_of_batch(Match match) {
    if (next == kMessages) next = at = 0;
    for (const std::size_t end = next + kBatch; next < end; ++next) {
      match(std::string_view(texts).substr(at, sizes[next]));
      at += sizes[next] + 1;
    }
  }

  LogDriver set;
  std::string texts;  ///< one behind the other, as a reader finds them in its buffer
  std::vector<std::size_t> sizes;
  std::size_t next = 0;  ///< number of a message
  std::size_t at = 0;    ///< where it begins
};

void report(benchmark::State& state) {
  using benchmark::Counter;
  state.counters["message"] =
      Counter(kBatch, Counter::Flags(Counter::kIsIterationInvariantRate | Counter::kInvert));
}

void BM_Match(benchmark::State& state) {
  Case c(state);
  int index = 0;
  benchmark::DoNotOptimize(c.set.bind("", index));
  for (auto _ : state) {
    c.each_of_batch(
        [&](std::string_view text) { benchmark::DoNotOptimize(c.set.bind(text, index)); });
  }
  report(state);
}

void BM_MatchAndRead(benchmark::State& state) {
  Case c(state);
  format::CompiledSet set(c.set.specs());
  for (auto _ : state) {
    c.each_of_batch([&](std::string_view text) {
      benchmark::DoNotOptimize(set.match(text));
      for (std::size_t k = 0; k < set.captures().count(); ++k) {
        benchmark::DoNotOptimize(set.captures().string(k).getString());
      }
    });
  }
  report(state);
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
  for (auto _ : state) {
    c.each_of_batch([&](std::string_view text) {
      benchmark::DoNotOptimize(match_plainly(specs, text.data()));
    });
  }
  report(state);
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
