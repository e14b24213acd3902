#include "tools/fmt/cds_command.h"

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "tools/fmt/generation.h"

namespace zem::fmt {
namespace {

/// A slot that the class language has no text for would end the process half-way through.
void require_mappable(const FormatSpec& spec, const MsgMapEntry& slot) {
  if (slot.kind() != kMapPrint || !slot.mapped()) return;
  const char* argument = static_cast<const PrintMapEntry&>(slot).unresolvedArgument(&spec);
  if (argument == nullptr) return;
  throw Failure(ExitStatus::kBadData, std::string("FORMAT ") + spec.name() + ": slot " +
                                          slot.name() + ": the PRINTF argument \"" + argument +
                                          "\" names no slot of this FORMAT, or a slot that " +
                                          slot.name() + " is made of; nothing was written");
}

class CdsCommand final : public GenerationCommand {
  bool may_replace_input() const override { return false; }
  void generate(LogDriver& set, std::FILE* out, std::string& /*warnings*/) const override {
    int i = 0;
    for (const FormatSpec* spec : set.specs()) {
      for (const MsgMapEntry* slot : spec->slots()) require_mappable(*spec, *slot);
      spec->genCds(out, i++);
    }
  }
};

}  // namespace

std::unique_ptr<Command> make_cds_command() { return std::make_unique<CdsCommand>(); }

}  // namespace zem::fmt
