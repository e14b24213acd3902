/// Map entries: how one slot of an event is filled, from a variable, a constant, a PRINTF of other
/// slots, or by default. An entry yields its value when a message has matched (`svalue`), its text
/// in the class definition file (`cdsMap`) and its line in the format file (`fmtMap`).
///
/// Entries are reference counted (ref.h) and shared between a format and those that follow it.
/// Destroying one that is still referenced aborts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "util/list.h"
#include "util/strobj.h"

class MapSpec;

/// Kinds of map entries.
enum MapKind : long {
  kMapBase = 0,
  kMapVariable = 1,
  kMapNotification = 2,
  kMapDefault = 3,
  kMapConstant = 11,
  kMapPrint = 12,
};

/// The name of a slot. One that is written with a "-" before it is that of a slot that is not
/// mapped. Entries made from the same SlotName share its text.
struct SlotName {
  SlotName(const char* written);  // NOLINT(google-explicit-constructor): a name is a text

  tvStrobj text;  ///< without the "-"
  bool is_mapped;
};

/// The string base holds the slot's name.
class MsgMapEntry : public tvStrobj {
 public:
  /// A new entry of that kind with count 0, or null for a kind that there is none of.
  [[nodiscard]] static MsgMapEntry* create(MapSpec* owner, const SlotName& name, long kind);
  /// A copy with count 0 that belongs to `owner`.
  [[nodiscard]] static MsgMapEntry* create(MapSpec* owner, const MsgMapEntry* other);

  MsgMapEntry(MapSpec* owner, const SlotName& name, MapKind kind = kMapBase);
  /// Copies all but the count.
  MsgMapEntry(const MsgMapEntry& other);
  MsgMapEntry& operator=(const MsgMapEntry&) = delete;

  /// The n of "$n"; 0 for an entry that is not a variable.
  [[nodiscard]] virtual int position() const { return 0; }
  /// Text of the slot in a class definition of `spec`. An entry that is selected gives "$V" and its
  /// rank among the selected slots of `spec`, plus 1 for `_event_id`, which is $V1.
  [[nodiscard]] virtual tvStrobj cdsMap(const MapSpec* spec) const;
  /// The slot's line in a format file, without newline.
  [[nodiscard]] virtual tvStrobj fmtMap(const MapSpec* spec) const;
  /// The slot's value after `spec` has matched a message.
  [[nodiscard]] virtual tvStrobj svalue(const MapSpec* spec) const;
  /// Takes in what stands behind the name on the slot line, piece by piece.
  virtual void addRule(const char* text, const MapSpec* spec);
  /// Writes name, kind and rule to standard output.
  virtual void dbgdump() const;
  /// True when the class definition selects the slot, so that it has a "$V" number.
  [[nodiscard]] virtual bool selected() const { return false; }
  /// True when the class definition maps the slot.
  [[nodiscard]] virtual bool mapped() const;
  ~MsgMapEntry() override;

  [[nodiscard]] const char* name() const;
  [[nodiscard]] MapKind kind() const noexcept { return MapKind{kind_}; }
  /// Bit 0: not mapped.
  [[nodiscard]] int flags() const noexcept { return flags_; }
  /// The format that created the entry; not a counted reference.
  [[nodiscard]] MapSpec* owner() const noexcept { return owner_; }
  void setOwner(MapSpec* owner) noexcept { owner_ = owner; }
  [[nodiscard]] int& refcnt() noexcept { return refcnt_; }

 protected:
  /// The text without its first and last character, its quotes.
  [[nodiscard]] static std::string_view unquoted(std::string_view text);
  /// "$V" and the rank of this entry in `spec` plus 1.
  [[nodiscard]] tvStrobj selectedReference(const MapSpec* spec) const;

 private:
  /// A copy of the same class; the count starts at 0.
  [[nodiscard]] virtual MsgMapEntry* clone() const;

  int kind_;  ///< MapKind; a set has tens of thousands of entries
  int flags_ = 0;
  MapSpec* owner_;
  int refcnt_ = 0;
};

/// `attr $n`: the value of the n-th variable.
class VarMapEntry : public MsgMapEntry {
 public:
  VarMapEntry(MapSpec* owner, const SlotName& name) : MsgMapEntry(owner, name, kMapVariable) {}

  [[nodiscard]] int position() const override { return position_; }
  [[nodiscard]] tvStrobj cdsMap(const MapSpec* spec) const override;
  [[nodiscard]] tvStrobj fmtMap(const MapSpec* spec) const override;
  [[nodiscard]] tvStrobj svalue(const MapSpec* spec) const override;
  /// A position outside the variables of `spec` is a counted error; the entry keeps it.
  void addRule(const char* text, const MapSpec* spec) override;
  void dbgdump() const override;
  [[nodiscard]] bool selected() const override { return true; }

 private:
  [[nodiscard]] MsgMapEntry* clone() const override;

  int position_ = 0;
};

/// A value that is selected but comes from elsewhere. No format file makes one.
class NotifMapEntry : public MsgMapEntry {
 public:
  NotifMapEntry(MapSpec* owner, const SlotName& name)
      : MsgMapEntry(owner, name, kMapNotification) {}

  [[nodiscard]] tvStrobj cdsMap(const MapSpec* spec) const override;
  void addRule(const char* text, const MapSpec* spec) override;
  void dbgdump() const override;
  [[nodiscard]] bool selected() const override { return true; }

 private:
  [[nodiscard]] MsgMapEntry* clone() const override;

  tvStrobj value_ = "";  ///< without quotes
};

/// `attr DEFAULT`: the adapter fills the slot.
class DefaultMapEntry : public MsgMapEntry {
 public:
  DefaultMapEntry(MapSpec* owner, const SlotName& name) : MsgMapEntry(owner, name, kMapDefault) {}

  [[nodiscard]] tvStrobj cdsMap(const MapSpec* spec) const override;
  [[nodiscard]] tvStrobj fmtMap(const MapSpec* spec) const override;
  [[nodiscard]] tvStrobj svalue(const MapSpec* spec) const override;
  void dbgdump() const override;
  [[nodiscard]] bool selected() const override { return true; }

 private:
  [[nodiscard]] MsgMapEntry* clone() const override;
};

/// `attr word` or `attr "text"`: a constant, escapes kept as written.
class ConstMapEntry : public MsgMapEntry {
 public:
  ConstMapEntry(MapSpec* owner, const SlotName& name) : MsgMapEntry(owner, name, kMapConstant) {}

  [[nodiscard]] tvStrobj cdsMap(const MapSpec* spec) const override;
  [[nodiscard]] tvStrobj fmtMap(const MapSpec* spec) const override;
  [[nodiscard]] tvStrobj svalue(const MapSpec* spec) const override;
  void addRule(const char* text, const MapSpec* spec) override;
  void dbgdump() const override;

  /// With its quotes.
  [[nodiscard]] const tvStrobj& value() const noexcept { return value_; }
  /// Takes the same value from a string that other entries share.
  void shareValue(const tvStrobj& same) { value_ = same; }

 private:
  [[nodiscard]] MsgMapEntry* clone() const override;
  [[nodiscard]] static const tvStrobj& emptyValue();

  tvStrobj value_ = emptyValue();
};

/// `attr PRINTF("format", a, b)`: other slots of the same format, put into a text.
class PrintMapEntry : public MsgMapEntry {
 public:
  PrintMapEntry(MapSpec* owner, const SlotName& name) : MsgMapEntry(owner, name, kMapPrint) {}
  PrintMapEntry(const PrintMapEntry& other);
  PrintMapEntry& operator=(const PrintMapEntry&) = delete;
  ~PrintMapEntry() override;

  /// What `cdsMap` makes of the arguments.
  struct CdsText {
    std::string text;                       ///< an argument that can not be mapped stands as "!!!!"
    const PrintMapEntry* faulty = nullptr;  ///< the first slot with such an argument, or null
    const char* argument = nullptr;         ///< that argument
  };

  /// PRINTF with the texts of the slots that its arguments name. When one names no slot of `spec`,
  /// or closes a circle of PRINTF slots, the process ends: the reason goes to standard error, the
  /// exit status is 1. Ask `cdsText` first to avoid that.
  [[nodiscard]] tvStrobj cdsMap(const MapSpec* spec) const override;
  [[nodiscard]] tvStrobj fmtMap(const MapSpec* spec) const override;
  [[nodiscard]] tvStrobj svalue(const MapSpec* spec) const override;
  /// First the format with its quotes, then one argument per call.
  void addRule(const char* text, const MapSpec* spec) override;
  void dbgdump() const override;

  /// The text of `cdsMap` without its end of the process. An argument that can not be mapped may
  /// belong to another PRINTF slot that this one names.
  [[nodiscard]] CdsText cdsText(const MapSpec* spec) const;
  /// The argument for which `cdsMap` would end the process, or null.
  [[nodiscard]] const char* unresolvedArgument(const MapSpec* spec) const;
  /// The format and the arguments, owned by this entry.
  [[nodiscard]] const tvList<tvStrobj*>& arguments() const noexcept { return arguments_; }

 private:
  using Path = std::vector<const PrintMapEntry*>;

  [[nodiscard]] MsgMapEntry* clone() const override;
  [[nodiscard]] const char* format() const;
  [[nodiscard]] std::vector<const char*> slotNames() const;
  void appendCds(const MapSpec* spec, Path& path, CdsText& result) const;
  void appendArgumentCds(const char* argument, const MapSpec* spec, Path& path,
                         CdsText& result) const;
  [[noreturn]] void failCdsMapping(const char* argument) const;

  tvList<tvStrobj*> arguments_;  ///< the format with its quotes, then slot names
};
