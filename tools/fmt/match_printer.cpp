// A message is escaped once, as a whole. In most there is nothing to escape, hence nothing in what
// was captured from them either, and their values are only copied (print_form.h).
#include "tools/fmt/match_printer.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/fmt/json.h"
#include "tools/fmt/print_form.h"
#include "tools/fmt/visible.h"

namespace zem::fmt {
namespace {

/// How the messages of a FORMAT are printed.
struct KnownFormat {
  std::string name;
  const PrintForm* form = nullptr;  ///< of its values and slots
};

/// The FORMATs that messages have matched, by their places in the file. Those with the same slots
/// share a form: among thousands that are all in use, what is not shared is in no cache.
class KnownFormats {
 public:
  /// `name()` and `form()` are asked for what a new one has.
  template <class Name, class Form>
  const KnownFormat& of(const MatchResult& result, Name name, Form form) {
    const auto place = static_cast<std::size_t>(result.index);
    if (place >= known_.size()) known_.resize(place + 1);
    KnownFormat& known = known_[place];
    if (known.form == nullptr) known = {name(), &*forms_.insert(form()).first};
    return known;
  }

 private:
  std::vector<KnownFormat> known_;
  std::set<PrintForm> forms_;
};

struct Slot {
  std::string_view name;
  format::SlotSource source;
};

/// The slots behind "_event_id" that the events of the FORMAT have.
std::vector<Slot> slots_of(const FormatSpec& spec) {
  std::vector<Slot> slots;
  for (const MsgMapEntry* entry : spec.slots()) {
    if (const auto source = format::source_of(spec, *entry))
      slots.push_back({entry->name(), *source});
  }
  return slots;
}

constexpr std::string_view kEventId = "_event_id";

/// Each message with its FORMAT, class and slots, and a blank line behind it.
class TextPrinter final : public MatchPrinter {
 public:
  explicit TextPrinter(Console& console)
      : out_(console.out), text_(console.out.buffer()), paint_(console.paint) {}

  void print(const MatchResult& result) override {
    const KnownFormat* format = result.spec == nullptr ? nullptr : &known_format(result);
    text_.append(dim_);
    text_.append_number(result.message.line);
    text_.append(line_end_);
    text_.append(format == nullptr ? unmatched_ : format->name);
    if (format != nullptr && result.has_classes) append_class(result.event);
    text_.append("\n    ");
    const bool is_plain = append_visible(text_, result.message.content());
    if (format != nullptr) format->form->fill(result, is_plain, text_);
    text_.append("\n\n");
    out_.pass_on();
  }

 private:
  const KnownFormat& known_format(const MatchResult& result) {
    return formats_.of(
        result, [&] { return paint_(Color::kGreen, result.spec->name()); },
        [&] { return form_of(result); });
  }

  [[nodiscard]] PrintForm form_of(const MatchResult& result) const {
    const std::vector<Slot> slots = slots_of(*result.spec);
    std::size_t width = kEventId.size();
    for (const Slot& slot : slots) width = std::max(width, slot.name.size());
    PrintForm form(append_visible);
    form.add_text(label(kEventId, width));
    form.add_index();
    for (const Slot& slot : slots) {
      form.add_text(label(slot.name, width));
      form.add_value(slot.source, result);
    }
    return form;
  }

  [[nodiscard]] std::string label(std::string_view name, std::size_t width) const {
    std::string padded(name);
    padded.resize(width, ' ');
    return std::string("\n    ").append(paint_(Color::kBlue, padded)).append("  ");
  }

  void append_class(const ClassifiedEvent& event) {
    text_.append(" -> ");
    if (!event.class_name) {
      text_.append(discarded_);
      return;
    }
    text_.append(paint_.begin(Color::kCyan));
    append_visible(text_, *event.class_name);
    text_.append(paint_.end());
    if (!event.text) text_.append(refused_);
  }

  Output& out_;
  TextBuffer& text_;
  const Painter& paint_;
  const std::string dim_{paint_.begin(Color::kDim)};
  const std::string line_end_ = std::string(paint_.end()) + "  ";
  const std::string unmatched_ = paint_(Color::kRed, "unmatched");
  const std::string discarded_ = paint_(Color::kYellow, "discarded");
  const std::string refused_ = ", " + paint_(Color::kRed, "refused: its text grows too long");
  KnownFormats formats_;
};

std::string_view without_newline(std::string_view text) {
  return text.substr(0, text.size() - (text.ends_with('\n') ? 1 : 0));
}

std::string json_of(std::string_view text) {
  TextBuffer json;
  append_json(json, text);
  return std::string(json.view());
}

class JsonPrinter final : public MatchPrinter {
 public:
  explicit JsonPrinter(Console& console) : out_(console.out), text_(console.out.buffer()) {}

  void print(const MatchResult& result) override {
    text_.append("{\"line\":");
    text_.append_number(result.message.line);
    text_.append(",\"message\":");
    const bool is_plain = append_json(text_, result.message.content());
    if (result.spec == nullptr) {
      text_.append(",\"format\":null,\"index\":-1,\"values\":[],\"slots\":{}");
    } else {
      append_match(result, is_plain);
    }
    if (result.has_classes) append_event(result.event);
    text_.append("}\n");
    out_.pass_on();
  }

 private:
  void append_match(const MatchResult& result, bool is_plain) {
    const KnownFormat& format = formats_.of(
        result, [&] { return json_of(result.spec->name()); }, [&] { return form_of(result); });
    text_.append(",\"format\":");
    text_.append(format.name);
    format.form->fill(result, is_plain, text_);
  }

  static PrintForm form_of(const MatchResult& result) {
    PrintForm form(append_escaped);
    form.add_text(",\"index\":");
    form.add_index();
    form.add_text(",\"values\":[");
    const int count = std::min(result.spec->numvars(), FormatSpec::kValuesMax);
    for (int k = 1; k <= count; ++k) {
      if (k > 1) form.add_text(",");
      add_string(form, {format::SlotSource::Kind::kVariable, k}, result);
    }
    form.add_text("],\"slots\":{\"_event_id\":\"");
    form.add_index();
    form.add_text("\"");
    for (const Slot& slot : slots_of(*result.spec)) {
      form.add_text(",");
      form.add_text(json_of(slot.name));
      form.add_text(":");
      add_string(form, slot.source, result);
    }
    form.add_text("}");
    return form;
  }

  static void add_string(PrintForm& form, const format::SlotSource& source,
                         const MatchResult& result) {
    form.add_text("\"");
    form.add_value(source, result);
    form.add_text("\"");
  }

  void append_or_null(std::optional<std::string_view> text) {
    if (text) {
      append_json(text_, without_newline(*text));
    } else {
      text_.append("null");
    }
  }

  void append_event(const ClassifiedEvent& event) {
    text_.append(",\"class\":");
    append_or_null(event.class_name);
    text_.append(",\"event\":");
    append_or_null(event.text);
  }

  Output& out_;
  TextBuffer& text_;
  KnownFormats formats_;
};

class EventPrinter final : public MatchPrinter {
 public:
  explicit EventPrinter(Console& console) : out_(console.out) {}

  void print(const MatchResult& result) override {
    if (result.event.text) out_.write(*result.event.text);
  }

 private:
  Output& out_;
};

class SilentPrinter final : public MatchPrinter {
 public:
  void print(const MatchResult& /*result*/) override {}
};

}  // namespace

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
