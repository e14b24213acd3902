#include "tools/fmt/input_guard.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>

#include "tools/fmt/command.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

struct FileId {
  dev_t device;
  ino_t inode;

  bool operator==(const FileId&) const = default;
};

/// Nothing for what does not exist, or can be read and written at once: a terminal, a pipe.
std::optional<FileId> id_of(const std::string& path) {
  struct stat file {};
  const int result = path == "-" ? ::fstat(STDIN_FILENO, &file) : ::stat(path.c_str(), &file);
  if (result == -1 || !S_ISREG(file.st_mode)) return std::nullopt;
  return FileId{file.st_dev, file.st_ino};
}

}  // namespace

void require_other_file(const std::string& output, std::span<const std::string> inputs) {
  const std::optional<FileId> id = id_of(output);
  if (!id) return;
  for (const std::string& input : inputs) {
    if (id_of(input) != id) continue;
    throw Failure(ExitStatus::kUsage, "writing to " + quoted(output) +
                                          " would destroy what is read from it; give the output a "
                                          "name of its own");
  }
}

}  // namespace zem::fmt
