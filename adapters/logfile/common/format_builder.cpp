#include "adapters/logfile/common/format_builder.h"

#include <string>
#include <unordered_map>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/format_reader.h"
#include "adapters/logfile/common/ref.h"
#include "util/text.h"

namespace zem::format {

namespace {

/// Keeps `print` alive until its line is complete.
Ref<MsgMapEntry> unfinished_print;

/// Entries have most words and names in common, and each costs more than a hundred bytes when it is
/// kept (BM_Start: half the memory of a set).
std::unordered_map<std::string, Ref<FormatComponent>> constants;
std::unordered_map<std::string, tvStrobj> slot_names;

Ref<FormatComponent> component_of(const std::string& piece) {
  const auto known = constants.find(piece);
  if (known != constants.end()) return known->second;
  Ref<FormatComponent> component(FormatComponent::create(piece.c_str()));
  if (component->isconst() != 0) constants.emplace(piece, component);
  return component;
}

Ref<MsgMapEntry> new_slot(std::string_view name, MapKind kind) {
  Ref<MsgMapEntry> slot(MsgMapEntry::create(fmt, std::string(name).c_str(), kind));
  const tvStrobj& own_name = *slot;
  slot->shareName(slot_names.try_emplace(slot->name(), own_name).first->second);
  return slot;
}

void add_slot(std::string_view name, MapKind kind, std::string_view rule) {
  const Ref<MsgMapEntry> slot = new_slot(name, kind);
  slot->addRule(std::string(rule).c_str(), fmt);
  fmt->addSlot(slot.get());
}

}  // namespace

void begin_entry(std::string_view name) {
  fmt = make_counted<FormatSpec>(std::string(name).c_str());
  driver->addFormatSpec(fmt);
}

FormatSpec* parent_named(std::string_view name) {
  const std::string text(name);
  FormatSpec* parent = driver->getFormatSpec(text.c_str());
  if (parent == nullptr) {
    config_yyerror(util::format_text("%.100s is not defined", text.c_str()).c_str());
  }
  return parent;
}

void add_piece(std::string_view piece) {
  fmt->addComponent(component_of(std::string(piece)).get());
}

void end_format_line(FormatSpec* parent) {
  fmt->addFollows(parent);
  fmt->addLookahead();
}

void add_word_slot(std::string_view name, std::string_view word) {
  add_slot(name, isVar(word) ? kMapVariable : kMapConstant, word);
}

void add_constant_slot(std::string_view name, std::string_view quoted) {
  add_slot(name, kMapConstant, quoted);
}

void add_default_slot(std::string_view name) { add_slot(name, kMapDefault, "DEFAULT"); }

void begin_print_slot(std::string_view name) {
  unfinished_print = new_slot(name, kMapPrint);
  print = static_cast<PrintMapEntry*>(unfinished_print.get());
}

void add_print_rule(std::string_view rule) { print->addRule(std::string(rule).c_str(), fmt); }

void add_print_slot() {
  fmt->addSlot(print);
  unfinished_print = {};
}

void end_file() {
  constants.clear();
  slot_names.clear();
  if (!unfinished_print) return;
  unfinished_print = {};
  print = nullptr;
}

}  // namespace zem::format
