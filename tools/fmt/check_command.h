/// `check FMT [--cds CDS] [--conf CONF]`: everything that is wrong or doubtful, in one run.
#pragma once

#include <memory>

#include "tools/fmt/command.h"

namespace zem::fmt {

[[nodiscard]] std::unique_ptr<Command> make_check_command();

}  // namespace zem::fmt
