/// The first half of `explain`: which FORMAT took a message, and what of it; or which came near,
/// and where each of them failed.
#pragma once

#include <string>

#include "tools/fmt/console.h"
#include "tools/fmt/format_model.h"
#include "tools/fmt/format_trace.h"

class LogDriver;

namespace zem::fmt {

class FormatExplainer {
 public:
  /// The model has the FORMATs of the file that the messages are bound by; both are borrowed.
  FormatExplainer(const FormatModel& model, const SourceText& source, Console& console)
      : model_(model), source_(source), out_(console.out), paint_(console.paint) {}

  /// `index` is the FORMAT's place in the file.
  void show_match(std::size_t index, const char* message) const;
  /// For a message that no FORMAT matches: the `count` nearest ones.
  void show_nearest(const char* message, std::size_t count) const;
  /// The `count` nearest of those that were tried before FORMAT `index` took the message.
  void show_nearest_before(std::size_t index, const char* message, std::size_t count) const;

 private:
  struct Attempt;

  [[nodiscard]] std::string title(const FormatEntry& entry) const;
  void show_message(const char* message) const;
  void show_values(const FormatEntry& entry, const FormatTrace& trace, const char* message) const;
  void show_ranking(std::size_t first_index, const char* message, std::size_t count) const;
  void show_attempt(const Attempt& attempt, const char* message) const;

  const FormatModel& model_;
  const SourceText& source_;
  Output& out_;
  const Painter& paint_;
};

}  // namespace zem::fmt
