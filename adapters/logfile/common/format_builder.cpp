#include "adapters/logfile/common/format_builder.h"

#include <string>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/format_reader.h"
#include "adapters/logfile/common/ref.h"
#include "util/text.h"
#include "util/text_table.h"

namespace zem::format {

namespace {

/// Keeps `print` alive until its line is complete.
Ref<MsgMapEntry> unfinished_print;

/// Entries have most words and names in common, and each costs more than a hundred bytes when it is
/// kept (BM_Start: half the memory of a set).
template <class T>
class SharedTexts {
 public:
  /// What `make(text)` has made of the text when it first occurred.
  template <class Make>
  const T& of(std::string_view text, Make make) {
    const auto [number, is_new] = table_.add(text);
    if (is_new) made_.push_back(make(text));
    return made_[number];
  }
  void clear() {
    table_.clear();
    made_.clear();
  }

 private:
  util::TextTable table_;
  std::vector<T> made_;
};

SharedTexts<Ref<FormatComponent>> constants;
SharedTexts<SlotName> slot_names;
SharedTexts<tvStrobj> slot_values;

Ref<MsgMapEntry> new_slot(std::string_view name, MapKind kind) {
  const SlotName& known = slot_names.of(
      name, [](std::string_view written) { return SlotName(std::string(written).c_str()); });
  return Ref(MsgMapEntry::create(fmt, known, kind));
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

void add_word(std::string_view word) {
  const auto& constant = constants.of(word, [](std::string_view piece) {
    return Ref(FormatComponent::create(std::string(piece).c_str()));
  });
  fmt->addComponent(constant.get());
}

void add_piece(std::string_view piece) {
  fmt->addComponent(FormatComponent::create(std::string(piece).c_str()));
}

void end_format_line(FormatSpec* parent) {
  fmt->addFollows(parent);
  fmt->addLookahead();
}

void add_word_slot(std::string_view name, std::string_view word) {
  if (isVar(word)) {
    add_slot(name, kMapVariable, word);
  } else {
    add_constant_slot(name, word);
  }
}

void add_constant_slot(std::string_view name, std::string_view text) {
  const Ref<MsgMapEntry> slot = new_slot(name, kMapConstant);
  slot->addRule(std::string(text).c_str(), fmt);
  auto& constant = static_cast<ConstMapEntry&>(*slot);
  const tvStrobj& own = constant.value();
  constant.shareValue(slot_values.of(own.view(), [&](std::string_view) { return own; }));
  fmt->addSlot(slot.get());
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
  slot_values.clear();
  if (!unfinished_print) return;
  unfinished_print = {};
  print = nullptr;
}

}  // namespace zem::format
