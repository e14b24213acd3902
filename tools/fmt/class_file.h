/// Reading a class file as the daemon does, with the kernel's messages in hand instead of in a log.
#pragma once

#include <string>
#include <vector>

namespace zem::fmt {

struct ClassReading {
  bool is_accepted;  ///< what the daemon would make of the file
  std::vector<std::string> messages;
};

/// Fills the kernel's lists from the file. A path that can not be read is a Failure with kNoInput.
[[nodiscard]] ClassReading read_classes(const std::string& path);

/// The same for who has no use for a faulty file: that is a Failure with kBadData, and its text the
/// kernel's.
void load_classes(const std::string& path);

}  // namespace zem::fmt
