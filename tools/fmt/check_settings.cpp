#include "tools/fmt/check_settings.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "agent/event_filter.h"
#include "tools/fmt/known_keys.h"
#include "tools/fmt/words.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr int kPortMax = 65535;

std::string_view trimmed(std::string_view text) {
  const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
  const std::size_t end = text.find_last_not_of(" \t\r") + 1;
  return end <= first ? std::string_view() : text.substr(first, end - first);
}

bool is_digits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// One line, with what the whole file has to know of it.
class SettingsReader {
 public:
  explicit SettingsReader(Findings& findings) : source_(findings.source()), findings_(findings) {}
  void read();

 private:
  void read_line(std::string_view line);
  bool read_filter(std::string_view line, std::string_view prefix, bool& seen);
  void read_setting(std::string_view key, std::string_view value);
  void check_key(std::string_view key);
  void check_blanks(std::string_view key, std::string_view value);
  void check_value(const KnownKey& key, std::string_view value);
  void check_number(const KnownKey& key, std::string_view value);
  void check_list(const KnownKey& key, std::string_view value);
  void check_field(const KnownKey& key, std::string_view field);
  void check_filter_mode();
  void check_line_ends();

  void report_syntax(std::string_view line, std::string text, std::string remedy);
  /// `part` is a view of the file.
  [[nodiscard]] Span span_of(std::string_view part) const;

  const SourceText& source_;
  Findings& findings_;
  std::unordered_map<std::string_view, std::string_view> first_of_key_;
  std::optional<Span> filter_mode_in_;
  bool has_filter_ = false;
  bool has_cache_filter_ = false;
  bool has_prefilter_ = false;
  bool is_caching_off_ = false;
};

Span SettingsReader::span_of(std::string_view part) const {
  return {static_cast<std::size_t>(part.data() - source_.text().data()), part.size()};
}

void SettingsReader::read() {
  std::string_view rest = source_.text();
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    read_line(rest.substr(0, end));
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  check_filter_mode();
  check_line_ends();
}

void SettingsReader::read_line(std::string_view line) {
  if (line.empty() || line.starts_with('#')) return;
  if (read_filter(line, "Filter:", has_filter_)) return;
  if (read_filter(line, "FilterCache:", has_cache_filter_)) return;
  if (read_filter(line, "PreFilter:", has_prefilter_)) return;
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) {
    report_syntax(line, "this line has no =, and is passed over",
                  "write key=value, or # before it");
  } else {
    read_setting(line.substr(0, equals), line.substr(equals + 1));
  }
}

/// True when it is such a line.
bool SettingsReader::read_filter(std::string_view line, std::string_view prefix, bool& seen) {
  if (!line.starts_with(prefix)) return false;
  seen = true;
  if (prefix == "PreFilter:") return true;
  std::string filter(line.substr(prefix.size()));
  if (zem_add_filter(filter.data(), 0) < 0) {
    report_syntax(line, "a filter is a list of name=value, and this one is passed over",
                  "write " + std::string(prefix) + "Class=Name;slot=value;");
  }
  zem_filters_clear();
  return true;
}

/// The daemon counts its lines from 2.
void SettingsReader::report_syntax(std::string_view line, std::string text, std::string remedy) {
  const Span where = span_of(line);
  findings_.add(Finding{Code::kSettingSyntax,
                        where,
                        std::move(text),
                        std::move(remedy),
                        {util::format_text("syntax error in configuration file, line %zu ignored",
                                           source_.line_of(where.position) + 1)}});
}

void SettingsReader::read_setting(std::string_view key, std::string_view value) {
  check_blanks(key, value);
  const auto [first, is_new] = first_of_key_.try_emplace(key, key);
  if (!is_new) {
    findings_.add(Code::kDuplicateKey, span_of(key),
                  quoted(key) + " is given on line " +
                      std::to_string(source_.line_of(span_of(first->second).position)) +
                      " already, and the first line counts",
                  "leave one of them out");
  }
  check_key(key);
  if (const KnownKey* known = known_key(key)) check_value(*known, value);
  std::string upper(trimmed(value).substr(0, 2));
  std::ranges::transform(upper, upper.begin(), [](char c) {
    return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  });
  if (is_new && key == "FilterMode" && upper == "IN") filter_mode_in_ = span_of(value);
  if (is_new && key == "BufferEvents" && upper == "NO") is_caching_off_ = true;
}

/// A key that a blank spoils is not unknown as well.
void SettingsReader::check_key(std::string_view key) {
  if (known_key(key) != nullptr || known_key(trimmed(key)) != nullptr) return;
  const KnownKey* nearest = nearest_key(trimmed(key));
  findings_.add(Code::kUnknownKey, span_of(key), "nobody reads the key " + quoted(key),
                nearest != nullptr ? "did you mean " + quoted(nearest->name) + "?"
                                   : "leave it out, or see the manual for the keys there are");
}

void SettingsReader::check_blanks(std::string_view key, std::string_view value) {
  if (key != trimmed(key)) {
    findings_.add(Code::kBlankAtEquals, span_of(key),
                  "the blanks belong to the key, and " + quoted(trimmed(key)) + " stays unset",
                  "leave them out");
  }
  if (value.empty() || kBlanks.find(value.front()) == std::string_view::npos) return;
  findings_.add(Code::kBlankAtEquals, span_of(value.substr(0, value.find_first_not_of(kBlanks))),
                "the blanks behind the = belong to the value", "leave them out");
}

void SettingsReader::check_value(const KnownKey& key, std::string_view value) {
  switch (key.kind) {
    case ValueKind::kText:
      break;
    case ValueKind::kNumber:
    case ValueKind::kPositive:
    case ValueKind::kLeadingDigit:
      check_number(key, value);
      break;
    case ValueKind::kHosts:
    case ValueKind::kPorts:
    case ValueKind::kPaths:
      check_list(key, value);
      break;
  }
}

void SettingsReader::check_number(const KnownKey& key, std::string_view value) {
  const std::string_view number = trimmed(value);
  const bool is_good =
      is_digits(number) &&
      (key.kind != ValueKind::kPositive || number.find_first_not_of('0') != std::string_view::npos);
  if (is_good) return;
  findings_.add(Code::kNotANumber, span_of(number.empty() ? value : number),
                quoted(number) + " is no number for " + std::string(key.name) +
                    (key.kind == ValueKind::kPositive ? ", which is above zero" : ""),
                "write digits only");
}

void SettingsReader::check_list(const KnownKey& key, std::string_view value) {
  std::string_view rest = value;
  while (!rest.empty()) {
    const std::string_view field = rest.substr(0, rest.find(','));
    if (!field.empty()) check_field(key, field);
    rest.remove_prefix(std::min(field.size() + 1, rest.size()));
  }
}

void SettingsReader::check_field(const KnownKey& key, std::string_view field) {
  const std::string_view name = trimmed(field);
  const bool has_blanks = name.size() != field.size() && !field.ends_with('\r');
  if (key.kind == ValueKind::kPorts) {
    const bool is_port = is_digits(name) && util::saturating_atoi(name) <= kPortMax;
    if (is_port) return;
    findings_.add(Code::kBadPort, span_of(field),
                  quoted(field) + " is no port, and the port mapper is asked instead",
                  "write a number from 1 to 65535");
  } else if (has_blanks) {
    findings_.add(Code::kBlankInList, span_of(field),
                  "blanks are part of the name " + quoted(field), "separate by commas alone");
  }
}

void SettingsReader::check_filter_mode() {
  if (!filter_mode_in_) return;
  if (!has_filter_) {
    findings_.add(Code::kNothingSent, *filter_mode_in_,
                  "with FilterMode=IN and no Filter: line no event is ever sent",
                  "add Filter: lines for what is to be sent, or leave FilterMode out");
  }
  if (has_cache_filter_ || is_caching_off_) return;
  findings_.add(Code::kCacheNeverFilled, *filter_mode_in_,
                "FilterMode=IN rules the cache, too: without a FilterCache: line no event is ever "
                "cached, and while no server answers all events are lost",
                "add FilterCache: lines, or BufferEvents=NO when that is wanted");
}

void SettingsReader::check_line_ends() {
  const std::string_view text = source_.text();
  if (const std::size_t first = text.find("\r\n"); first != std::string_view::npos) {
    findings_.add(Code::kCarriageReturn, {first, 1},
                  "this line ends in a carriage return, which is part of the value",
                  "save the file with plain newlines");
  }
  if (text.empty() || text.ends_with('\n')) return;
  findings_.add(Code::kNoLastNewline, {text.size(), 0},
                "the last line has no newline, and is not read", "end it with a newline");
}

}  // namespace

CheckedSettings::CheckedSettings(const std::string& path)
    : source_(SourceText::read(path)), findings_(source_) {
  SettingsReader(findings_).read();
}

}  // namespace zem::fmt
