#include "tools/fmt/normalize_command.h"

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "tools/fmt/generation.h"

namespace zem::fmt {
namespace {

class NormalizeCommand final : public GenerationCommand {
  bool may_replace_input() const override { return true; }
  void generate(LogDriver& set, std::FILE* out) const override {
    int i = 0;
    for (const FormatSpec* spec : set.specs()) spec->genFmt(out, &set, i++);
  }
};

}  // namespace

std::unique_ptr<Command> make_normalize_command() { return std::make_unique<NormalizeCommand>(); }

}  // namespace zem::fmt
