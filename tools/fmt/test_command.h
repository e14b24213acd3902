/// `test FMT [--cds CDS] TESTFILE...`: messages with what must become of them.
#pragma once

#include <memory>

#include "tools/fmt/command.h"

namespace zem::fmt {

[[nodiscard]] std::unique_ptr<Command> make_test_command();

}  // namespace zem::fmt
