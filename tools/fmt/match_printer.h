/// How `match` shows what became of a message.
#pragma once

#include <memory>

#include "tools/fmt/console.h"
#include "tools/fmt/match_result.h"

namespace zem::fmt {

enum class MatchFormat {
  kText,   ///< for people
  kJson,   ///< one object a line
  kEvent,  ///< the event texts alone
  kNone,   ///< nothing: only statistics are wanted
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
