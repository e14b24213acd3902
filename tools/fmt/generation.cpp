#include "tools/fmt/generation.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <span>
#include <utility>

#include "adapters/logfile/common/LogDriver.h"
#include "tools/fmt/atomic_file.h"
#include "tools/fmt/format_file.h"
#include "tools/fmt/input_guard.h"

namespace zem::fmt {
namespace {

/// A stream into memory; both go with it, also when a generator throws.
class MemoryStream {
 public:
  MemoryStream() : stream_(::open_memstream(&text_, &size_)) {}
  MemoryStream(const MemoryStream&) = delete;
  MemoryStream& operator=(const MemoryStream&) = delete;
  ~MemoryStream() {
    if (stream_ != nullptr) (void)close();
    std::free(text_);  // NOLINT(cppcoreguidelines-no-malloc): open_memstream allocates it
  }

  [[nodiscard]] std::FILE* get() const { return stream_; }
  /// False when not everything found room.
  [[nodiscard]] bool close() { return std::fclose(std::exchange(stream_, nullptr)) == 0; }
  /// After a close that succeeded.
  [[nodiscard]] std::string text() const { return {text_, size_}; }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* stream_;
};

/// What `write` puts into a stream, as a string: nothing reaches a file before all of it is there.
std::string collected_text(const std::function<void(std::FILE*)>& write) {
  MemoryStream stream;
  if (stream.get() == nullptr) throw Failure(ExitStatus::kOutputError, "out of memory");
  write(stream.get());
  if (!stream.close()) throw Failure(ExitStatus::kOutputError, "out of memory");
  return stream.text();
}

}  // namespace

void GenerationCommand::declare(CLI::App& app) {
  app.add_option("FMT", format_path_, "The format file")->required()->type_name("");
  app.add_option("-o,--output", output_path_,
                 "File to write; it stays as it was when anything fails (default: standard output)")
      ->type_name("FILE");
}

ExitStatus GenerationCommand::run(Console& console) {
  if (!may_replace_input()) require_other_file(output_path_, std::span(&format_path_, 1));
  LogDriver set;
  load_formats(format_path_, set);
  std::string warnings;
  const std::string text = collected_text([&](std::FILE* out) { generate(set, out, warnings); });
  if (output_path_.empty()) {
    console.out.write(text);
  } else {
    replace_file(output_path_, text);
  }
  console.err.write(warnings);
  return warnings.empty() ? ExitStatus::kDone : ExitStatus::kFound;
}

}  // namespace zem::fmt
