#include "tools/fmt/format_trace.h"

#include <algorithm>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/SysLogMsg.h"

namespace zem::fmt {
namespace {

std::size_t cursor_of(const SysLogMsg& message) {
  return static_cast<std::size_t>(message.word().data() - message.getString());
}

bool is_literal(const TraceStep& step) { return !step.is_variable && step.piece != " "; }
bool is_star(const TraceStep& step) { return step.piece == "%s*" || step.piece == "%s+"; }

}  // namespace

FormatTrace trace_format(const FormatSpec& spec, const char* text) {
  SysLogMsg message(text);
  FormatTrace trace;
  auto lookahead = spec.lookaheads().begin();
  for (const FormatComponent* component : spec.components()) {
    const std::size_t begin = cursor_of(message);
    tvStrobj value = "";
    trace.stopped_at = begin;
    trace.failed_piece = component->fmtRep();
    if (component->matches(message, &**lookahead, value) == 0) return trace;
    trace.steps.push_back({component->fmtRep(), component->variable() != 0, begin,
                           cursor_of(message), value.getString()});
    ++lookahead;
  }
  trace.failed_piece = {};
  trace.is_match = message.end();
  trace.stopped_at = cursor_of(message);
  return trace;
}

std::size_t FormatTrace::reached() const {
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
    if (is_match || is_literal(*step)) break;
    if (is_star(*step)) return step->begin;
  }
  return stopped_at;
}

std::size_t FormatTrace::understood() const {
  const bool is_searched =
      !failed_piece.empty() && failed_piece != " " && !steps.empty() && steps.back().is_variable;
  return is_searched ? std::min(reached(), steps.back().begin) : reached();
}

std::size_t FormatTrace::literal_bytes() const {
  std::size_t bytes = 0;
  for (const TraceStep& step : steps) {
    if (is_literal(step)) bytes += step.end - step.begin;
  }
  return bytes;
}

std::size_t FormatTrace::literal_end() const {
  const auto last = std::find_if(steps.rbegin(), steps.rend(), is_literal);
  return last == steps.rend() ? 0 : last->end;
}

}  // namespace zem::fmt
