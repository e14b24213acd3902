/// How a FORMAT deals with a message, piece by piece: the engine's own components, watched.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class FormatSpec;

namespace zem::fmt {

/// A piece that matched, and the bytes of the message that it took.
struct TraceStep {
  std::string_view piece;
  bool is_variable;
  std::size_t begin;
  std::size_t end;
  std::string value;  ///< of a variable
};

struct FormatTrace {
  std::vector<TraceStep> steps;   ///< when one piece fails, those before it
  std::string_view failed_piece;  ///< empty when all pieces matched
  bool is_match = false;
  std::size_t stopped_at = 0;  ///< without a match: where a piece failed, or what is left begins

  /// Where the reason for the failure lies. What a star took while it looked in vain for the text
  /// behind it does not count.
  [[nodiscard]] std::size_t reached() const;
  /// How far the message was understood: the same, but a single word that was searched in vain does
  /// not count either.
  [[nodiscard]] std::size_t understood() const;
  /// Bytes of the message that are literal text of the FORMAT.
  [[nodiscard]] std::size_t literal_bytes() const;
  /// Where the last of them ends; 0 when there is none.
  [[nodiscard]] std::size_t literal_end() const;
};

/// `spec` outlives the trace.
[[nodiscard]] FormatTrace trace_format(const FormatSpec& spec, const char* message);

}  // namespace zem::fmt
