/// Compiled classes back to class text: for a tool that explains what a file means, and for the
/// proof that reading lost nothing. What is written reads back as the same records; the short form
/// of a SELECT item comes out as the two tests that it stands for.
#pragma once

#include <string>

#include "adapters/libzemad/configuration.h"

namespace zem::kernel {

/// One CLASS, laid out over several lines. Its constants are looked up in ZEMAD_ConstantList.
[[nodiscard]] std::string class_text(const Config& config);

/// The whole configuration in force: every CLASS in order, then one MAP_DEFAULT if there are any.
[[nodiscard]] std::string class_file_text();

}  // namespace zem::kernel
