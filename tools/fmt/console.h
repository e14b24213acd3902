/// Where the format tool writes: a buffered, checked output, and whether people see it in colour.
#pragma once

#include <string>
#include <string_view>

#include "tools/fmt/text_buffer.h"
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

  void write(std::string_view text) {
    buffer_.append(text);
    pass_on();
  }
  /// The same for who has many pieces: appends them here, then calls `pass_on`.
  [[nodiscard]] TextBuffer& buffer() noexcept { return buffer_; }
  /// Writes once enough has come together.
  void pass_on() {
    if (buffer_.size() >= kBufferBytes) flush();
  }
  void flush();

 private:
  static constexpr std::size_t kBufferBytes = std::size_t{64} * 1024;

  util::UniqueFd owned_;
  int fd_;
  std::string name_;
  TextBuffer buffer_;
};

enum class Color { kRed, kGreen, kYellow, kBlue, kCyan, kBold, kDim };
enum class ColorMode { kAuto, kAlways, kNever };

/// The text in that colour, or as it is when colours are off.
class Painter {
 public:
  explicit Painter(bool is_on) : is_on_(is_on) {}
  [[nodiscard]] bool is_on() const noexcept { return is_on_; }
  [[nodiscard]] std::string operator()(Color color, std::string_view text) const;
  /// What stands before a text of that colour, and behind it; empty when colours are off.
  [[nodiscard]] std::string_view begin(Color color) const;
  [[nodiscard]] std::string_view end() const { return is_on_ ? "\033[0m" : ""; }

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
