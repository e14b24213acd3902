/// One FORMAT: a compiled format line, the values that its variables captured from the last
/// message, the format that it follows, and its slots. Built piece by piece by the reader in the
/// order `addFormat`..., `addFollows`, `addLookahead`, `addSlot`...; then `bind` is asked for each
/// message.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/FormatComponent.h"
#include "adapters/logfile/common/MapSpec.h"
#include "adapters/logfile/common/counted_array.h"
#include "adapters/logfile/common/matcher/captures.h"
#include "adapters/logfile/common/ref.h"

class LogDriver;
class SysLogMsg;

class FormatSpec : public MapSpec {
 public:
  /// Variables whose values are kept. Further ones are a counted error of the format file; when
  /// the format is used all the same they capture nothing.
  static constexpr int kValuesMax = static_cast<int>(zem::format::Captures::kMax);

  explicit FormatSpec(const char* name);
  ~FormatSpec() override;

  [[nodiscard]] int numvars() const override { return numVars_; }
  void dbgdump() const override;
  /// The captured value; "???" for a position that is not one of this format's variables.
  [[nodiscard]] const tvStrobj& bvalue(const VarMapEntry* entry) const override;
  /// Writes the entry as format-file text, with a blank line behind it. Slots that come from the
  /// parent are left out when the parent is in `set` (which may be null: it holds nothing). `i` is
  /// the entry's number in the set; the text does not depend on it.
  virtual void genFmt(std::FILE* out, LogDriver* set, int i) const;

  /// Appends the component for one piece of the format line.
  void addFormat(const char* piece);
  /// Appends a component, which other formats may hold, too.
  void addComponent(FormatComponent* component);
  /// Replaces the format by a whole format string, widths ("%12s") allowed, and compiles it.
  void setFmtStr(const char* format);
  /// The pieces, one after another.
  [[nodiscard]] tvStrobj getFmtStr() const;
  /// Compiles the format for `bind`. Once per format, after its last piece.
  void addLookahead();
  /// Makes `parent` (null: none) the format that this one follows and inherits its slots, except
  /// those of which this format has its own, and those whose variable it does not have (a
  /// warning). Slots of an earlier parent are let go.
  void addFollows(FormatSpec* parent);
  /// Warns of variables that no slot uses, or more than one. Returns this.
  FormatSpec* verifySlot();

  /// Non-zero when the format matches the whole message; its values are then good until the next
  /// `bind`. After a failure they are not.
  int bind(SysLogMsg& msg);
  /// The value that variable `k`, counting from 1, captured; "???" when nothing is kept for it.
  [[nodiscard]] const tvStrobj& captured(int k) const;
  /// The same as a view, without a string being made of it.
  [[nodiscard]] std::string_view capturedText(int k) const;
  /// The event of the last match on one line, a trace aid.
  [[nodiscard]] tvStrobj aevent() const;
  /// Makes this one of the formats that `captures`, borrowed, may belong to: those of the set that
  /// has compiled it. Null ends that. A format serves the set that compiled it last; another that
  /// holds it, too, compiles again before it matches.
  void setCaptures(zem::format::Captures* captures);
  [[nodiscard]] const zem::format::Captures* captures() const noexcept { return captures_; }
  /// Grows with every change of any format line: whoever has compiled formats sees whether they
  /// are still the same.
  [[nodiscard]] static std::uint64_t formatChanges() noexcept { return formatChanges_; }
  /// Writes the captured values to standard output.
  void dbgmatch() const;
  /// Drops the format, not the slots.
  void ldelete();

  /// The format that this one follows, or null.
  [[nodiscard]] MapSpec* parent() const noexcept { return parent_.get(); }
  [[nodiscard]] const zem::format::CountedArray<FormatComponent>& components() const noexcept {
    return components_;
  }
  /// One per component: the constant that cuts its words.
  [[nodiscard]] const std::vector<zem::format::Ref<ConstComponent>>& lookaheads() const noexcept {
    return lookaheads_;
  }

  /// The splitter of `setFmtStr`: the state after `c`, 7 when the piece ends before it.
  [[nodiscard]] static int next(int state, char c);

 private:
  /// Takes the parent's slots, except those that have a counterpart or no variable here.
  void inheritSlots(const MapSpec& parent);
  /// The text of a variable that has captured nothing.
  [[nodiscard]] static const tvStrobj& emptyValue();

  /// Made by the first `bind` of this very format: one for each variable that is kept. Most formats
  /// live in a set, which keeps the values of its last match for all of them.
  std::vector<tvStrobj> values_;
  zem::format::Captures* captures_ = nullptr;  ///< of the set that compiled this format
  int numVars_ = 0;
  zem::format::CountedArray<FormatComponent> components_;
  std::vector<zem::format::Ref<ConstComponent>> lookaheads_;
  zem::format::Ref<MapSpec> parent_;
  static inline std::uint64_t formatChanges_ = 0;
};
