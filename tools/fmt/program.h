/// The format tool from its command line to its exit status.
#pragma once

#include <span>

namespace zem::fmt {

/// Runs the command that the arguments (the program's name first) name.
int run_program(std::span<char* const> arguments);

}  // namespace zem::fmt
