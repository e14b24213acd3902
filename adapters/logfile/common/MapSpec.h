/// The slots of one format: map entries in order, found by name, replaced in place. Knows nothing
/// of how a message is matched; `FormatSpec` derives from it and supplies the captured values.
#pragma once

#include <cstdio>

#include "adapters/logfile/common/counted_array.h"
#include "util/strobj.h"

class MsgMapEntry;
class VarMapEntry;

/// The string base holds the name. Reference counted (ref.h); destroying one that is still
/// referenced aborts.
class MapSpec : public tvStrobj {
 public:
  explicit MapSpec(const char* name);
  MapSpec(const MapSpec&) = delete;
  MapSpec& operator=(const MapSpec&) = delete;
  ~MapSpec() override;

  /// Takes a counted reference to `entry`. A slot of the same name gives up its place to it;
  /// otherwise the entry comes last.
  virtual void addSlot(MsgMapEntry* entry);
  /// Replaces all slots by copies of `other`'s, which keep their owner.
  virtual void copySlots(const MapSpec* other);
  /// Lets go of the slot of that name, if there is one.
  virtual void removeSlot(const char* name);
  /// Variables of the format.
  [[nodiscard]] virtual int numvars() const { return 0; }
  /// The first slot of that name or null. `n` is its rank among the selected slots, counting from 1
  /// and itself included; the number of selected slots when there is none.
  [[nodiscard]] virtual MsgMapEntry* getmap(const char* name, int& n) const;
  /// Writes the name and each slot to standard output.
  virtual void dbgdump() const;
  /// Writes the class definition, which selects on `_event_id` = `i`, to `out`. A PRINTF slot that
  /// can not be mapped ends the process (see MsgMapEntry::cdsMap).
  virtual void genCds(std::FILE* out, int i) const;
  /// The captured value that the entry stands for; "???" when there is none.
  [[nodiscard]] virtual const tvStrobj& bvalue(const VarMapEntry* entry) const;

  [[nodiscard]] const char* name() const;
  /// The first slot of that name or null.
  [[nodiscard]] MsgMapEntry* getmap(const char* name) const;
  /// Lets go of every slot.
  void clear();
  [[nodiscard]] const zem::format::CountedArray<MsgMapEntry>& slots() const noexcept {
    return slots_;
  }
  [[nodiscard]] int& refcnt() noexcept { return refcnt_; }

 protected:
  /// The text of an entry without a captured value, "???", kept for the life of the process.
  [[nodiscard]] static const tvStrobj& noValue();

  zem::format::CountedArray<MsgMapEntry> slots_;

 private:
  int refcnt_ = 0;
};
