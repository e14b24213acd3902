#include "adapters/logfile/common/MapSpec.h"

#include <string_view>

#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/ref.h"
#include "util/expect.h"

using zem::format::Ref;

MapSpec::MapSpec(const char* name) : tvStrobj(name) {}

MapSpec::~MapSpec() {
  zem::util::expect(refcnt_ == 0, "a map specification is destroyed while referenced");
}

void MapSpec::addSlot(MsgMapEntry* entry) {
  const Ref<MsgMapEntry> held(entry);  // it may be the very slot that it replaces
  if (MsgMapEntry* const old = getmap(entry->name())) {
    slots_.replace(old, entry);
  } else {
    slots_.append(entry);
  }
}

void MapSpec::copySlots(const MapSpec* other) {
  clear();
  for (const MsgMapEntry* entry : other->slots_) {
    addSlot(MsgMapEntry::create(entry->owner(), entry));
  }
}

void MapSpec::removeSlot(const char* name) {
  if (MsgMapEntry* const entry = getmap(name)) slots_.remove(entry);
}

MsgMapEntry* MapSpec::getmap(const char* name, int& n) const {
  const std::string_view wanted = name;
  n = 0;
  for (MsgMapEntry* entry : slots_) {
    if (entry->selected()) ++n;
    if (wanted == entry->name()) return entry;
  }
  return nullptr;
}

MsgMapEntry* MapSpec::getmap(const char* name) const {
  int rank = 0;
  return getmap(name, rank);
}

void MapSpec::dbgdump() const {
  std::printf("%s\n", name());
  for (const MsgMapEntry* entry : slots_) entry->dbgdump();
}

// SELECT lines and "$V" numbers come from one walk over the same list: the selected slot of rank r
// has line r + 1 and is $V(r + 1), because line 1 is the event identifier.
void MapSpec::genCds(std::FILE* out, int i) const {
  std::fprintf(out, "CLASS %s\n  SELECT\n", name());
  std::fprintf(out, "    1: ATTR(=,\"_event_id\"), VALUE(=,\"%d\");\n", i);
  int line = 2;
  for (const MsgMapEntry* entry : slots_) {
    if (entry->selected()) std::fprintf(out, "    %d: ATTR(=,\"%s\");\n", line++, entry->name());
  }
  if (!slots_.empty()) std::fputs("  MAP\n", out);
  for (const MsgMapEntry* entry : slots_) {
    if (!entry->mapped()) continue;
    std::fprintf(out, "    %s = %s;\n", entry->name(), entry->cdsMap(this).getString());
  }
  std::fputs("END\n", out);
}

const tvStrobj& MapSpec::bvalue(const VarMapEntry* /*entry*/) const { return noValue(); }

const char* MapSpec::name() const { return getString(); }

void MapSpec::clear() { slots_.clear(); }

const tvStrobj& MapSpec::noValue() {
  static const tvStrobj text = "???";
  return text;
}
