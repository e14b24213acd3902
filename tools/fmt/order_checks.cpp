// When does FORMAT L, which is tried first, take every line that E takes? Both are compared group
// by group; a group is what stands between two blanks of the format line. While both have worked in
// the same way they stand at the same place of the message, the beginning of a word:
//
//   group of L          group of E                     both stand at the same place again because
//   the same            the same                       they do the same
//   a lone %s           constants and %s only          both have taken one whole word
//   a last, lone %s*    whatever, to the end           the star takes all that is left
//   a last, lone %s+    begins with no star, and       the same, and there is a word to take
//                       whatever, to the end
//
// "The same" counts the constant that cuts a variable's words: it may stand further on.
#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "tools/fmt/format_checks.h"
#include "tools/fmt/words.h"

namespace zem::fmt {
namespace {

struct Part {
  std::string_view text;
  std::string_view cut;  ///< the constant that cuts its words

  bool operator<(const Part& other) const {
    return std::tie(text, cut) < std::tie(other.text, other.cut);
  }
};

bool is_star(const Part& part) { return part.text == "%s*" || part.text == "%s+"; }

/// What a group is to others. Two groups are the same when they have the same kind.
struct GroupKind {
  explicit GroupKind(const std::vector<Part>& parts);

  bool is_word;         ///< a lone %s
  bool is_star;         ///< a lone %s*
  bool is_plus;         ///< a lone %s+
  bool takes_one_word;  ///< one whole word, whatever it looks like
  bool needs_a_word;
};

GroupKind::GroupKind(const std::vector<Part>& parts)
    : is_word(parts.size() == 1 && parts.front().text == "%s"),
      is_star(parts.size() == 1 && parts.front().text == "%s*"),
      is_plus(parts.size() == 1 && parts.front().text == "%s+"),
      takes_one_word(
          !parts.empty() &&
          std::ranges::none_of(
              parts, [](const Part& part) { return fmt::is_star(part) || part.text == "%t"; })),
      needs_a_word(!parts.empty() && parts.front().text != "%s*") {}

using Groups = std::vector<const GroupKind*>;

/// The kinds of all groups that were met. Each FORMAT is compared with each, so this must be cheap.
class GroupKinds {
 public:
  /// The specs outlive this.
  [[nodiscard]] Groups of(const FormatSpec& spec);

 private:
  const GroupKind* kind_of(const std::vector<Part>& parts) {
    return &kinds_.try_emplace(parts, parts).first->second;
  }

  std::map<std::vector<Part>, GroupKind> kinds_;
};

/// Blanks at both ends give empty groups.
Groups GroupKinds::of(const FormatSpec& spec) {
  Groups groups;
  std::vector<Part> parts;
  auto lookahead = spec.lookaheads().begin();
  for (const FormatComponent* component : spec.components()) {
    const std::string_view text = component->fmtRep();
    if (text == " ") {
      groups.push_back(kind_of(parts));
      parts.clear();
    } else {
      parts.push_back({text, (*lookahead)->text()});
    }
    ++lookahead;
  }
  groups.push_back(kind_of(parts));
  return groups;
}

/// The group of the winner that is the last one, against the loser's and all behind it.
bool takes_the_rest(const GroupKind& winner, const GroupKind& loser) {
  return winner.is_star || (winner.is_plus && loser.needs_a_word);
}

std::string place_text(const Findings& findings, const FormatEntry& entry) {
  return quoted(entry.outline->name.text) + " on line " +
         std::to_string(findings.source().line_of(entry.outline->name.where.position));
}

void report_loser(const FormatEntry& loser, const FormatEntry& winner, bool is_same,
                  Findings& findings) {
  const std::string name = "FORMAT " + quoted(loser.outline->name.text);
  findings.add(is_same ? Code::kSameFormatLine : Code::kNeverWins, loser.outline->format_line,
               name + " never wins: FORMAT " + place_text(findings, winner) +
                   (is_same ? " has the same format line" : " takes every line that it takes") +
                   ", and the later one is tried first",
               is_same ? "leave one of them out" : "put the particular one behind the general one");
}

bool covers(const Groups& ours, const Groups& theirs) {
  for (std::size_t i = 0; i < ours.size(); ++i) {
    if (i == theirs.size()) return false;
    if (i + 1 == ours.size() && takes_the_rest(*ours[i], *theirs[i])) return true;
    if (ours[i] == theirs[i]) continue;
    if (!ours[i]->is_word || !theirs[i]->takes_one_word) return false;
  }
  return ours.size() == theirs.size();
}

}  // namespace

bool takes_every_line_of(const FormatSpec& winner, const FormatSpec& loser) {
  GroupKinds kinds;
  return covers(kinds.of(winner), kinds.of(loser));
}

void check_never_winning(const FormatModel& model, Findings& findings) {
  const std::vector<FormatEntry>& entries = model.entries();
  GroupKinds kinds;
  std::vector<Groups> groups;
  for (const FormatEntry& entry : entries) groups.push_back(kinds.of(*entry.spec));
  for (const FormatEntry& loser : entries) {
    const Groups& theirs = groups[loser.index];
    const auto wins = [&](const FormatEntry& entry) {
      return entry.outline->is_whole && covers(groups[entry.index], theirs);
    };
    if (!loser.outline->is_whole) continue;
    const auto later = entries.begin() + static_cast<std::ptrdiff_t>(loser.index) + 1;
    const auto winner = std::find_if(later, entries.end(), wins);
    if (winner == entries.end()) continue;
    report_loser(loser, *winner, groups[winner->index] == theirs, findings);
  }
}

void check_any(const FormatModel& model, Findings& findings) {
  if (!model.entries().empty() || !findings.empty()) return;
  findings.add(Code::kNoFormats, {}, "the file holds no FORMAT: no message can match",
               "write one: FORMAT and a name, the format line, slots, END");
}

void check_duplicate_formats(const FormatModel& model, Findings& findings) {
  std::unordered_map<std::string_view, const FormatEntry*> first_of_name;
  for (const FormatEntry& entry : model.entries()) {
    const auto [first, is_new] = first_of_name.try_emplace(entry.outline->name.text, &entry);
    if (is_new) continue;
    findings.add(Code::kDuplicateFormat, entry.outline->name.where,
                 "there is a FORMAT " + place_text(findings, *first->second) + " already",
                 "give it a name of its own; FOLLOWS always means the first one");
  }
}

}  // namespace zem::fmt
