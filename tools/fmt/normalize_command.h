/// `normalize FMT [-o FILE]`: the format file as the engine writes it.
#pragma once

#include <memory>

#include "tools/fmt/command.h"

namespace zem::fmt {

[[nodiscard]] std::unique_ptr<Command> make_normalize_command();

}  // namespace zem::fmt
