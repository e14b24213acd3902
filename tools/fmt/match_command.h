/// `match FMT [--cds CDS] [LOG...]`: what becomes of each message of the logs.
#pragma once

#include <memory>

#include "tools/fmt/command.h"

namespace zem::fmt {

[[nodiscard]] std::unique_ptr<Command> make_match_command();

}  // namespace zem::fmt
