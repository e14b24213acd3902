/// Counts what became of messages and tells it in the end.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/fmt/classifier.h"

class FormatSpec;

namespace zem::fmt {

class MatchStatistics {
 public:
  /// FORMATs in file order.
  explicit MatchStatistics(const std::vector<FormatSpec*>& formats);

  /// `index` is -1 for a message without a match.
  void count_message(int index) {
    ++messages_;
    if (index >= 0) ++uses_[static_cast<std::size_t>(index)];
  }
  void count_event(const ClassifiedEvent& event);

  [[nodiscard]] long messages() const { return messages_; }
  [[nodiscard]] long matched() const;
  /// By place in the file.
  [[nodiscard]] const std::vector<long>& uses() const { return uses_; }

  /// All of it for people; the classes when any event was counted.
  [[nodiscard]] std::string report(std::chrono::milliseconds elapsed) const;

 private:
  struct NameHash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  [[nodiscard]] std::string overview(std::chrono::milliseconds elapsed) const;
  [[nodiscard]] std::string format_table() const;
  [[nodiscard]] std::string class_table() const;
  [[nodiscard]] std::string unused_formats() const;

  std::vector<std::string> names_;
  std::vector<long> uses_;
  std::unordered_map<std::string, long, NameHash, std::equal_to<>> classes_;
  bool has_classes_ = false;
  long messages_ = 0;
  long events_ = 0;
  long discarded_ = 0;
  long refused_ = 0;
};

}  // namespace zem::fmt
