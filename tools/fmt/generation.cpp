#include "tools/fmt/generation.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <memory>

#include "adapters/logfile/common/LogDriver.h"
#include "tools/fmt/atomic_file.h"
#include "tools/fmt/format_file.h"

namespace zem::fmt {
namespace {

/// What `write` puts into a stream, as a string: nothing reaches a file before all of it is there.
std::string collected_text(const std::function<void(std::FILE*)>& write) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* stream = ::open_memstream(&text, &size);
  if (stream == nullptr) throw Failure(ExitStatus::kOutputError, "out of memory");
  write(stream);
  const bool is_complete = std::fclose(stream) == 0;  // NOLINT(cppcoreguidelines-owning-memory)
  const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
  if (!is_complete) throw Failure(ExitStatus::kOutputError, "out of memory");
  return {text, size};
}

}  // namespace

void GenerationCommand::declare(CLI::App& app) {
  app.add_option("FMT", format_path_, "The format file")->required();
  app.add_option("-o,--output", output_path_,
                 "File to write; it stays as it was when anything fails (default: standard output)")
      ->option_text("FILE");
}

ExitStatus GenerationCommand::run(Console& console) {
  LogDriver set;
  load_formats(format_path_, set);
  const std::string text = collected_text([&](std::FILE* out) { generate(set, out); });
  if (output_path_.empty()) {
    console.out.write(text);
  } else {
    replace_file(output_path_, text);
  }
  return ExitStatus::kDone;
}

}  // namespace zem::fmt
