#include "tools/fmt/match_statistics.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

#include "adapters/logfile/common/FormatSpec.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

using util::format_text;

double percent(long part, long whole) {
  return whole == 0 ? 0.0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

std::string row(const std::string& name, long count, long whole) {
  return format_text("  %-32s %10ld %6.2f %%\n", name.c_str(), count, percent(count, whole));
}

using Counts = std::vector<std::pair<std::string, long>>;

/// The most frequent first; names decide between equals.
std::string table(const char* title, Counts counts, long whole) {
  std::ranges::sort(counts, [](const auto& a, const auto& b) {
    return a.second != b.second ? a.second > b.second : a.first < b.first;
  });
  std::string text = format_text("\n%s\n", title);
  for (const auto& [name, count] : counts) {
    if (count > 0) text += row(name, count, whole);
  }
  return text;
}

}  // namespace

MatchStatistics::MatchStatistics(const std::vector<FormatSpec*>& formats) : uses_(formats.size()) {
  for (const FormatSpec* spec : formats) names_.emplace_back(spec->name());
}

void MatchStatistics::count_event(const ClassifiedEvent& event) {
  has_classes_ = true;
  if (!event.text) {
    ++(event.class_name ? refused_ : discarded_);
    return;
  }
  ++events_;
  const auto found = classes_.find(*event.class_name);
  if (found != classes_.end()) {
    ++found->second;
  } else {
    classes_.emplace(*event.class_name, 1);
  }
}

long MatchStatistics::matched() const { return std::accumulate(uses_.begin(), uses_.end(), 0L); }

std::string MatchStatistics::report(std::chrono::milliseconds elapsed) const {
  return overview(elapsed) + format_table() + class_table() + unused_formats();
}

std::string MatchStatistics::overview(std::chrono::milliseconds elapsed) const {
  const double seconds = static_cast<double>(std::max<long>(elapsed.count(), 1)) / 1000.0;
  std::string text = "messages\n";
  text += row("all", messages_, messages_);
  text += row("matched", matched(), messages_);
  text += row("unmatched", messages_ - matched(), messages_);
  if (has_classes_) {
    text += row("made into events", events_, messages_);
    text += row("discarded", discarded_, messages_);
  }
  if (refused_ > 0) text += row("refused: text too long", refused_, messages_);
  return text +
         format_text("  %-32s %10.0f\n", "a second", static_cast<double>(messages_) / seconds);
}

std::string MatchStatistics::format_table() const {
  Counts counts;
  for (std::size_t i = 0; i < names_.size(); ++i) counts.emplace_back(names_[i], uses_[i]);
  return table("FORMATs", std::move(counts), messages_);
}

std::string MatchStatistics::class_table() const {
  if (events_ == 0) return "";
  return table("classes", {classes_.begin(), classes_.end()}, messages_);
}

std::string MatchStatistics::unused_formats() const {
  const auto count = std::ranges::count(uses_, 0);
  if (count == 0) return "";
  std::string text =
      format_text("\nFORMATs never used: %ld of %zu\n", static_cast<long>(count), uses_.size());
  for (std::size_t i = 0; i < names_.size(); ++i) {
    if (uses_[i] == 0) text.append("  ").append(names_[i]).append("\n");
  }
  return text;
}

}  // namespace zem::fmt
