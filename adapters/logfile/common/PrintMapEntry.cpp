// PRINTF slots name other slots of the same format and put their texts together:
//
//   slot line     msg PRINTF("refused connect from %s", origin)
//   svalue        refused connect from 10.0.0.9
//   cdsMap        PRINTF("refused connect from %s", $V6)
//
// A PRINTF slot as the argument of another stays "%s" in the value, but is nested in the class
// definition, which is where a circle of them has to be noticed.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/logfile/common/MapSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/ref.h"

PrintMapEntry::PrintMapEntry(const PrintMapEntry& other) : MsgMapEntry(other) {
  for (const tvStrobj* argument : other.arguments_) addRule(argument->getString(), nullptr);
}

PrintMapEntry::~PrintMapEntry() {
  for (tvStrobj* argument : arguments_) std::default_delete<tvStrobj>()(argument);
}

MsgMapEntry* PrintMapEntry::clone() const {
  return zem::format::make_counted<PrintMapEntry>(*this);
}

void PrintMapEntry::addRule(const char* text, const MapSpec* /*spec*/) {
  arguments_(std::make_unique<tvStrobj>(text).release());
}

std::vector<const char*> PrintMapEntry::slotNames() const {
  std::vector<const char*> names;
  for (const tvStrobj* argument : arguments_) names.push_back(argument->getString());
  if (!names.empty()) names.erase(names.begin());
  return names;
}

const char* PrintMapEntry::format() const {
  const auto first = arguments_.begin();
  return first == arguments_.end() ? "\"\"" : (*first)->getString();
}

tvStrobj PrintMapEntry::svalue(const MapSpec* spec) const {
  const std::string_view text = unquoted(format());
  const std::vector<const char*> names = slotNames();
  std::string value;
  std::size_t used = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.substr(i, 2) == "%s" && used < names.size()) {
      const MsgMapEntry* const slot = spec->getmap(names[used++]);
      if (slot != nullptr && slot->kind() != kMapPrint) {
        value += slot->svalue(spec).getString();
        ++i;
        continue;
      }
    }
    value += text[i];
  }
  return tvStrobj(value);
}

tvStrobj PrintMapEntry::fmtMap(const MapSpec* spec) const {
  std::string line = MsgMapEntry::fmtMap(spec).getString();
  line.append("PRINTF(").append(format());
  for (const char* name : slotNames()) {
    line.append(", ").append(spec->getmap(name) != nullptr ? name : " !!!! ");
  }
  return tvStrobj(line.append(")"));
}

void PrintMapEntry::dbgdump() const {
  std::printf("\t%s %d PRINTF(%s", name(), static_cast<int>(kind()), format());
  for (const char* slot : slotNames()) std::printf(", %s", slot);
  std::printf(")\n");
}

tvStrobj PrintMapEntry::cdsMap(const MapSpec* spec) const {
  const CdsText mapped = cdsText(spec);
  if (mapped.faulty != nullptr) mapped.faulty->failCdsMapping(mapped.argument);
  return tvStrobj(mapped.text);
}

const char* PrintMapEntry::unresolvedArgument(const MapSpec* spec) const {
  return cdsText(spec).argument;
}

PrintMapEntry::CdsText PrintMapEntry::cdsText(const MapSpec* spec) const {
  CdsText result;
  Path path;
  appendCds(spec, path, result);
  return result;
}

void PrintMapEntry::appendCds(const MapSpec* spec, Path& path, CdsText& result) const {
  path.push_back(this);
  result.text.append("PRINTF(").append(format());
  for (const char* name : slotNames()) {
    result.text += ", ";
    appendArgumentCds(name, spec, path, result);
  }
  result.text += ")";
  path.pop_back();
}

// `path` holds the PRINTF slots that are being written: an argument that names one of them would
// never come to an end and counts as one that names no slot.
void PrintMapEntry::appendArgumentCds(const char* argument, const MapSpec* spec, Path& path,
                                      CdsText& result) const {
  const MsgMapEntry* const slot = spec->getmap(argument);
  const auto* const print = dynamic_cast<const PrintMapEntry*>(slot);
  if (slot == nullptr || std::ranges::find(path, print) != path.end()) {
    result.text += "!!!!";
    if (result.faulty == nullptr) {
      result.faulty = this;
      result.argument = argument;
    }
  } else if (print != nullptr) {
    print->appendCds(spec, path, result);
  } else {
    result.text += slot->cdsMap(spec).getString();
  }
}

void PrintMapEntry::failCdsMapping(const char* argument) const {
  std::fputs("\nError: Failure during CDS mapping.\n", stderr);
  std::fprintf(stderr, "Could not find value for '%s' in this FMT entry:\n\n", argument);
  std::fprintf(stderr, "   %s PRINTF(%s", name(), format());
  for (const char* slot : slotNames()) std::fprintf(stderr, ", %s", slot);
  std::fputs(")\n\n", stderr);
  std::exit(1);
}
