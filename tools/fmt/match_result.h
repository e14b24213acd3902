/// What became of one message.
#pragma once

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/event_slots.h"
#include "tools/fmt/classifier.h"
#include "tools/fmt/message_reader.h"

namespace zem::fmt {

struct MatchResult {
  const Message& message;
  const FormatSpec* spec;            ///< null when no FORMAT matched
  int index;                         ///< -1 then
  const format::Captures* captures;  ///< what the match has captured
  const format::LocalHost& host;
  bool has_classes;       ///< there is a class file
  ClassifiedEvent event;  ///< of the match; empty without classes
};

}  // namespace zem::fmt
