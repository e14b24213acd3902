#include "tools/fmt/message_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <utility>

#include "tools/fmt/command.h"
#include "util/result.h"

namespace zem::fmt {
namespace {

constexpr const char* kStandardInput = "-";

[[noreturn]] void fail(const char* operation, const std::string& path) {
  const std::string object = path == kStandardInput ? "standard input" : path;
  throw Failure(ExitStatus::kNoInput, util::last_error(operation, object).text());
}

util::UniqueFd open_log(const std::string& path) {
  util::UniqueFd fd(path == kStandardInput ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                           : ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd.is_open()) fail("open", path);
  return fd;
}

/// Size of the log, or -1 when only its end tells.
long size_of(const std::string& path) {
  struct stat file {};
  const int result =
      path == kStandardInput ? ::fstat(STDIN_FILENO, &file) : ::stat(path.c_str(), &file);
  return result == 0 && S_ISREG(file.st_mode) ? static_cast<long>(file.st_size) : -1;
}

long size_of_all(const std::vector<std::string>& paths) {
  long total = 0;
  for (const std::string& path : paths) {
    const long size = size_of(path);
    if (size == -1) return 0;
    total += size;
  }
  return total;
}

}  // namespace

MessageReader::MessageReader(std::vector<std::string> paths) : paths_(std::move(paths)) {
  if (paths_.empty()) paths_.emplace_back(kStandardInput);
  bytes_total_ = size_of_all(paths_);
}

bool MessageReader::next(Message& message) {
  for (;;) {
    const char* text = lines_.next();
    if (text == nullptr && fill()) continue;
    if (text != nullptr || lines_.rest() != nullptr) {
      give_out(message);
      return true;
    }
    if (!open_next()) return false;
  }
}

bool MessageReader::open_next() {
  if (opened_ == paths_.size()) return false;
  if (is_inside_line_) ++line_;  // an open last line ends with its log
  is_inside_line_ = false;
  input_ = open_log(paths_[opened_++]);
  return true;
}

/// False at the end of the log.
bool MessageReader::fill() {
  if (!input_.is_open()) return false;
  const ssize_t count = lines_.fill(input_.get());
  if (count < 0) fail("read", paths_[opened_ - 1]);
  if (count == 0) input_.reset();
  bytes_read_ += count;
  return count > 0;
}

void MessageReader::give_out(Message& message) {
  const std::string_view line = lines_.whole_line();
  message = {line_, line.substr(0, line.find('\0'))};
  is_inside_line_ = !line.ends_with('\n');
  if (!is_inside_line_) ++line_;
}

}  // namespace zem::fmt
