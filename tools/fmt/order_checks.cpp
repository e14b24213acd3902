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
#include <string>
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

  bool operator==(const Part&) const = default;
};
using Group = std::vector<Part>;

/// Blanks at both ends give empty groups.
std::vector<Group> groups_of(const FormatSpec& spec) {
  std::vector<Group> groups(1);
  auto lookahead = spec.lookaheads().begin();
  for (const FormatComponent* component : spec.components()) {
    const std::string_view text = component->fmtRep();
    if (text == " ") {
      groups.emplace_back();
    } else {
      groups.back().push_back({text, (*lookahead)->text()});
    }
    ++lookahead;
  }
  return groups;
}

bool is_lone(const Group& group, std::string_view text) {
  return group.size() == 1 && group.front().text == text;
}

bool is_star(const Part& part) { return part.text == "%s*" || part.text == "%s+"; }

/// True when the group takes one whole word, whatever it looks like.
bool takes_one_word(const Group& group) {
  return !group.empty() && std::ranges::none_of(group, [](const Part& part) {
    return is_star(part) || part.text == "%t";
  });
}

bool needs_a_word(const Group& group) { return !group.empty() && group.front().text != "%s*"; }

/// The group of the winner that is the last one, against the loser's and all behind it.
bool takes_the_rest(const Group& winner, const Group& loser) {
  return is_lone(winner, "%s*") || (is_lone(winner, "%s+") && needs_a_word(loser));
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

bool covers(const std::vector<Group>& ours, const std::vector<Group>& theirs) {
  for (std::size_t i = 0; i < ours.size(); ++i) {
    if (i == theirs.size()) return false;
    if (i + 1 == ours.size() && takes_the_rest(ours[i], theirs[i])) return true;
    if (ours[i] == theirs[i]) continue;
    if (!is_lone(ours[i], "%s") || !takes_one_word(theirs[i])) return false;
  }
  return ours.size() == theirs.size();
}

}  // namespace

bool takes_every_line_of(const FormatSpec& winner, const FormatSpec& loser) {
  return covers(groups_of(winner), groups_of(loser));
}

void check_never_winning(const FormatModel& model, Findings& findings) {
  const std::vector<FormatEntry>& entries = model.entries();
  std::vector<std::vector<Group>> groups;
  for (const FormatEntry& entry : entries) groups.push_back(groups_of(*entry.spec));
  for (const FormatEntry& loser : entries) {
    const std::vector<Group>& theirs = groups[loser.index];
    const auto wins = [&](const FormatEntry& later) {
      return later.index > loser.index && later.outline->is_whole &&
             covers(groups[later.index], theirs);
    };
    if (!loser.outline->is_whole) continue;
    const auto winner = std::ranges::find_if(entries, wins);
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
