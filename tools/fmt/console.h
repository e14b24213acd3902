/// Where the format tool writes: a buffered, checked output, and whether people see it in colour.
#pragma once

#include <string>
#include <string_view>

#include "util/unique_fd.h"

namespace zem::fmt {

/// Collects text for a descriptor. A write that fails is a Failure with kOutputError that names the
/// output; what is left in the buffer at the end is only written by `flush`.
class Output {
 public:
  /// Borrows `fd`.
  Output(int fd, std::string name);
  /// A file of that path, created or emptied; a Failure with kNoOutput when that is not possible.
  [[nodiscard]] static Output to_file(const std::string& path);

  void write(std::string_view text);
  void flush();

 private:
  util::UniqueFd owned_;
  int fd_;
  std::string name_;
  std::string buffer_;
};

enum class Color { kRed, kGreen, kYellow, kBlue, kCyan, kBold, kDim };
enum class ColorMode { kAuto, kAlways, kNever };

/// The text in that colour, or as it is when colours are off.
class Painter {
 public:
  explicit Painter(bool is_on) : is_on_(is_on) {}
  [[nodiscard]] bool is_on() const noexcept { return is_on_; }
  [[nodiscard]] std::string operator()(Color color, std::string_view text) const;

 private:
  bool is_on_;
};

/// kAuto asks the environment's NO_COLOR and TERM, and whether `fd` is a terminal.
[[nodiscard]] Painter painter_for(ColorMode mode, int fd);

struct Console {
  Output& out;    ///< standard output
  Output& err;    ///< standard error
  Painter paint;  ///< for standard output
  Painter paint_err;
};

}  // namespace zem::fmt
