#include "tools/fmt/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "tools/fmt/command.h"
#include "util/result.h"
#include "util/unique_fd.h"

namespace zem::fmt {
namespace {

[[noreturn]] void fail(ExitStatus status, const char* operation, const std::string& path) {
  throw Failure(status, util::last_error(operation, path).text());
}

/// A file that goes away with its holder unless it was renamed.
class Draft {
 public:
  explicit Draft(const std::string& target) : path_(target + ".XXXXXX") {
    fd_ = util::UniqueFd(::mkostemp(path_.data(), O_CLOEXEC));
    if (!fd_.is_open()) fail(ExitStatus::kNoOutput, "create a file beside", target);
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;
  ~Draft() {
    if (!is_renamed_) ::unlink(path_.c_str());
  }

  [[nodiscard]] int fd() const noexcept { return fd_.get(); }
  void rename_to(const std::string& target) {
    if (::rename(path_.c_str(), target.c_str()) == -1) {
      fail(ExitStatus::kOutputError, "rename", target);
    }
    is_renamed_ = true;
  }

 private:
  std::string path_;
  util::UniqueFd fd_;
  bool is_renamed_ = false;
};

std::optional<mode_t> mode_of(const std::string& path) {
  struct stat file {};
  if (::stat(path.c_str(), &file) == -1) return std::nullopt;
  return file.st_mode;
}

/// Those of the file that is replaced, or what any new file gets.
mode_t permissions_for(std::optional<mode_t> old) {
  if (old) return *old & 07777U;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666U & ~mask;
}

/// Where the links lead; the path itself when it names nothing yet.
std::string target_of(const std::string& path) {
  std::error_code error;
  const std::filesystem::path target = std::filesystem::weakly_canonical(path, error);
  return error ? path : target.string();
}

void write_to(int fd, const std::string& name, std::string_view text) {
  Output output(fd, name);
  output.write(text);
  output.flush();
}

}  // namespace

void replace_file(const std::string& path, std::string_view text) {
  const std::optional<mode_t> old = mode_of(path);
  if (old && !S_ISREG(*old)) {
    Output output = Output::to_file(path);
    output.write(text);
    output.flush();
    return;
  }
  const std::string target = target_of(path);
  Draft draft(target);
  write_to(draft.fd(), path, text);
  if (::fchmod(draft.fd(), permissions_for(old)) == -1) {
    fail(ExitStatus::kOutputError, "chmod", path);
  }
  if (::fsync(draft.fd()) == -1) fail(ExitStatus::kOutputError, "fsync", path);
  draft.rename_to(target);
}

}  // namespace zem::fmt
