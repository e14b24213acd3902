// What a FORMAT's messages have in common, its name and the names of its slots, is made into text
// once; a message then is a row of copies into the output's buffer.
#include "tools/fmt/match_printer.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fmt/json.h"
#include "tools/fmt/visible.h"

namespace zem::fmt {
namespace {

/// The constant texts of the FORMATs that messages have matched, by their places in the file.
template <class Texts>
class TextsByFormat {
 public:
  template <class Make>
  const Texts& of(const MatchResult& result, Make make) {
    const auto place = static_cast<std::size_t>(result.index);
    if (place >= known_.size()) known_.resize(place + 1);
    if (known_[place] == nullptr) known_[place] = std::make_unique<Texts>(make());
    return *known_[place];
  }

 private:
  std::vector<std::unique_ptr<Texts>> known_;
};

/// Each message with its FORMAT, class and slots, and a blank line behind it.
class TextPrinter final : public MatchPrinter {
 public:
  explicit TextPrinter(Console& console) : out_(console.out), paint_(console.paint) {}

  void print(const MatchResult& result) override {
    const FormatTexts* texts =
        result.spec == nullptr ? nullptr : &texts_.of(result, [&] { return texts_of(result); });
    TextBuffer& text = out_.buffer();
    text.append(paint_.begin(Color::kDim));
    text.append_number(result.message.line);
    text.append(paint_.end());
    text.append("  ");
    text.append(texts == nullptr ? unmatched_ : texts->name);
    if (result.event) append_class(*result.event);
    text.append("\n    ");
    append_visible(text, result.message.content());
    if (texts != nullptr) append_slots(result, *texts);
    text.append("\n\n");
    out_.pass_on();
  }

 private:
  struct FormatTexts {
    std::string name;
    std::vector<std::string> labels;  ///< of the slots: what stands before each value
  };

  [[nodiscard]] FormatTexts texts_of(const MatchResult& result) const {
    FormatTexts texts{paint_(Color::kGreen, result.spec->name()), result.slots().layout->names()};
    std::size_t width = 0;
    for (const std::string& name : texts.labels) width = std::max(width, name.size());
    for (std::string& label : texts.labels) {
      label.resize(width, ' ');
      label = std::string("\n    ").append(paint_(Color::kBlue, label)).append("  ");
    }
    return texts;
  }

  void append_class(const ClassifiedEvent& event) {
    TextBuffer& text = out_.buffer();
    text.append(" -> ");
    if (!event.class_name) {
      text.append(discarded_);
      return;
    }
    text.append(paint_.begin(Color::kCyan));
    append_visible(text, *event.class_name);
    text.append(paint_.end());
    if (!event.text) text.append(refused_);
  }

  void append_slots(const MatchResult& result, const FormatTexts& texts) {
    const kernel::EventView slots = result.slots();
    for (std::size_t i = 0; i < texts.labels.size(); ++i) {
      out_.buffer().append(texts.labels[i]);
      append_visible(out_.buffer(), slots.values[i]);
    }
  }

  Output& out_;
  const Painter& paint_;
  const std::string unmatched_ = paint_(Color::kRed, "unmatched");
  const std::string discarded_ = paint_(Color::kYellow, "discarded");
  const std::string refused_ = ", " + paint_(Color::kRed, "refused: its text grows too long");
  TextsByFormat<FormatTexts> texts_;
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
    append_json(text_, result.message.content());
    if (result.spec == nullptr) {
      text_.append(",\"format\":null,\"index\":-1,\"values\":[],\"slots\":{");
    } else {
      append_match(result, texts_.of(result, [&] { return texts_of(result); }));
    }
    text_.append('}');
    if (result.has_classes) append_event(result.event.value_or(ClassifiedEvent()));
    text_.append("}\n");
    out_.pass_on();
  }

 private:
  struct FormatTexts {
    std::string head;               ///< from the name on to the values
    std::vector<std::string> keys;  ///< of the slots, with what stands before them
  };

  static FormatTexts texts_of(const MatchResult& result) {
    FormatTexts texts{",\"format\":" + json_of(result.spec->name()) +
                          ",\"index\":" + std::to_string(result.index) + ",\"values\":[",
                      {}};
    for (const std::string& name : result.slots().layout->names()) {
      texts.keys.push_back(
          std::string(texts.keys.empty() ? "" : ",").append(json_of(name)).append(":"));
    }
    return texts;
  }

  void append_match(const MatchResult& result, const FormatTexts& texts) {
    text_.append(texts.head);
    append_values(*result.spec);
    text_.append("],\"slots\":{");
    const kernel::EventView slots = result.slots();
    for (std::size_t i = 0; i < texts.keys.size(); ++i) {
      text_.append(texts.keys[i]);
      append_json(text_, slots.values[i]);
    }
  }

  void append_values(const FormatSpec& spec) {
    const int count = std::min(spec.numvars(), FormatSpec::kValuesMax);
    for (int k = 1; k <= count; ++k) {
      if (k > 1) text_.append(',');
      append_json(text_, spec.capturedText(k));
    }
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
  TextsByFormat<FormatTexts> texts_;
};

class EventPrinter final : public MatchPrinter {
 public:
  explicit EventPrinter(Console& console) : out_(console.out) {}

  void print(const MatchResult& result) override {
    if (result.event && result.event->text) out_.write(*result.event->text);
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
