/// How `match` shows what became of a message.
#pragma once

#include <memory>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/event_maker.h"
#include "tools/fmt/classifier.h"
#include "tools/fmt/console.h"
#include "tools/fmt/message_reader.h"

namespace zem::fmt {

enum class MatchFormat {
  kText,   ///< for people
  kJson,   ///< one object a line
  kEvent,  ///< the event texts alone
  kNone,   ///< nothing: only statistics are wanted
};

/// What became of one message.
struct MatchResult {
  const Message& message;
  const FormatSpec* spec;                ///< null when no FORMAT matched
  int index;                             ///< -1 then
  std::optional<ClassifiedEvent> event;  ///< nothing without a match, and without a class file
  bool has_classes;
  event::EventMaker& maker;
  const format::LocalHost& host;

  /// What the kernel is told of, after a match. Good until the next call.
  [[nodiscard]] kernel::EventView slots() const { return maker.view(*spec, index, host); }
};

class MatchPrinter {
 public:
  MatchPrinter() = default;
  MatchPrinter(const MatchPrinter&) = delete;
  MatchPrinter& operator=(const MatchPrinter&) = delete;
  virtual ~MatchPrinter() = default;

  virtual void print(const MatchResult& result) = 0;
};

/// Prints to the console's output, which must outlive it.
[[nodiscard]] std::unique_ptr<MatchPrinter> make_match_printer(MatchFormat format,
                                                               Console& console);

}  // namespace zem::fmt
