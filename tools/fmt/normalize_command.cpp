#include "tools/fmt/normalize_command.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "tools/fmt/generation.h"

namespace zem::fmt {
namespace {

/// Two blanks side by side, which only a comment between them makes, would be read back as one.
void require_expressible(const FormatSpec& spec) {
  bool is_behind_blank = false;
  for (const FormatComponent* component : spec.components()) {
    const bool is_blank = std::string_view(component->fmtRep()) == " ";
    if (is_blank && is_behind_blank) {
      throw Failure(ExitStatus::kBadData,
                    std::string("FORMAT ") + spec.name() +
                        ": a comment stands between two blanks of the format line; leave it or a "
                        "blank out; nothing was written");
    }
    is_behind_blank = is_blank;
  }
}

void warn_of_lost_names(const FormatSpec& spec, const MsgMapEntry& slot, std::string& warnings) {
  const bool is_written = slot.owner() == &spec;  // not with the FORMAT that it is inherited from
  if (slot.kind() != kMapPrint || !is_written) return;
  bool is_format = true;
  for (const tvStrobj* argument : static_cast<const PrintMapEntry&>(slot).arguments()) {
    const char* name = argument->getString();
    if (!is_format && spec.getmap(name) == nullptr) {
      warnings.append("zemad_fmt: FORMAT ").append(spec.name()).append(": slot ");
      warnings.append(slot.name()).append(": the PRINTF argument \"").append(name);
      warnings.append("\" names no slot of this FORMAT; !!!! is written in its place\n");
    }
    is_format = false;
  }
}

class NormalizeCommand final : public GenerationCommand {
  bool may_replace_input() const override { return true; }
  void generate(LogDriver& set, std::FILE* out, std::string& warnings) const override {
    int i = 0;
    for (const FormatSpec* spec : set.specs()) {
      require_expressible(*spec);
      for (const MsgMapEntry* slot : spec->slots()) warn_of_lost_names(*spec, *slot, warnings);
      spec->genFmt(out, &set, i++);
    }
  }
};

}  // namespace

std::unique_ptr<Command> make_normalize_command() { return std::make_unique<NormalizeCommand>(); }

}  // namespace zem::fmt
