/// A format file as it is written: every entry with the places of its words, also of a file that
/// the engine refuses. The reader takes its tokens from the engine's scanner and, unlike the
/// engine, goes on behind a fault: at the next slot line, or at the next FORMAT.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/MsgMapEntry.h"
#include "tools/fmt/finding.h"

namespace zem::fmt {

struct PlacedWord {
  std::string text;  ///< "???" when it is too long for the engine
  Span where;
};

struct Piece {
  PlacedWord word;
  bool is_variable = false;
};

struct SlotLine {
  PlacedWord name;  ///< with its "-" when it has one
  MapKind kind = kMapConstant;
  PlacedWord value;                   ///< of PRINTF: its format
  std::vector<PlacedWord> arguments;  ///< of PRINTF

  /// The slot's name as the engine stores it.
  [[nodiscard]] std::string slot_name() const;
  /// The n of "$n"; 0 when the line maps no variable.
  [[nodiscard]] int position() const;
};

struct EntryOutline {
  PlacedWord name;
  std::optional<PlacedWord> parent;
  Span format_line;
  std::vector<Piece> pieces;
  std::vector<SlotLine> slots;
  std::vector<std::size_t> variables;  ///< which pieces are variables, in their order
  bool is_whole = false;               ///< read to its end without a fault

  [[nodiscard]] int variable_count() const { return static_cast<int>(variables.size()); }
  /// The piece that is variable `k`, counting from 1; null when there is none.
  [[nodiscard]] const Piece* variable(int k) const;
  /// The last line for the slot of that name, which is the one that counts; null when there is
  /// none.
  [[nodiscard]] const SlotLine* slot_line(std::string_view slot_name) const;
};

struct FormatOutline {
  std::vector<EntryOutline> entries;  ///< in file order
  std::vector<Finding> findings;      ///< in the order in which the engine would report them
};

[[nodiscard]] FormatOutline read_outline(const SourceText& source);

}  // namespace zem::fmt
