/// `cds FMT [-o FILE]`: the class file that a format file generates.
#pragma once

#include <memory>

#include "tools/fmt/command.h"

namespace zem::fmt {

[[nodiscard]] std::unique_ptr<Command> make_cds_command();

}  // namespace zem::fmt
