#include "tools/fmt/match_printer.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "adapters/logfile/common/event_slots.h"
#include "tools/fmt/json.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

/// Each message with its FORMAT, class and slots, and a blank line behind it.
class TextPrinter final : public MatchPrinter {
 public:
  explicit TextPrinter(Console& console) : out_(console.out), paint_(console.paint) {}

  void print(const MatchResult& result) override {
    out_.write(paint_(Color::kDim, std::to_string(result.message.line)) + "  " + verdict(result) +
               "\n    " + visible(result.message.content()) + "\n");
    if (result.spec != nullptr) print_slots(result);
    out_.write("\n");
  }

 private:
  [[nodiscard]] std::string verdict(const MatchResult& result) const {
    if (result.spec == nullptr) return paint_(Color::kRed, "unmatched");
    std::string text = paint_(Color::kGreen, result.spec->name());
    if (result.event == nullptr) return text;
    const char* class_name = result.event->class_name();
    text += " -> ";
    return text + (class_name == nullptr ? paint_(Color::kYellow, "discarded")
                                         : paint_(Color::kCyan, visible(class_name)));
  }

  void print_slots(const MatchResult& result) {
    std::size_t width = 0;
    const auto measure = [&](const char* name, const char* /*value*/) {
      width = std::max(width, std::string_view(name).size());
    };
    const auto show = [&](const char* name, const char* value) {
      std::string label = name;
      label.resize(width, ' ');
      out_.write("    " + paint_(Color::kBlue, label) + "  " + visible(value) + "\n");
    };
    format::visit_event_slots(*result.spec, result.index, result.host, measure);
    format::visit_event_slots(*result.spec, result.index, result.host, show);
  }

  Output& out_;
  const Painter& paint_;
};

std::string_view without_newline(std::string_view text) {
  return text.substr(0, text.size() - (text.ends_with('\n') ? 1 : 0));
}

class JsonPrinter final : public MatchPrinter {
 public:
  explicit JsonPrinter(Console& console) : out_(console.out) {}

  void print(const MatchResult& result) override {
    line_ = "{\"line\":" + std::to_string(result.message.line) + ",\"message\":";
    append_json(line_, result.message.content());
    append_format(result);
    append_values(result.spec);
    append_slots(result);
    if (result.has_classes) append_event(result.event);
    line_ += "}\n";
    out_.write(line_);
  }

 private:
  void append_or_null(const char* text) {
    if (text == nullptr) {
      line_ += "null";
    } else {
      append_json(line_, without_newline(text));
    }
  }

  void append_format(const MatchResult& result) {
    line_ += ",\"format\":";
    append_or_null(result.spec == nullptr ? nullptr : result.spec->name());
    line_ += ",\"index\":" + std::to_string(result.index);
  }

  void append_values(const FormatSpec* spec) {
    line_ += ",\"values\":[";
    const int count = spec == nullptr ? 0 : std::min(spec->numvars(), FormatSpec::kValuesMax);
    for (int k = 1; k <= count; ++k) {
      if (k > 1) line_ += ',';
      append_json(line_, spec->captured(k).getString());
    }
    line_ += ']';
  }

  void append_slots(const MatchResult& result) {
    line_ += ",\"slots\":{";
    bool is_first = true;
    const auto append = [&](const char* name, const char* value) {
      if (!is_first) line_ += ',';
      is_first = false;
      append_json(line_, name);
      line_ += ':';
      append_json(line_, value);
    };
    if (result.spec != nullptr) {
      format::visit_event_slots(*result.spec, result.index, result.host, append);
    }
    line_ += '}';
  }

  void append_event(const KernelEvent* event) {
    line_ += ",\"class\":";
    append_or_null(event == nullptr ? nullptr : event->class_name());
    line_ += ",\"event\":";
    append_or_null(event == nullptr ? nullptr : event->text());
  }

  Output& out_;
  std::string line_;
};

class EventPrinter final : public MatchPrinter {
 public:
  explicit EventPrinter(Console& console) : out_(console.out) {}

  void print(const MatchResult& result) override {
    if (result.event == nullptr || result.event->text() == nullptr) return;
    out_.write(result.event->text());
  }

 private:
  Output& out_;
};

class SilentPrinter final : public MatchPrinter {
 public:
  void print(const MatchResult& /*result*/) override {}
};

bool is_control(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

}  // namespace

std::string visible(std::string_view text) {
  std::string shown;
  for (const char c : text) {
    if (is_control(c) && c != '\t') {
      shown += util::format_text("\\x%02x", static_cast<unsigned>(c));
    } else {
      shown += c;
    }
  }
  return shown;
}

std::unique_ptr<MatchPrinter> make_match_printer(MatchFormat format, Console& console) {
  switch (format) {
    case MatchFormat::kText:
      return std::make_unique<TextPrinter>(console);
    case MatchFormat::kJson:
      return std::make_unique<JsonPrinter>(console);
    case MatchFormat::kEvent:
      return std::make_unique<EventPrinter>(console);
    case MatchFormat::kNone:
      break;
  }
  return std::make_unique<SilentPrinter>();
}

}  // namespace zem::fmt
