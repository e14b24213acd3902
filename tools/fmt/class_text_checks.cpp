#include <string>
#include <string_view>

#include "tools/fmt/class_words.h"
#include "tools/fmt/format_checks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

constexpr std::size_t kTokenBytesMax = 255;
constexpr std::size_t kQuotesBytes = 2;
constexpr std::string_view kDiscard = "*DISCARD*";

void check_name(const char* what, const PlacedWord& word, const std::string& name,
                Findings& findings) {
  if (is_plain_class_word(name)) return;
  findings.add(Code::kUnreadableName, word.where,
               std::string(what) + " name " + quoted(name) +
                   " is not read as a name by the class language, where it stands without quotes",
               "use letters, digits and _, and no word of that language");
}

bool is_mapped(const SlotLine& line) { return !line.name.text.starts_with('-'); }

void check_format_name(const EntryOutline& entry, Findings& findings) {
  check_name("FORMAT", entry.name, entry.name.text, findings);
  if (entry.name.text != kDiscard) return;
  findings.add(Code::kDiscardName, entry.name.where,
               "a class of the name *DISCARD* drops its events",
               "use another name, unless these messages are unwanted");
}

void check_quotes(const PlacedWord& text, Findings& findings) {
  const std::size_t escaped = text.text.find("\\\"");
  if (!text.text.starts_with('"') || escaped == std::string::npos) return;
  findings.add(Code::kEscapedQuote, {text.where.position + escaped, kQuotesBytes},
               "the class language takes \\\" for the end of the text",
               "use single quotes inside the text");
}

void check_length(const SlotLine& line, Findings& findings) {
  const std::string& text = line.value.text;
  if (line.kind != kMapConstant || text.starts_with('"')) return;
  if (text.size() + kQuotesBytes <= kTokenBytesMax) return;
  findings.add(Code::kConstantTooLong, line.value.where,
               "this word is written back in quotes, which makes it longer than 255 bytes",
               "shorten it to 253 bytes");
}

}  // namespace

void check_names(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    check_format_name(*entry.outline, findings);
    for (const SlotLine& line : entry.outline->slots) {
      if (is_mapped(line)) check_name("slot", line.name, line.slot_name(), findings);
    }
  }
}

void check_constants(const FormatModel& model, Findings& findings) {
  for (const FormatEntry& entry : model.entries()) {
    for (const SlotLine& line : entry.outline->slots) {
      check_quotes(line.value, findings);
      check_length(line, findings);
    }
  }
}

}  // namespace zem::fmt
