/// The daemon's configuration file, as far as it decides what the tool shows: EventMaxSize.
#pragma once

#include <string>

namespace zem::fmt {

/// Makes the file's settings those of this process, for the next Kernel. What is wrong with single
/// lines goes to standard error, and they are passed over, as in the daemon. A path that can not be
/// read is a Failure with kNoInput.
void load_settings(const std::string& path);

}  // namespace zem::fmt
