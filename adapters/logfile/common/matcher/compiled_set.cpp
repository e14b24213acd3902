// The tree is gone through depth first, without recursion: of the ways on from a parting one is
// followed at once and the others wait. Values taken on the way stand in `taken_`, numbered from
// the root; a branch that waits remembers how many there were, and those are untouched when it is
// entered, because what was tried in between only wrote behind them.
#include "adapters/logfile/common/matcher/compiled_set.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "adapters/logfile/common/matcher/byte_block.h"
#include "adapters/logfile/common/matcher/set_compiler.h"

namespace zem::format {

namespace {

/// The first ' ' at or behind `at`, which a folded message has behind its every word.
std::size_t find_blank(const char* text, std::size_t at) {
  for (;; at += kBlockBytes) {
    const ByteMask blanks = ByteBlock(text + at).equal(' ');
    if (blanks != 0) return at + first_in(blanks);
  }
}

/// Where `byte` stands in `bytes`; their number when it is not there.
std::size_t find_byte(std::string_view bytes, char byte) {
  for (std::size_t i = 0; i < bytes.size(); i += kBlockBytes) {
    const ByteMask found = ByteBlock(bytes.data() + i).equal(byte) & first_bytes(bytes.size() - i);
    if (found != 0) return i + first_in(found);
  }
  return bytes.size();
}

/// One message on its way through the program.
class Walk {
 public:
  Walk(const Program& program, const FoldedMessage& message, Captures& captures,
       std::vector<Pending>& pending)
      : code_(program.code.data()),
        variables_(program.variables.data()),
        text_(message.text()),
        length_(message.length()),
        message_(message),
        captures_(captures),
        pending_(pending) {
    pending_.push_back({{program.start, 0, 0}, program.first});
  }

  /// Position of the winner, whose values are in the captures then.
  Position run() {
    while (!pending_.empty()) {
      const Pending next = pending_.back();
      pending_.pop_back();
      if (next.first < best_) follow(next.place);
    }
    return best_;
  }

 private:
  /// Goes on from `place` until the message does not fit or a FORMAT ends.
  void follow(Place place) {
    for (;;) {
      const char* at = code_ + place.step;
      const auto operation = load<Operation>(at++);
      if (operation == Operation::kEnd) return end_here(place, load<Position>(at));
      if (operation == Operation::kChoice) {
        if (!choose(place)) return;
        continue;
      }
      if (operation != Operation::kText) {
        if (!take(operation, variables_[load<std::uint32_t>(at)], place)) return;
        at += sizeof(std::uint32_t);
      }
      const auto length = load<std::uint8_t>(at++);
      if (!same_bytes(at, text_ + place.cursor, length)) return;
      place.cursor += length;
      place.step = static_cast<std::uint32_t>(at - code_) + length;
    }
  }

  /// A variable takes its value at the cursor; false when it does not match there. All but a star
  /// want a word that is not cut to nothing.
  [[nodiscard]] bool take(Operation operation, const Variable& variable, Place& place) {
    const std::size_t at = place.cursor;
    const bool is_word = at < length_ && text_[at] != ' ';
    if (operation == Operation::kPresent) return is_word;
    std::size_t end = at;
    if (is_word) {
      end = operation == Operation::kWord   ? word_end(at, variable)
            : operation == Operation::kTime ? time_end(at, variable)
                                            : words_end(at, variable);
    }
    if (end == at && operation != Operation::kStar) return false;
    if (place.captured < taken_.size()) {
      taken_[place.captured++] = {place.cursor, static_cast<std::uint32_t>(end - at)};
    }
    place.cursor = static_cast<std::uint32_t>(end);
    return true;
  }

  /// Enters the branch of text of a choice and leaves those of variables waiting. False when there
  /// is none to enter.
  [[nodiscard]] bool choose(Place& place) {
    const char* const step = code_ + place.step + sizeof(Operation);
    const auto head = load<ChoiceHead>(step);
    const char* const bytes = step + sizeof head;
    const char* const texts = bytes + head.texts;
    end_here(place, head.end);
    put_aside(place, {texts + head.texts * sizeof(Branch), head.variables * sizeof(Branch)});
    const std::size_t i = find_byte({bytes, head.texts}, text_[place.cursor]);
    if (i == head.texts) return false;
    const auto text = load<Branch>(texts + i * sizeof(Branch));
    place.step = text.target;
    ++place.cursor;
    return text.first < best_;
  }

  /// Leaves branches waiting that can still win; the first of them, which is the best, comes first.
  void put_aside(const Place& place, std::string_view branches) {
    for (; !branches.empty(); branches.remove_suffix(sizeof(Branch))) {
      const auto branch = load<Branch>(branches.data() + branches.size() - sizeof(Branch));
      if (branch.first >= best_) continue;
      pending_.push_back({{branch.target, place.cursor, place.captured}, branch.first});
    }
  }

  void end_here(const Place& place, Position position) {
    if (position >= best_ || !message_.ends_at(place.cursor)) return;
    best_ = position;
    captures_.assign(text_, std::span(taken_).first(place.captured));
  }

  /// Where the word at `at` ends, cut and with a width; `at` when it does not match. There is a
  /// word.
  [[nodiscard]] std::size_t word_end(std::size_t at, const Variable& variable) const {
    const std::size_t end =
        variable.cut_length == 0 ? find_blank(text_, at) : cut_end(at, variable);
    if (variable.width == 0) return end;
    return end - at < variable.width ? at : at + variable.width;
  }

  /// Where the word at `at` ends, or the constant that cuts it begins.
  [[nodiscard]] std::size_t cut_end(std::size_t at, const Variable& variable) const {
    const char* const cut = code_ + variable.cut;
    for (;; at += kBlockBytes) {
      const ByteBlock here(text_ + at);
      for (ByteMask stops = here.equal(' ') | here.equal(*cut); stops != 0; stops &= stops - 1) {
        const char* const stop = text_ + at + first_in(stops);
        if (*stop == ' ' || same_bytes(stop, cut, variable.cut_length)) {
          return static_cast<std::size_t>(stop - text_);
        }
      }
    }
  }

  /// Three words, the last of them cut.
  [[nodiscard]] std::size_t time_end(std::size_t at, const Variable& variable) const {
    std::size_t end = at;
    for (int i = 0; i < 2; ++i) {
      end = find_blank(text_, end) + 1;
      if (end >= length_) return at;
    }
    const std::size_t last = word_end(end, variable);
    return last == end ? at : last;
  }

  /// The words from `at` on, up to the constant that cuts them.
  [[nodiscard]] std::size_t words_end(std::size_t at, const Variable& variable) const {
    if (variable.cut_length == 0 && variable.width == 0) return length_;
    std::size_t end = word_end(at, variable);
    if (end == at) return at;
    while (end < length_ && text_[end] == ' ') {
      const std::size_t next = word_end(end + 1, variable);
      if (next == end + 1) break;
      end = next;
    }
    return end;
  }

  const char* code_;
  const Variable* variables_;
  const char* text_;
  std::size_t length_;
  const FoldedMessage& message_;
  Captures& captures_;
  std::vector<Pending>& pending_;
  Position best_ = kNoPosition;             ///< the best that has matched so far
  std::array<Span, Captures::kMax> taken_;  // NOLINT: written before it is read
};

}  // namespace

CompiledSet::CompiledSet(std::span<FormatSpec* const> specs) : program_(compile_set(specs)) {}

Position CompiledSet::match(const char* text) {
  message_.assign(text);
  captures_.assign(message_.text(), {});
  return Walk(program_, message_, captures_, pending_).run();
}

}  // namespace zem::format
