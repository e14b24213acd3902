#include "adapters/logfile/common/format_reader.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "adapters/logfile/common/format_builder.h"
#include "adapters/logfile/common/format_report.h"
#include "util/text.h"

int offset = 0;
LogDriver* driver = nullptr;
FormatSpec* fmt = nullptr;
PrintMapEntry* print = nullptr;

namespace {

using zem::format::EntryOffset;
using zem::format::FormatScanner;
using zem::format::Token;

constexpr std::size_t kTokenBytesMax = 255;
/// Far beyond any real file; keeps `linenum` and the memory in bounds when the path leads to an
/// endless device.
constexpr std::size_t kFileBytesMax = std::size_t{256} << 20U;

using File = std::unique_ptr<std::FILE, decltype([](std::FILE* file) { std::fclose(file); })>;

/// Alive during a read, and after one that failed.
std::optional<FormatScanner> scanner;
Token token;

[[noreturn]] void fail_scanner(const char* reason, const char* path) {
  std::fprintf(stderr, "%s: format scanner: %s\n", path, reason);
  std::exit(1);
}

std::string read_whole(std::FILE* file, const char* path) {
  std::string text;
  std::array<char, 65536> block;  // NOLINT: filled by fread
  while (const std::size_t length = std::fread(block.data(), 1, block.size(), file)) {
    text.append(block.data(), length);
    if (text.size() > kFileBytesMax) fail_scanner("file too large", path);
  }
  if (std::ferror(file) != 0) fail_scanner("read failed", path);
  return text;
}

/// Text of the current token as a C string.
std::string token_text() { return {token.text.begin(), std::ranges::find(token.text, '\0')}; }

void start_scanner(std::string_view text) {
  if (status == 0 || !scanner) {
    offset = EntryOffset::kBetweenEntries;
    scanner.emplace(offset, linenum);
  }
  token = {};
  scanner->feed(text);
}

}  // namespace

int ReadFmt(const char* path, LogDriver* set) {
  const File file(std::fopen(path, "re"));
  if (!file) {
    efcn(kReportPlain, "cannot open %s\n", path);
    return 1;
  }
  driver = set;
  linenum = 0;
  start_scanner(read_whole(file.get(), path));
  const bool accepted = config_yyparse() == 0;
  zem::format::end_file();
  if (accepted) {
    token = {};  // its text is the scanner's
    scanner.reset();
  }
  return accepted && status == 0 ? 0 : 1;
}

int config_yylex(zem::format::TokenValue* value) {
  token = scanner->next();
  const bool carries_text = token.kind >= zem::format::kWord && token.kind <= zem::format::kQuoted;
  if (carries_text) value->text = copyid(token.text);
  return token.kind;
}

void config_yyerror(const char* message) {
  const bool stack_full = std::string_view(message) == "memory exhausted";  // the generator's words
  efcn(kReportError, "around %s: %s\n", token_text().c_str(),
       stack_full ? "yacc stack overflow" : message);
}

std::string_view copyid(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  if (text.size() <= kTokenBytesMax) return text;
  config_yyerror(zem::util::format_text("token too long %.100s", token_text().c_str()).c_str());
  return "???";
}

bool isVar(std::string_view text) {
  return text.starts_with('$') && text.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

zem::format::TextPlace zem::format::current_place() {
  return scanner ? scanner->place_of(token.position) : TextPlace{};
}
