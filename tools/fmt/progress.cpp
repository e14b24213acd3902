#include "tools/fmt/progress.h"

#include <unistd.h>

#include <algorithm>
#include <string>

#include "util/seam.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

constexpr util::Milliseconds kApart{100};
constexpr long kWidth = 40;

}  // namespace

Progress::Progress(Output& err, long bytes_total)
    : err_(err),
      is_on_(bytes_total > 0 && ::isatty(STDERR_FILENO) == 1),
      bytes_total_(bytes_total) {}

/// Wipes the line that the bar stood on.
Progress::~Progress() {
  if (is_drawn_) err_.write("\r\033[K");
}

void Progress::redraw(long bytes_done) {
  const util::Milliseconds now = util::current<util::Clock>().now();
  if (is_drawn_ && now - drawn_at_ < kApart) return;
  is_drawn_ = true;
  drawn_at_ = now;
  const double done =
      std::min(1.0, static_cast<double>(bytes_done) / static_cast<double>(bytes_total_));
  const auto filled = static_cast<std::size_t>(done * kWidth);
  std::string bar(filled, '#');
  bar.resize(kWidth, '.');
  err_.write(util::format_text("\r[%s] %3.0f %%", bar.c_str(), 100 * done));
  err_.flush();
}

}  // namespace zem::fmt
