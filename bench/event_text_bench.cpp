// From an event that the source hands over to its finished text, by number of slots and by whether
// their values need quotes. BM_Text takes the short road (a view, the compiled class);
// BM_TextPlain makes the records, selects the class and maps the slots from those, and formats the
// text; BM_FormatPlain is the last of these steps alone. kernel_bench has the road with the match
// in front, and with many classes.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/libzemad/compiled_classes.h"
#include "adapters/libzemad/driver.h"
#include "adapters/libzemad/event_view.h"
#include "adapters/libzemad/kernel.h"
#include "adapters/libzemad/short_road.h"
#include "adapters/libzemad/zem_io.h"
#include "tests/support/class_text.h"

namespace zem::bench {
namespace {

std::vector<std::string> names(std::size_t slots) {
  std::vector<std::string> names = {"_event_id"};
  for (std::size_t i = 1; i <= slots; ++i) names.push_back("slot" + std::to_string(i));
  return names;
}

std::vector<std::string_view> values(std::size_t slots, bool is_quoted) {
  std::vector<std::string_view> values = {"0"};
  values.resize(slots + 1, is_quoted ? "Nov  5 09:00:00" : "mailhost-10.1.0");
  return values;
}

/// As it is generated for a FORMAT with these slots.
std::string class_text(const std::vector<std::string>& names) {
  std::string select = "CLASS Event\nSELECT\n1: ATTR(=,\"_event_id\"), VALUE(=,\"0\");\n";
  std::string map = "MAP\n";
  for (std::size_t i = 1; i < names.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    select += number + ": ATTR(=,\"" + names[i] + "\");\n";
    map += names[i] + " = $V" + number + ";\n";
  }
  return select + map + "END\n";
}

struct Case {
  explicit Case(const benchmark::State& state)
      : layout(names(static_cast<std::size_t>(state.range(0)))),
        texts(values(static_cast<std::size_t>(state.range(0)), state.range(1) != 0)),
        classes(class_text(layout.names())) {
    kernel::compile_classes();
    ZEMAD_ZemIoInit();
  }
  [[nodiscard]] kernel::EventView event() const { return {&layout, texts}; }

  kernel::EventLayout layout;
  std::vector<std::string_view> texts;
  test::ScopedClasses classes;
};

const char* select_class(const kernel::EventView& event) {
  kernel::queue_event(event);
  ZEMAD_GetNextEvent();
  return ZEMAD_KernelSelect();
}

void drop_event() {
  ZEMAD_KernelSelectCleanup();
  ZEMAD_DiscardEvent();
}

void BM_Text(benchmark::State& state) {
  const Case c(state);
  kernel::EventText text;
  for (auto _ : state) benchmark::DoNotOptimize(frame::write_event(c.event(), text));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void BM_TextPlain(benchmark::State& state) {
  const Case c(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(ZEMAD_FormatEvent(select_class(c.event())));
    drop_event();
  }
}

void BM_FormatPlain(benchmark::State& state) {
  const Case c(state);
  const char* class_name = select_class(c.event());
  for (auto _ : state) benchmark::DoNotOptimize(ZEMAD_FormatEvent(class_name));
  drop_event();
}

void shapes(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"slots", "quoted"})->ArgsProduct({{2, 8, 32}, {0, 1}});
}

BENCHMARK(BM_Text)->Apply(shapes);
BENCHMARK(BM_TextPlain)->Apply(shapes);
BENCHMARK(BM_FormatPlain)->Apply(shapes);

}  // namespace
}  // namespace zem::bench

BENCHMARK_MAIN();
