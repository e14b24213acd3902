#include "bench/workload.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "util/text.h"

namespace zem::bench {

namespace {

constexpr std::size_t kTextsPerProgram = 20;
constexpr std::size_t kVocabulary = 2000;

constexpr const char* kSyllables[] = {"ac",  "ba", "con", "de", "er", "fil", "ga",
                                      "hos", "in", "ker", "lo", "mo", "net", "on",
                                      "pro", "qu", "ser", "ta", "us", "ver"};
constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* kHead = "%t %s ";

}  // namespace

Workload::Workload(std::size_t formats, std::uint32_t seed) : random_(seed) {
  while (vocabulary_.size() < kVocabulary) vocabulary_.push_back(new_word());
  std::string program;
  while (formats_.size() + 1 < formats) {
    if (formats_.size() % kTextsPerProgram == 0) program = new_word() + new_word();
    Format next{program, {}};
    next.words = text_like(formats_.empty() ? Format{} : formats_.back());
    formats_.push_back(next);
  }
}

/// Two to four syllables.
std::string Workload::new_word() {
  std::string text;
  for (std::size_t i = 2 + pick(3); i > 0; --i) text += kSyllables[pick(std::size(kSyllables))];
  return text;
}

/// What a variable stands for in a message.
std::string Workload::value() {
  switch (pick(3)) {
    case 0:
      return std::to_string(pick(65536));
    case 1:
      return util::format_text("10.%d.%d.%d", static_cast<int>(pick(256)),
                               static_cast<int>(pick(256)), static_cast<int>(pick(256)));
    default:
      return word();
  }
}

/// Three to ten words and variables, the first of them often those of `other`.
std::vector<std::string> Workload::text_like(const Format& other) {
  std::vector<std::string> words(
      other.words.begin(),
      other.words.begin() + static_cast<std::ptrdiff_t>(pick(other.words.size() / 2 + 1)));
  for (const std::size_t length = 3 + pick(8); words.size() < length;) {
    const bool variable = !words.empty() && words.back() != "%s" && pick(3) == 0;
    words.push_back(variable ? "%s" : word());
  }
  if (words.back() == "%s") words.push_back(word());
  return words;
}

std::string Workload::line_of(const Format& format) {
  std::string line = kHead + format.program + "[%s]:";
  for (const std::string& part : format.words) line += " " + part;
  return line;
}

std::vector<std::string> Workload::format_lines() const {
  std::vector<std::string> lines = {std::string(kHead) + "%s*"};
  for (const Format& format : formats_) lines.push_back(line_of(format));
  return lines;
}

std::string Workload::format_file() const {
  std::string text = "FORMAT Base\n" + std::string(kHead) +
                     "%s*\ndate $1\nhostname $2\nmsg $3\norigin DEFAULT\nsource syslog\nEND\n\n";
  for (std::size_t i = 0; i < formats_.size(); ++i) {
    text += util::format_text("FORMAT Event_%zu FOLLOWS Base\n", i + 1) + line_of(formats_[i]);
    text += "\npid $3\n";
    const auto variables = std::ranges::count(formats_[i].words, "%s");
    for (int k = 1; k <= static_cast<int>(variables); ++k) {
      text += util::format_text("value%d $%d\n", k, k + 3);
    }
    text += "END\n\n";
  }
  return text;
}

std::string Workload::message(std::size_t format) {
  std::string text = util::format_text(
      "%s %2d %02d:%02d:%02d 10.1.0.%d ", kMonths[pick(std::size(kMonths))],
      static_cast<int>(1 + pick(28)), static_cast<int>(pick(24)), static_cast<int>(pick(60)),
      static_cast<int>(pick(60)), static_cast<int>(pick(50)));
  if (format == 0) return text + word() + ": " + word() + " " + value() + "\n";
  const Format& chosen = formats_[format - 1];
  text += util::format_text("%s[%d]:", chosen.program.c_str(), static_cast<int>(pick(32768)));
  for (const std::string& part : chosen.words) text += " " + (part == "%s" ? value() : part);
  return text + "\n";
}

std::vector<std::string> Workload::messages(std::size_t count, Mix mix) {
  std::vector<double> weights;
  for (std::size_t k = 1; k <= formats_.size() + 1; ++k) {
    weights.push_back(mix == Mix::kZipf ? 1.0 / static_cast<double>(k) : 1.0);
  }
  std::ranges::shuffle(weights, random_);
  std::discrete_distribution<std::size_t> format(weights.begin(), weights.end());
  std::vector<std::string> all;
  while (all.size() < count) all.push_back(message(format(random_)));
  return all;
}

}  // namespace zem::bench
