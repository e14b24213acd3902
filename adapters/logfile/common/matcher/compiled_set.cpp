// The tree is gone through depth first, without recursion: of the ways on from a parting one is
// followed at once and the others wait. Values taken on the way stand in `taken_`, numbered from
// the root; a branch that waits remembers how many there were, and those are untouched when it is
// entered, because what was tried in between only wrote behind them.
//
// A cursor never stands inside a run of blanks: whatever goes past the first goes past them all.
#include "adapters/logfile/common/matcher/compiled_set.h"

#include <cstddef>
#include <string_view>

#include "adapters/logfile/common/matcher/byte_block.h"
#include "adapters/logfile/common/matcher/set_compiler.h"

namespace zem::format {

namespace {

/// The first ' ' at or behind `at`, which a plain message has behind its every word.
const char* find_blank(const char* at) {
  for (;; at += kBlockBytes) {
    const ByteMask blanks = ByteBlock(at).equal(' ');
    if (blanks != 0) return at + first_in(blanks);
  }
}

/// One message on its way through the program.
class Walk {
 public:
  Walk(const Program& program, const PlainMessage& message, Captures& captures, Pending* pending)
      : code_(program.code.data()),
        variables_(program.variables.data()),
        text_(message.text()),
        end_(text_ + message.length()),
        message_(message),
        captures_(captures),
        taken_(captures.room()),
        bottom_(pending),
        top_(pending) {}

  /// Position of the winner, whose values are in the captures then.
  Position run(std::uint32_t start) {
    Place place = {code_ + start, text_, 0};
    do {
      follow(place);
    } while (next_pending(place));
    return best_;
  }

 private:
  /// Goes on from `place` until the message does not fit or a FORMAT ends. (BM_Match: the two most
  /// frequent operations are asked for one by one, where a jump table is mispredicted more often.)
  void follow(Place place) {
    while (pass_text(place)) {
      const auto operation = load<Operation>(place.step++);
      const bool goes_on = operation == Operation::kWord     ? take_word(place)
                           : operation == Operation::kChoice ? choose(place)
                                                             : perform(operation, place);
      if (!goes_on) return;
    }
  }

  /// One of the other operations; false when the message does not fit or a FORMAT ends.
  [[nodiscard]] bool perform(Operation operation, Place& place) {
    switch (operation) {
      case Operation::kParting:
        part(place);
        return choose(place);
      case Operation::kEnd:
        end_here(place, load<Position>(place.step));
        return false;
      case Operation::kMore:
        return true;
      default:
        return take_variable(operation, place);
    }
  }

  /// The next branch that waits and can win; false when there is none.
  [[nodiscard]] bool next_pending(Place& place) {
    while (top_ != bottom_) {
      --top_;
      if (top_->first >= best_) continue;
      place = top_->place;
      return true;
    }
    return false;
  }

  /// Goes past the piece of text at the step; false when the message reads otherwise. (BM_Match:
  /// most messages hold the piece as it stands, and to look for runs of blanks afterwards costs
  /// less than to fold messages beforehand.)
  [[nodiscard]] static bool pass_text(Place& place) {
    const auto length = load<std::uint8_t>(place.step++);
    const char* const piece = place.step;
    place.step += length;
    if (same_bytes(piece, place.cursor, length)) {
      place.cursor += length;
    } else if (!pass_bytes({piece, length}, place.cursor)) {
      return false;
    }
    if (is_inside_run(place.cursor)) place.cursor = skip_blanks(place.cursor);
    return true;
  }

  /// The same byte by byte, where a ' ' of the piece may stand for several.
  [[nodiscard]] static bool pass_bytes(std::string_view piece, const char*& cursor) {
    for (const char c : piece) {
      if (is_inside_run(cursor)) cursor = skip_blanks(cursor);
      if (*cursor++ != c) return false;
    }
    return true;
  }

  /// Something stands in front of a message, hence also at its begin.
  [[nodiscard]] static bool is_inside_run(const char* at) {
    return load<std::uint16_t>(at - 1) == load<std::uint16_t>("  ");
  }

  [[nodiscard]] static const char* skip_blanks(const char* at) {
    while (*at == ' ') ++at;
    return at;
  }

  /// A word that nothing cuts, of any width.
  [[nodiscard]] bool take_word(Place& place) {
    if (place.cursor >= end_) return false;
    const char* const end = find_blank(place.cursor);
    if (end == place.cursor) return false;
    put(place, end);
    return true;
  }

  void put(Place& place, const char* end) {
    taken_[place.captured++] = {static_cast<std::uint32_t>(place.cursor - text_),
                                static_cast<std::uint32_t>(end - place.cursor)};
    place.cursor = end;
  }

  /// A variable other than the plainest one takes its value at the cursor; false when it does not
  /// match there. All but a star want a word that is not cut to nothing.
  [[nodiscard]] bool take_variable(Operation operation, Place& place) {
    const char* const at = place.cursor;
    const bool is_word = at < end_ && *at != ' ';
    if (!is_word && operation != Operation::kStar) return false;
    const Variable& variable = variables_[load<std::uint32_t>(place.step)];
    place.step += sizeof(std::uint32_t);
    if (operation == Operation::kPresent) return true;
    const char* end = at;
    if (is_word) {
      end = operation == Operation::kCutWord ? word_end(at, variable)
            : operation == Operation::kTime  ? time_end(place, variable)
                                             : words_end(place, variable);
    }
    if (end == at && operation != Operation::kStar) return false;
    put(place, end);
    return true;
  }

  /// A FORMAT ends here, and branches that begin with a variable are left waiting. Goes on to the
  /// choice.
  void part(Place& place) {
    const auto head = load<PartingHead>(place.step);
    place.step += sizeof head;
    end_here(place, head.end);
    const char* const choice = place.step + head.variables * sizeof(Branch);
    put_aside(place, choice);
    place.step = choice;
  }

  /// Leaves branches up to `end` waiting that can still win; the first of them, which is the best,
  /// comes first.
  void put_aside(const Place& place, const char* end) {
    for (const char* at = end; at != place.step;) {
      at -= sizeof(Branch);
      const auto branch = load<Branch>(at);
      if (branch.first >= best_) continue;
      *top_++ = {{code_ + branch.target, place.cursor, place.captured}, branch.first};
    }
  }

  /// Enters the branch of text of a choice; false when there is none.
  [[nodiscard]] bool choose(Place& place) const {
    const auto head = load<ChoiceHead>(place.step);
    const char* const numbers = place.step + sizeof head;
    const auto byte = static_cast<unsigned char>(*place.cursor++);
    const std::size_t at = byte - std::size_t{head.lowest};
    if (at >= head.bytes) return false;
    const auto number = load<std::uint8_t>(numbers + at);
    if (number == kNoBranch) return false;
    const char* const targets = numbers + head.bytes;
    place.step = code_ + load<std::uint32_t>(targets + number * sizeof(std::uint32_t));
    return true;
  }

  void end_here(const Place& place, Position position) {
    const auto at = static_cast<std::size_t>(place.cursor - text_);
    if (position >= best_ || !message_.ends_at(at)) return;
    best_ = position;
    captures_.won(place.captured);
  }

  /// Where the word at `at` ends, cut and with a width; `at` when it does not match. There is a
  /// word.
  [[nodiscard]] const char* word_end(const char* at, const Variable& variable) const {
    const char* const end = variable.cut_length == 0 ? find_blank(at) : cut_end(at, variable);
    if (variable.width == 0) return end;
    return end - at < std::ptrdiff_t{variable.width} ? at : at + variable.width;
  }

  /// Where the word at `at` ends, or the constant that cuts it begins.
  [[nodiscard]] const char* cut_end(const char* at, const Variable& variable) const {
    const char* const cut = code_ + variable.cut;
    for (;; at += kBlockBytes) {
      const ByteBlock here(at);
      for (ByteMask stops = here.equal(' ') | here.equal(*cut); stops != 0; stops &= stops - 1) {
        const char* const stop = at + first_in(stops);
        if (*stop == ' ' || same_bytes(stop, cut, variable.cut_length)) return stop;
      }
    }
  }

  /// Where the three words at the cursor end, the last of them cut; the cursor when they do not
  /// match.
  [[nodiscard]] const char* time_end(const Place& place, const Variable& variable) {
    const char* end = place.cursor;
    for (int i = 0; i < 2; ++i) {
      end = next_word(find_blank(end), place.captured);
      if (end >= end_) return place.cursor;
    }
    const char* const last = word_end(end, variable);
    return last == end ? place.cursor : last;
  }

  /// Where the words from the cursor on end, or the constant that cuts them begins.
  [[nodiscard]] const char* words_end(const Place& place, const Variable& variable) {
    captures_.may_hold_runs(place.captured);
    if (variable.cut_length == 0 && variable.width == 0) return end_;
    const char* end = word_end(place.cursor, variable);
    if (end == place.cursor) return end;
    while (end < end_ && *end == ' ') {
      const char* const word = next_word(end, place.captured);
      const char* const next = word_end(word, variable);
      if (next == word) break;
      end = next;
    }
    return end;
  }

  /// Behind the blanks at `blank`, which belong to value `captured`.
  [[nodiscard]] const char* next_word(const char* blank, std::size_t captured) {
    if (blank[1] != ' ') return blank + 1;
    captures_.may_hold_runs(captured);
    return skip_blanks(blank);
  }

  const char* code_;
  const Variable* variables_;
  const char* text_;
  const char* end_;
  const PlainMessage& message_;
  Captures& captures_;
  Span* taken_;
  Pending* bottom_;  ///< of the branches that wait
  Pending* top_;
  Position best_ = kNoPosition;  ///< the best that has matched so far
};

}  // namespace

CompiledSet::CompiledSet(std::span<FormatSpec* const> specs)
    : program_(compile_set(specs)),
      captures_(program_.values_max),
      pending_(program_.pending_max) {}

Position CompiledSet::match(std::string_view text) {
  message_.assign(text);
  captures_.begin(message_.text());
  const Position best = Walk(program_, message_, captures_, pending_.data()).run(program_.start);
  captures_.end();
  return best;
}

}  // namespace zem::format
