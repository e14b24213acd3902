/// `graph FMT [LOG...]`: which FORMAT follows which, and in what order they are tried.
#pragma once

#include <memory>

#include "tools/fmt/command.h"

namespace zem::fmt {

[[nodiscard]] std::unique_ptr<Command> make_graph_command();

}  // namespace zem::fmt
