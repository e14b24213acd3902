/// A bar on standard error for who waits at a terminal.
#pragma once

#include "tools/fmt/console.h"
#include "util/clock.h"

namespace zem::fmt {

class Progress {
 public:
  /// Silent unless standard error is a terminal and the size of the input is known (not 0).
  Progress(Output& err, long bytes_total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  /// Cheap enough to be called for every message: draws a few times a second.
  void show(long bytes_done) {
    if (is_on_ && ++calls_ % kCallsApart == 0) redraw(bytes_done);
  }

 private:
  static constexpr unsigned kCallsApart = 4096;

  void redraw(long bytes_done);

  Output& err_;
  bool is_on_;
  long bytes_total_;
  unsigned calls_ = 0;
  util::Milliseconds drawn_at_{0};
  bool is_drawn_ = false;
};

}  // namespace zem::fmt
