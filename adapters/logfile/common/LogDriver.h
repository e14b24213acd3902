/// The set of FORMATs read from one format file: finds the first that matches a message, keeps the
/// messages that none matches, and writes the set out again as class definitions and as
/// format-file text. `SysLogDriver` derives from it and brings the messages.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "adapters/logfile/common/counted_list.h"

class FormatSpec;
class PrintMapEntry;

namespace zem::format {
class Captures;
class CompiledSet;
}  // namespace zem::format

class LogDriver {
 public:
  /// An empty set without an unmatched-message log, to be filled by `ReadFmt` or `editorAdd`. The
  /// reporters stay as they are.
  LogDriver();
  /// Reads `fmtFile` (see ReadFmt); `unmatchLogPath` may be null. Both reporters are pointed at
  /// `logfile_error` and `logfile_warning` first. A format file with errors ends the process with
  /// status 1 when `exitOnError` is set; otherwise the set keeps what was read. Without an
  /// unmatched-message log that can be opened the set works all the same.
  LogDriver(const char* fmtFile, const char* unmatchLogPath, int exitOnError);
  LogDriver(const LogDriver&) = delete;
  LogDriver& operator=(const LogDriver&) = delete;
  virtual ~LogDriver();

  /// Appends `spec` and takes a counted reference. The set is shared ownership, hence it may
  /// change what it is handed. A FORMAT must not be renamed while it is in the set.
  void addFormatSpec(const FormatSpec* spec);
  /// Reverses the set, so that the last FORMAT of the file is tried first, and verifies each.
  /// Once, before the first `bind`.
  void orderFmts();
  /// The first FORMAT of that name in list order, or null. Takes no longer in a large set.
  [[nodiscard]] FormatSpec* getFormatSpec(const char* name) const;
  /// Puts `spec` in the place of the one of the same name, whose parent it takes over, or at the
  /// front when the name is new.
  void editorAdd(const FormatSpec* spec);
  /// Lets go of the first FORMAT of that name, if there is one.
  void removeFormatSpec(const char* name);

  /// The first FORMAT in list order that matches the whole message, or null. `index` is its
  /// position in the format file, counting from 0, provided that `orderFmts` has run and the set
  /// has not changed since the first call; -1 with null. A message without a match goes to the
  /// unmatched-message log. What the match captured is good until the next call or a change of
  /// the set; `text` may be gone. The formats are compiled by the first call, and again by the
  /// first one after a change of the set or of a format (matcher/compiled_set.h).
  [[nodiscard]] FormatSpec* bind(std::string_view text, int& index);
  /// The same for a text that ends in a NUL, or null, which is empty.
  [[nodiscard]] FormatSpec* bind(const char* text, int& index);

  /// What the last `bind` captured, for as long as the values of its FORMAT are good; null before
  /// the first one.
  [[nodiscard]] const zem::format::Captures* captures() const;

  /// Writes each FORMAT to standard output when that is a terminal.
  void dbgdump() const;
  /// Writes the set's class definitions, numbered by list order, to `path` (null: standard output).
  /// Returns 1, or 0 when the file can not be opened. Only the order of the file gives the numbers
  /// that `bind` reports, so this is for a set that has not been ordered. A PRINTF slot that can
  /// not be mapped ends the process; see `unresolvedSlot`.
  int write_cds(const char* path) const;
  /// Writes the set as format-file text; the same path, result and order.
  int write_fmt(const char* path);

  /// The first slot for which `write_cds` would end the process, or null.
  [[nodiscard]] const PrintMapEntry* unresolvedSlot() const;
  /// The specs in list order; borrowed.
  [[nodiscard]] std::vector<FormatSpec*> specs() const;

 protected:
  struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };

  /// Unmatched messages are appended to the file from now on. When it can not be opened, that is
  /// reported, and they are dropped.
  void openUnmatchLog(const char* path);
  /// Compiles the set as it is, so that the first `bind` finds that done.
  void compile();

  zem::format::CountedList<FormatSpec> formats;
  std::unique_ptr<std::FILE, CloseFile> unmatchLog;
  int errors = 0;  ///< what ReadFmt returned for the format file

 private:
  struct NameHash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  void forgetCompiled();
  [[nodiscard]] bool isCompiled() const;
  void writeUnmatched(std::string_view text);
  void reindex(std::string_view name);
  void replaceSpec(FormatSpec* old, FormatSpec* spec);

  /// Name -> the first FORMAT of that name in `formats`; kept in step by everything that changes
  /// it.
  std::unordered_map<std::string, FormatSpec*, NameHash, std::equal_to<>> by_name_;
  bool has_twins_ = false;  ///< two FORMATs may have had the same name
  int base_ = -1;           ///< index of the first FORMAT, fixed by the first `bind`
  bool base_fixed_ = false;

  std::unique_ptr<zem::format::CompiledSet> compiled_;  ///< null: the set has changed since
  std::uint64_t compiled_changes_ = 0;                  ///< FormatSpec::formatChanges at that time
  std::vector<FormatSpec*> compiled_specs_;             ///< by position; the set still holds them
};
