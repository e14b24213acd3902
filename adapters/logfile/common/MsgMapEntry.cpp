#include "adapters/logfile/common/MsgMapEntry.h"

#include <cstdio>
#include <string>
#include <string_view>

#include "adapters/logfile/common/MapSpec.h"
#include "adapters/logfile/common/format_report.h"
#include "adapters/logfile/common/ref.h"
#include "util/expect.h"
#include "util/text.h"

using zem::format::make_counted;
using zem::util::format_text;

namespace {

constexpr int kNotMapped = 1;

}  // namespace

SlotName::SlotName(const char* written)
    : text(written[0] == '-' ? written + 1 : written), is_mapped(written[0] != '-') {}

MsgMapEntry* MsgMapEntry::create(MapSpec* owner, const SlotName& name, long kind) {
  switch (kind) {
    case kMapVariable:
      return make_counted<VarMapEntry>(owner, name);
    case kMapNotification:
      return make_counted<NotifMapEntry>(owner, name);
    case kMapDefault:
      return make_counted<DefaultMapEntry>(owner, name);
    case kMapConstant:
      return make_counted<ConstMapEntry>(owner, name);
    case kMapPrint:
      return make_counted<PrintMapEntry>(owner, name);
    default:
      return nullptr;
  }
}

MsgMapEntry* MsgMapEntry::create(MapSpec* owner, const MsgMapEntry* other) {
  MsgMapEntry* const copy = other->clone();
  copy->owner_ = owner;
  return copy;
}

MsgMapEntry::MsgMapEntry(MapSpec* owner, const SlotName& name, MapKind kind)
    : tvStrobj(name.text),
      kind_(static_cast<int>(kind)),
      flags_(name.is_mapped ? 0 : kNotMapped),
      owner_(owner) {}

MsgMapEntry::MsgMapEntry(const MsgMapEntry& other)
    : tvStrobj(other), kind_(other.kind_), flags_(other.flags_), owner_(other.owner_) {}

MsgMapEntry::~MsgMapEntry() {
  zem::util::expect(refcnt_ == 0, "a map entry is destroyed while referenced");
}

tvStrobj MsgMapEntry::cdsMap(const MapSpec* /*spec*/) const { return tvStrobj(""); }

tvStrobj MsgMapEntry::fmtMap(const MapSpec* /*spec*/) const {
  return tvStrobj(format_text("%s%s ", (flags_ & kNotMapped) != 0 ? "-" : "", name()));
}

tvStrobj MsgMapEntry::svalue(const MapSpec* /*spec*/) const { return tvStrobj("???"); }

void MsgMapEntry::addRule(const char* /*text*/, const MapSpec* /*spec*/) {}

void MsgMapEntry::dbgdump() const { std::printf("\t%s %d\n", name(), kind_); }

bool MsgMapEntry::mapped() const { return (flags_ & kNotMapped) == 0; }

const char* MsgMapEntry::name() const { return getString(); }

std::string_view MsgMapEntry::unquoted(std::string_view text) {
  return text.size() < 2 ? std::string_view() : text.substr(1, text.size() - 2);
}

tvStrobj MsgMapEntry::selectedReference(const MapSpec* spec) const {
  int rank = 0;
  (void)spec->getmap(name(), rank);
  return tvStrobj(format_text("$V%d", rank + 1));
}

MsgMapEntry* MsgMapEntry::clone() const { return make_counted<MsgMapEntry>(*this); }

// Variable.

tvStrobj VarMapEntry::cdsMap(const MapSpec* spec) const { return selectedReference(spec); }

tvStrobj VarMapEntry::fmtMap(const MapSpec* spec) const {
  tvStrobj line = MsgMapEntry::fmtMap(spec);
  line.append(format_text("$%d", position_));
  return line;
}

tvStrobj VarMapEntry::svalue(const MapSpec* spec) const { return spec->bvalue(this); }

void VarMapEntry::addRule(const char* text, const MapSpec* spec) {
  position_ = zem::util::saturating_atoi(std::string_view(text).substr(text[0] == '$' ? 1 : 0));
  if (position_ < 1 || position_ > spec->numvars()) {
    efcn(kReportError, "$%d must be between 1 and %d\n", position_, spec->numvars());
  }
}

void VarMapEntry::dbgdump() const {
  std::printf("\t%s %d $%d\n", name(), static_cast<int>(kind()), position_);
}

MsgMapEntry* VarMapEntry::clone() const { return make_counted<VarMapEntry>(*this); }

// Notification.

tvStrobj NotifMapEntry::cdsMap(const MapSpec* spec) const { return selectedReference(spec); }

void NotifMapEntry::addRule(const char* text, const MapSpec* /*spec*/) {
  value_ = text[0] == '"' ? tvStrobj(unquoted(text)) : tvStrobj(text);
}

void NotifMapEntry::dbgdump() const {
  std::printf("\t%s %d %s\n", name(), static_cast<int>(kind()), value_.getString());
}

MsgMapEntry* NotifMapEntry::clone() const { return make_counted<NotifMapEntry>(*this); }

// Default.

tvStrobj DefaultMapEntry::cdsMap(const MapSpec* spec) const { return selectedReference(spec); }

tvStrobj DefaultMapEntry::fmtMap(const MapSpec* spec) const {
  tvStrobj line = MsgMapEntry::fmtMap(spec);
  line.append("DEFAULT");
  return line;
}

tvStrobj DefaultMapEntry::svalue(const MapSpec* /*spec*/) const { return tvStrobj("default"); }

void DefaultMapEntry::dbgdump() const {
  std::printf("\t%s %d DEFAULT\n", name(), static_cast<int>(kind()));
}

MsgMapEntry* DefaultMapEntry::clone() const { return make_counted<DefaultMapEntry>(*this); }

// Constant.

tvStrobj ConstMapEntry::cdsMap(const MapSpec* /*spec*/) const { return value_; }

tvStrobj ConstMapEntry::fmtMap(const MapSpec* spec) const {
  tvStrobj line = MsgMapEntry::fmtMap(spec);
  line.append(value_.getString());
  return line;
}

tvStrobj ConstMapEntry::svalue(const MapSpec* /*spec*/) const {
  return tvStrobj(unquoted(value_.getString()));
}

void ConstMapEntry::addRule(const char* text, const MapSpec* /*spec*/) {
  value_ = text[0] == '"' ? tvStrobj(text) : tvStrobj('"' + std::string(text) + '"');
}

const tvStrobj& ConstMapEntry::emptyValue() {
  static const tvStrobj empty = "\"\"";
  return empty;
}

void ConstMapEntry::dbgdump() const {
  std::printf("\t%s %d %s\n", name(), static_cast<int>(kind()), value_.getString());
}

MsgMapEntry* ConstMapEntry::clone() const { return make_counted<ConstMapEntry>(*this); }
