// Cutting what the FIFO brings into lines, in the reads of the daemon. BM_Lines is the line reader,
// which gives the lines out where they lie; BM_LinesPlain copies them byte by byte; BM_Reads only
// makes the reads, which both include. `line` is the time for one line, of 101 bytes on average.
#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <string>

#include "adapters/logfile/common/line_reader.h"
#include "bench/workload.h"
#include "util/expect.h"
#include "util/unique_fd.h"

namespace zem::bench {
namespace {

using format::LineReader;

constexpr std::size_t kLines = 1 << 14;

/// A file in memory that takes the FIFO's place: it begins again at its end.
class Input {
 public:
  Input() : fd_(::memfd_create("lines", MFD_CLOEXEC)) {
    std::string text;
    for (const std::string& line : Workload(100).messages(kLines, Mix::kUniform)) text += line;
    const ssize_t written = ::write(fd_.get(), text.data(), text.size());
    util::expect(written == static_cast<ssize_t>(text.size()), "the lines fit into memory");
    rewind();
  }
  [[nodiscard]] int fd() const { return fd_.get(); }
  void rewind() const { ::lseek(fd_.get(), 0, SEEK_SET); }

 private:
  util::UniqueFd fd_;
};

/// Every byte into a line of its own, as one would write it down first.
class PlainReader {
 public:
  explicit PlainReader(int fd) : fd_(fd) {}

  /// Null at the end of the input.
  const char* next() {
    std::size_t size = 0;
    do {
      if (at_ == end_ && !read()) return nullptr;
      line_[size++] = buffer_[at_++];
    } while (line_[size - 1] != '\n' && size < LineReader::kLineBytesMax);
    line_[size] = '\0';
    return line_.data();
  }

 private:
  bool read() {
    const ssize_t count = ::read(fd_, buffer_.data(), buffer_.size());
    at_ = 0;
    end_ = count > 0 ? static_cast<std::size_t>(count) : 0;
    return end_ > 0;
  }

  int fd_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
  std::array<char, LineReader::kReadBytesMax> buffer_{};
  std::array<char, LineReader::kLineBytesMax + 1> line_{};
};

/// Each iteration of the benchmark goes through all lines.
void report(benchmark::State& state) {
  using benchmark::Counter;
  state.counters["line"] =
      Counter(kLines, Counter::Flags(Counter::kIsIterationInvariantRate | Counter::kInvert));
}

void BM_Lines(benchmark::State& state) {
  const Input input;
  LineReader reader;
  for (auto _ : state) {
    input.rewind();
    while (reader.fill(input.fd()) > 0) {
      while (const char* line = reader.next()) benchmark::DoNotOptimize(line);
    }
  }
  report(state);
}

void BM_LinesPlain(benchmark::State& state) {
  const Input input;
  PlainReader reader(input.fd());
  for (auto _ : state) {
    input.rewind();
    while (const char* line = reader.next()) benchmark::DoNotOptimize(line);
  }
  report(state);
}

void BM_Reads(benchmark::State& state) {
  const Input input;
  std::array<char, LineReader::kReadBytesMax> buffer{};
  for (auto _ : state) {
    input.rewind();
    while (::read(input.fd(), buffer.data(), buffer.size()) > 0) benchmark::ClobberMemory();
  }
  report(state);
}

BENCHMARK(BM_Lines)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LinesPlain)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Reads)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zem::bench

BENCHMARK_MAIN();
