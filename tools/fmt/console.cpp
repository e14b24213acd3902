#include "tools/fmt/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "tools/fmt/command.h"
#include "util/result.h"

namespace zem::fmt {
namespace {

/// Bytes written, all of `text` unless writing failed.
std::size_t write_all(int fd, std::string_view text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = ::write(fd, text.data() + done, text.size() - done);
    if (count == -1 && errno == EINTR) continue;
    if (count <= 0) break;
    done += static_cast<std::size_t>(count);
  }
  return done;
}

const char* code_of(Color color) {
  switch (color) {
    case Color::kRed:
      return "\033[31m";
    case Color::kGreen:
      return "\033[32m";
    case Color::kYellow:
      return "\033[33m";
    case Color::kBlue:
      return "\033[34m";
    case Color::kCyan:
      return "\033[36m";
    case Color::kBold:
      return "\033[1m";
    case Color::kDim:
      return "\033[2m";
  }
  return "";
}

bool is_set(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0';
}

}  // namespace

Output::Output(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}

Output Output::to_file(const std::string& path) {
  util::UniqueFd fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (!fd.is_open()) {
    throw Failure(ExitStatus::kNoOutput, util::last_error("create", path).text());
  }
  Output output(fd.get(), path);
  output.owned_ = std::move(fd);
  return output;
}

void Output::flush() {
  const std::size_t done = write_all(fd_, buffer_.view());
  const bool is_complete = done == buffer_.size();
  buffer_.clear();
  if (!is_complete)
    throw Failure(ExitStatus::kOutputError, util::last_error("write", name_).text());
}

std::string Painter::operator()(Color color, std::string_view text) const {
  return std::string(begin(color)).append(text).append(end());
}

std::string_view Painter::begin(Color color) const { return is_on_ ? code_of(color) : ""; }

Painter painter_for(ColorMode mode, int fd) {
  if (mode != ColorMode::kAuto) return Painter(mode == ColorMode::kAlways);
  const char* terminal = std::getenv("TERM");
  const bool is_dumb = terminal != nullptr && std::string_view(terminal) == "dumb";
  return Painter(!is_set("NO_COLOR") && !is_dumb && ::isatty(fd) == 1);
}

}  // namespace zem::fmt
