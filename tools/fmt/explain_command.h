/// `explain FMT [--cds CDS] MESSAGE|-`: why a message becomes what it becomes.
#pragma once

#include <memory>

#include "tools/fmt/command.h"

namespace zem::fmt {

[[nodiscard]] std::unique_ptr<Command> make_explain_command();

}  // namespace zem::fmt
