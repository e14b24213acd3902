// zemad_fmt: the tool with which people write, check, debug, try and generate format files and
// class files.
#include "tools/fmt/program.h"

int main(int argc, char* argv[]) {
  return zem::fmt::run_program({argv, static_cast<std::size_t>(argc)});
}
