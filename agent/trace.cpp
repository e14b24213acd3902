#include "agent/trace.h"

#include <utility>

namespace zem::agent {
namespace {

TraceSink trace_sink;

}  // namespace

void set_trace(TraceSink sink) { trace_sink = std::move(sink); }

bool is_traced() { return static_cast<bool>(trace_sink); }

void trace(std::string_view line) {
  if (trace_sink) trace_sink(line);
}

}  // namespace zem::agent
