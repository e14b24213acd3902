/// One piece of a format line: a constant, a blank or a variable. A format matches a message when
/// its components, left to right, each succeed at the cursor and nothing but blanks is left. There
/// is no backtracking: a component takes what it takes, and a failed one ends the attempt with the
/// cursor anywhere.
///
/// Components are shared by reference counts. Those without a text of their own ("%s", "%s*",
/// "%s+", "%t", a blank) exist once and live to the end of the process.
#pragma once

#include "util/list.h"
#include "util/strobj.h"

class ConstComponent;
class SysLogMsg;

/// What a component is, for those who compile formats instead of asking each component.
enum class ComponentKind { kConstant, kBlank, kWord, kTime, kStar, kPlus };

class FormatComponent : public tvStrobj {
 public:
  /// Makes the shared components; further calls do nothing.
  static void init();
  /// The component for one piece, a shared one or a new one with count 0. A piece that is not
  /// quite a variable ("%sx") is reported as a counted error and taken for the plain variable.
  [[nodiscard]] static FormatComponent* create(const char* piece);
  /// The empty constant, which stands for "no lookahead" and cuts nothing.
  [[nodiscard]] static ConstComponent* emptyConst();

  FormatComponent(const FormatComponent&) = delete;
  FormatComponent& operator=(const FormatComponent&) = delete;

  /// Tries the component at the cursor; non-zero when it matched. `next` is the constant that cuts
  /// this component's words (what `lookahead` gave), `value` the text of the current variable, to
  /// which variables append.
  virtual int matches(SysLogMsg& msg, const ConstComponent* next, tvStrobj& value) const = 0;
  /// 1 when the component captures a value.
  [[nodiscard]] virtual int variable() const { return 0; }
  /// The constant that cuts this component's words, or the empty constant. `index` is the place of
  /// this component in `list`. Moves the list's cursor.
  [[nodiscard]] virtual ConstComponent* lookahead(tvList<FormatComponent*>& list, int index) const;
  [[nodiscard]] virtual int isconst() const { return 0; }
  ~FormatComponent() override;
  [[nodiscard]] virtual ComponentKind kind() const = 0;

  /// The piece as written.
  [[nodiscard]] const char* fmtRep() const;
  /// Writes the piece to standard output.
  void dbgdump() const;
  [[nodiscard]] int& refcnt() noexcept { return refcnt_; }
  /// Reports "msg `text'" as a counted error of the format file.
  static void error(const char* msg, const char* text);

 protected:
  explicit FormatComponent(const char* piece) : tvStrobj(piece) {}

 private:
  int refcnt_ = 0;
};
