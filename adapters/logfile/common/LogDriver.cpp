#include "adapters/logfile/common/LogDriver.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/SysLogUtils.h"
#include "adapters/logfile/common/format_reader.h"
#include "adapters/logfile/common/format_report.h"
#include "adapters/logfile/common/matcher/compiled_set.h"

LogDriver::LogDriver() {
  FormatComponent::init();
  SysLogUtils::init();
}

LogDriver::LogDriver(const char* fmtFile, const char* unmatchLogPath, int exitOnError)
    : LogDriver() {
  wfcn = logfile_warning;
  efcn = logfile_error;
  if (unmatchLogPath != nullptr) openUnmatchLog(unmatchLogPath);
  errors = ReadFmt(fmtFile, this);
  if (errors != 0 && exitOnError != 0) {
    efcn(kReportPlain, "error reading format file `%s'\n", fmtFile);
    std::exit(1);
  }
}

LogDriver::~LogDriver() { forgetCompiled(); }

void LogDriver::openUnmatchLog(const char* path) {
  unmatchLog.reset(std::fopen(path, "ae"));
  if (!unmatchLog) efcn(kReportPlain, "cannot open file `%s'\n", path);
}

void LogDriver::addFormatSpec(const FormatSpec* spec) {
  auto* added = const_cast<FormatSpec*>(spec);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  formats.append(added);
  forgetCompiled();
  if (!by_name_.try_emplace(added->name(), added).second) has_twins_ = true;
}

void LogDriver::orderFmts() {
  forgetCompiled();
  if (has_twins_) {
    for (FormatSpec* spec : formats) by_name_.insert_or_assign(spec->name(), spec);
  }
  formats.reverse();
  const zem::format::ReportSeries series;
  for (FormatSpec* spec : formats) spec->verifySlot();
}

FormatSpec* LogDriver::getFormatSpec(const char* name) const {
  const auto found = by_name_.find(std::string_view(name));
  return found == by_name_.end() ? nullptr : found->second;
}

void LogDriver::editorAdd(const FormatSpec* spec) {
  auto* added = const_cast<FormatSpec*>(spec);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  FormatSpec* old = getFormatSpec(added->name());
  if (old == added) return;
  forgetCompiled();
  if (old != nullptr) {
    replaceSpec(old, added);
  } else {
    formats.insertFront(added);
  }
  by_name_.insert_or_assign(added->name(), added);
}

/// The slots that `spec` took from `old` become its own before the parent is set, which lets go of
/// all that belong to another.
void LogDriver::replaceSpec(FormatSpec* old, FormatSpec* spec) {
  for (MsgMapEntry* slot : spec->slots()) {
    if (slot->owner() == old) slot->setOwner(spec);
  }
  spec->addFollows(static_cast<FormatSpec*>(old->parent()));
  formats.replace(old, spec);
}

void LogDriver::removeFormatSpec(const char* name) {
  FormatSpec* removed = getFormatSpec(name);
  if (removed == nullptr) return;
  const std::string kept_name(name);  // `name` may be the removed FORMAT's own
  forgetCompiled();
  formats.remove(removed);
  reindex(kept_name);
}

/// Finds the FORMAT that is the first of its name now.
void LogDriver::reindex(std::string_view name) {
  by_name_.erase(by_name_.find(name));
  for (FormatSpec* spec : formats) {
    if (spec->name() != name) continue;
    by_name_.emplace(name, spec);
    return;
  }
}

FormatSpec* LogDriver::bind(std::string_view text, int& index) {
  if (!base_fixed_) {
    base_ = formats.count() - 1;
    base_fixed_ = true;
  }
  if (!isCompiled()) compile();
  const zem::format::Position position = compiled_->match(text);
  if (position == zem::format::kNoPosition) {
    writeUnmatched(text.substr(0, text.find('\0')));
    index = -1;
    return nullptr;
  }
  FormatSpec* const spec = compiled_specs_[position];
  compiled_->captures().give_to(spec);
  index = base_ - static_cast<int>(position);
  return spec;
}

FormatSpec* LogDriver::bind(const char* text, int& index) {
  return bind(std::string_view(text != nullptr ? text : ""), index);
}

const zem::format::Captures* LogDriver::captures() const {
  return compiled_ ? &compiled_->captures() : nullptr;
}

bool LogDriver::isCompiled() const {
  return compiled_ != nullptr && compiled_changes_ == FormatSpec::formatChanges();
}

void LogDriver::compile() {
  forgetCompiled();
  compiled_specs_ = specs();
  compiled_ = std::make_unique<zem::format::CompiledSet>(compiled_specs_);
  for (FormatSpec* spec : compiled_specs_) spec->setCaptures(&compiled_->captures());
  compiled_changes_ = FormatSpec::formatChanges();
}

/// Before a change of the set, while it still holds every FORMAT that was compiled.
void LogDriver::forgetCompiled() {
  if (!compiled_) return;
  for (FormatSpec* spec : compiled_specs_) {
    if (spec->captures() == &compiled_->captures()) spec->setCaptures(nullptr);
  }
  compiled_specs_.clear();
  compiled_.reset();
}

void LogDriver::writeUnmatched(std::string_view text) {
  if (!unmatchLog) return;
  std::fwrite(text.data(), 1, text.size(), unmatchLog.get());
  if (!text.ends_with('\n')) std::fputc('\n', unmatchLog.get());
  std::fflush(unmatchLog.get());
}

void LogDriver::dbgdump() const {
  if (::isatty(STDOUT_FILENO) == 0) return;
  for (const FormatSpec* spec : formats) spec->dbgdump();
}

namespace {

using OutputFile = std::unique_ptr<std::FILE, decltype([](std::FILE* file) {
                                     if (file != stdout) std::fclose(file);
                                   })>;

OutputFile open_output(const char* path) {
  return OutputFile(path == nullptr ? stdout : std::fopen(path, "we"));
}

}  // namespace

int LogDriver::write_cds(const char* path) const {
  const OutputFile out = open_output(path);
  if (!out) return 0;
  int i = 0;
  for (const FormatSpec* spec : formats) spec->genCds(out.get(), i++);
  return 1;
}

int LogDriver::write_fmt(const char* path) {
  const OutputFile out = open_output(path);
  if (!out) return 0;
  int i = 0;
  for (const FormatSpec* spec : formats) spec->genFmt(out.get(), this, i++);
  return 1;
}

const PrintMapEntry* LogDriver::unresolvedSlot() const {
  for (const FormatSpec* spec : formats) {
    for (const MsgMapEntry* slot : spec->slots()) {
      if (slot->kind() != kMapPrint || !slot->mapped()) continue;
      const auto* print_slot = static_cast<const PrintMapEntry*>(slot);
      if (print_slot->unresolvedArgument(spec) != nullptr) return print_slot;
    }
  }
  return nullptr;
}

std::vector<FormatSpec*> LogDriver::specs() const {
  std::vector<FormatSpec*> in_list_order;
  for (FormatSpec* spec : formats) in_list_order.push_back(spec);
  return in_list_order;
}
