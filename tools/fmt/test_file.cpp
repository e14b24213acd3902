#include "tools/fmt/test_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

#include "tools/fmt/command.h"
#include "tools/fmt/format_file.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

using namespace std::string_view_literals;

/// Longer ones would reach the matcher in pieces: 511 bytes with the newline.
constexpr std::size_t kMessageBytesMax = 510;

bool is_control(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Values ------------------------------------------------------------------------------------------

bool needs_quotes(std::string_view value) {
  return value.empty() || trimmed(value).size() != value.size() || value.front() == '"' ||
         std::ranges::any_of(value, is_control);
}

std::string quoted(std::string_view value) {
  std::string text = "\"";
  for (const char c : value) {
    if (is_control(c)) {
      text += util::format_text("\\x%02x", static_cast<unsigned>(c));
    } else {
      if (c == '"' || c == '\\') text += '\\';
      text += c;
    }
  }
  return text + '"';
}

int hex_digit(char c) {
  const std::size_t digit = "0123456789abcdef"sv.find(c);
  return digit == std::string_view::npos ? -1 : static_cast<int>(digit);
}

/// Takes one character, or one escape, off the front of `rest`; nothing when the escape is unknown.
std::optional<char> take_character(std::string_view& rest) {
  const char c = rest.front();
  rest.remove_prefix(1);
  if (c != '\\') return c;
  if (rest.starts_with('"') || rest.starts_with('\\')) {
    const char escaped = rest.front();
    rest.remove_prefix(1);
    return escaped;
  }
  if (rest.size() < 3 || rest[0] != 'x') return std::nullopt;
  const int high = hex_digit(rest[1]);
  const int low = hex_digit(rest[2]);
  if (high < 0 || low < 0) return std::nullopt;
  rest.remove_prefix(3);
  return static_cast<char>(high * 16 + low);
}

/// Nothing when the quotes are not closed, or an escape is unknown.
std::optional<std::string> unquoted(std::string_view text) {
  std::string value;
  text.remove_prefix(1);
  while (!text.empty() && text.front() != '"') {
    const std::optional<char> c = take_character(text);
    if (!c) return std::nullopt;
    value += *c;
  }
  return text == "\"" ? std::optional(value) : std::nullopt;
}

std::optional<std::string> value_of(std::string_view text) {
  if (text.starts_with('"')) return unquoted(text);
  return std::string(text);
}

// Lines -------------------------------------------------------------------------------------------

/// Reads line by line; what is understood goes into the file under construction.
class Parser {
 public:
  explicit Parser(const std::string& path) : path_(path) {}

  void take(std::string_view line) {
    ++line_;
    refuse_unless(!line.ends_with('\r'), "a carriage return; save the file with plain newlines");
    if (line.starts_with('>')) {
      begin_test(line.substr(line.starts_with("> ") ? 2 : 1));
    } else if (trimmed(line).empty() || line.starts_with('#')) {
      pending_.append(line).append("\n");
    } else {
      refuse_unless(!file_.parts.empty(),
                    "an expectation without a message before it; a message begins with \"> \"");
      refuse_unless(is_all_blank_lines(),
                    "a comment between a message and its expectations; move it before the message");
      pending_.clear();
      take_expectation(line);
    }
  }

  TestFile finish() {
    file_.after = std::move(pending_);
    return std::move(file_);
  }

 private:
  void refuse_unless(bool is_fine, const std::string& fault) const {
    if (is_fine) return;
    throw Failure(ExitStatus::kBadData, path_ + ":" + std::to_string(line_) + ": " + fault);
  }

  [[nodiscard]] bool is_all_blank_lines() const { return trimmed_lines(pending_).empty(); }
  static std::string_view trimmed_lines(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\n");
    return first == std::string_view::npos ? ""sv : text.substr(first);
  }

  void begin_test(std::string_view message) {
    refuse_unless(message.size() <= kMessageBytesMax,
                  "the message is longer than 510 bytes; shorten it, the adapter would cut it");
    refuse_unless(message.find('\0') == std::string_view::npos,
                  "a NUL byte ends a message; leave out what stands behind");
    file_.parts.push_back({std::move(pending_), {line_, std::string(message), {}, {}}});
    pending_.clear();
    section_ = nullptr;
  }

  void take_expectation(std::string_view line) {
    if (line.front() == ' ' || line.front() == '\t') {
      take_slot(trimmed(line));
      return;
    }
    const std::string_view word = line.substr(0, line.find_first_of(" \t"));
    const std::string name(trimmed(line.substr(word.size())));
    TestCase& test = file_.parts.back().test;
    const bool is_none = word == "UNMATCHED" || word == "DISCARDED";
    const bool is_known = is_none || word == "FORMAT" || word == "CLASS";
    refuse_unless(is_known,
                  "expected FORMAT, UNMATCHED, CLASS, DISCARDED, or a slot behind a blank");
    refuse_unless(is_none == name.empty(),
                  std::string(word) + (is_none ? " takes no name" : " needs a name behind it"));
    const bool is_format = word == "FORMAT" || word == "UNMATCHED";
    begin_section(is_format ? test.format : test.event, name);
  }

  void begin_section(std::optional<Section>& section, const std::string& name) {
    refuse_unless(!section, "a second expectation of the same kind; one of them is too many");
    section = Section{name, {}};
    section_ = &*section;
  }

  void take_slot(std::string_view line) {
    refuse_unless(section_ != nullptr && !section_->name.empty(),
                  "a slot belongs below FORMAT or CLASS");
    const std::size_t equals = line.find('=');
    refuse_unless(equals != std::string_view::npos, "a slot is written as: name = value");
    const auto value = value_of(trimmed(line.substr(equals + 1)));
    refuse_unless(value.has_value(),
                  R"(a quoted value ends with its quote and knows \", \\ and \x1b)");
    section_->slots.push_back({std::string(trimmed(line.substr(0, equals))), *value});
  }

  const std::string& path_;
  std::size_t line_ = 0;
  std::string pending_;
  TestFile file_;
  Section* section_ = nullptr;
};

void append_lines(std::string& text, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) text.append(line).append("\n");
}

}  // namespace

TestFile parse_test_file(std::string_view text, const std::string& path) {
  Parser parser(path);
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    parser.take(line);
    text.remove_prefix(std::min(text.size(), line.size() + 1));
  }
  return parser.finish();
}

TestFile read_test_file(const std::string& path) {
  require_readable(path);
  std::ifstream in(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  return parse_test_file(text, path);
}

std::vector<std::string> section_lines(const Section& section, const char* word, const char* none) {
  if (section.name.empty()) return {none};
  std::vector<std::string> lines = {std::string(word) + " " + section.name};
  for (const SlotText& slot : section.slots) {
    const std::string value = needs_quotes(slot.value) ? quoted(slot.value) : slot.value;
    lines.push_back("  " + slot.name + " = " + value);
  }
  return lines;
}

std::string rendered(const TestFile& file) {
  std::string text;
  for (const TestFile::Part& part : file.parts) {
    text.append(part.before).append("> ").append(part.test.message).append("\n");
    if (part.test.format)
      append_lines(text, section_lines(*part.test.format, "FORMAT", "UNMATCHED"));
    if (part.test.event) append_lines(text, section_lines(*part.test.event, "CLASS", "DISCARDED"));
  }
  return text + file.after;
}

}  // namespace zem::fmt
