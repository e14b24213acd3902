// A format line such as "%t %s %s[%s]: %s*" becomes the components
//
//   %t  " "  %s  " "  %s  "["  %s  "]:"  " "  %s*
//
// each with a lookahead, the constant that cuts its words: "[" for the third variable, "]:" for the
// fourth, the empty constant for the others. `bind` applies them to the message from left to right,
// once, greedily and without a way back; it is meant to be plainly right.
#include "adapters/logfile/common/FormatSpec.h"

#include <algorithm>
#include <string>
#include <utility>

#include "adapters/logfile/common/ConstComponent.h"
#include "adapters/logfile/common/LogDriver.h"
#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/SysLogMsg.h"
#include "adapters/logfile/common/format_report.h"

using zem::format::is_blank;
using zem::format::Ref;

FormatSpec::FormatSpec(const char* name) : MapSpec(name) {}

/// Parents that nobody else holds go one by one: a chain that destroys itself would go as deep as
/// it is long (LogDriver.ChainOfFormatsIsAsLongAsTheFile).
FormatSpec::~FormatSpec() {
  ldelete();
  Ref<MapSpec> last = std::exchange(parent_, {});
  while (last && last->refcnt() == 1) {
    last = std::exchange(static_cast<FormatSpec&>(*last).parent_, {});
  }
}

void FormatSpec::ldelete() {
  lookaheads_.clear();
  components_.clear();
  ++formatChanges_;
  numVars_ = 0;
}

// Building a format.

namespace {

/// As many as most format lines have at most; behind the last one the array is cut to size.
constexpr std::size_t kUsualPieces = 32;
/// What most formats add to the slots that they inherit.
constexpr std::size_t kUsualOwnSlots = 4;

}  // namespace

void FormatSpec::addFormat(const char* piece) { addComponent(FormatComponent::create(piece)); }

void FormatSpec::addComponent(FormatComponent* component) {
  if (components_.empty()) components_.reserve(kUsualPieces);
  components_.append(component);
  ++formatChanges_;
  if (component->variable() == 0) return;
  if (numVars_ >= kValuesMax) efcn(kReportError, "too many %% variables in format");
  ++numVars_;
}

/// What cuts a component's words is its neighbour or the first constant behind it. It is asked with
/// a list of just these: on the whole line each variable would walk on to the end
/// (FormatSpec.ManyVariablesTakeLinearTime).
void FormatSpec::addLookahead() {
  components_.shrink_to_fit();
  const std::size_t before = lookaheads_.size();
  lookaheads_.resize(before + components_.size());
  FormatComponent* neighbour = nullptr;
  FormatComponent* constant = nullptr;
  for (std::size_t i = components_.size(); i-- > 0;) {
    FormatComponent* const component = components_[i];
    tvList<FormatComponent*> seen(component);
    const bool is_cut = component->variable() != 0;
    if (is_cut && neighbour != nullptr) seen(neighbour);
    if (is_cut && constant != nullptr && constant != neighbour) seen(constant);
    lookaheads_[before + i] = Ref(component->lookahead(seen, 0));
    neighbour = component;
    if (neighbour->isconst() != 0) constant = neighbour;
  }
  ++formatChanges_;
}

tvStrobj FormatSpec::getFmtStr() const {
  std::string format;
  for (const FormatComponent* component : components_) format += component->fmtRep();
  return tvStrobj(format);
}

// Splitting a format string into pieces.

namespace {

/// The columns of the splitter's table.
enum Column { kPercent, kBlank, kDigit, kLetter, kModifier, kOther, kColumns };

Column column_of(char c) {
  if (c == '%') return kPercent;
  if (is_blank(c)) return kBlank;
  if (c >= '0' && c <= '9') return kDigit;
  if (c == 's' || c == 't') return kLetter;
  if (c == '+' || c == '*') return kModifier;
  return kOther;
}

constexpr int kPieceEnds = 7;

constexpr int kNextState[kPieceEnds][kColumns] = {
    // %  blank digit s,t  +,*  other
    {2, 6, 1, 1, 1, 1},  // 0: start of a piece
    {7, 7, 1, 1, 1, 1},  // 1: in a literal word
    {1, 7, 3, 4, 1, 1},  // 2: after the percent sign
    {1, 7, 3, 4, 1, 1},  // 3: after the percent sign and digits
    {7, 7, 7, 7, 5, 7},  // 4: after "%s" or "%t"
    {7, 7, 7, 7, 7, 7},  // 5: after the modifier
    {7, 6, 7, 7, 7, 7},  // 6: in blanks
};

/// A piece that is being collected, in 512 bytes that wrap around: of an over-long piece only the
/// tail behind the last wrap is left.
class PieceBuffer {
 public:
  void put(char c) {
    text_ += c;
    if (text_.size() == kPieceBytes) text_.clear();
  }
  /// The piece; a run of blanks is its first blank. The buffer is empty afterwards.
  std::string take() {
    if (!text_.empty() && is_blank(text_.front())) text_.resize(1);
    return std::exchange(text_, {});
  }

 private:
  static constexpr std::size_t kPieceBytes = 512;
  std::string text_;
};

}  // namespace

int FormatSpec::next(int state, char c) {
  return state < kPieceEnds ? kNextState[state][column_of(c)] : state;
}

void FormatSpec::setFmtStr(const char* format) {
  ldelete();
  PieceBuffer piece;
  int state = 0;
  for (const char* at = format; *at != '\0'; ++at) {
    state = next(state, *at);
    if (state == kPieceEnds) {
      addFormat(piece.take().c_str());
      state = next(0, *at);
    }
    piece.put(*at);
  }
  addFormat(piece.take().c_str());
  addLookahead();
}

// Slots.

void FormatSpec::addFollows(FormatSpec* parent) {
  const Ref<MapSpec> followed(parent);  // it may be the parent that is let go below
  std::vector<MsgMapEntry*> foreign;
  for (MsgMapEntry* entry : slots_) {
    if (entry->owner() != this) foreign.push_back(entry);
  }
  for (MsgMapEntry* entry : foreign) slots_.remove(entry);
  parent_ = followed;
  if (parent != nullptr) inheritSlots(*parent);
}

void FormatSpec::inheritSlots(const MapSpec& parent) {
  slots_.reserve(slots_.size() + parent.slots().size() + kUsualOwnSlots);
  for (MsgMapEntry* entry : parent.slots()) {
    if (getmap(entry->name()) != nullptr) continue;
    if (entry->position() > numVars_) {
      wfcn(kReportPlain, "in %s dropping inherited map `%s $%d'", name(), entry->name(),
           entry->position());
      continue;
    }
    slots_.append(entry);
  }
}

FormatSpec* FormatSpec::verifySlot() {
  std::vector<int> uses(static_cast<std::size_t>(numVars_) + 1);
  for (const MsgMapEntry* entry : slots_) {
    const int position = entry->position();
    if (position >= 1 && position <= numVars_) ++uses[static_cast<std::size_t>(position)];
  }
  for (int k = 1; k <= numVars_; ++k) {
    const int count = uses[static_cast<std::size_t>(k)];
    if (count == 0) wfcn(kReportPlain, "%s does not map $%d in format string", name(), k);
    if (count > 1) wfcn(kReportPlain, "in %s $%d is used by more than one map", name(), k);
  }
  return this;
}

// Matching.

int FormatSpec::bind(SysLogMsg& msg) {
  if (captures_ != nullptr && captures_->belong_to(this)) captures_->give_to(nullptr);
  values_.assign(static_cast<std::size_t>(std::min(numVars_, kValuesMax)), emptyValue());
  tvStrobj surplus = emptyValue();  // what variables beyond the kept ones write to
  msg.reset();
  std::size_t v = 0;
  auto lookahead = lookaheads_.begin();
  for (const FormatComponent* component : components_) {
    if (lookahead == lookaheads_.end()) break;  // the format was never completed
    tvStrobj& value = v < values_.size() ? values_[v] : surplus;
    if (component->matches(msg, lookahead->get(), value) == 0) return 0;
    if (component->variable() != 0) ++v;
    ++lookahead;
  }
  return msg.end() ? 1 : 0;
}

void FormatSpec::setCaptures(zem::format::Captures* captures) {
  if (captures != nullptr && captures_ != nullptr) ++formatChanges_;
  captures_ = captures;
}

const tvStrobj& FormatSpec::emptyValue() {
  static const tvStrobj empty = "";  // shared by all until they are written to
  return empty;
}

const tvStrobj& FormatSpec::bvalue(const VarMapEntry* entry) const {
  return captured(entry->position());
}

const tvStrobj& FormatSpec::captured(int k) const {
  if (k < 1 || k > std::min(numVars_, kValuesMax)) return noValue();
  const auto index = static_cast<std::size_t>(k - 1);
  if (captures_ != nullptr && captures_->belong_to(this)) return captures_->string(index);
  return index < values_.size() ? values_[index] : emptyValue();
}

std::string_view FormatSpec::capturedText(int k) const {
  const bool is_in_captures = captures_ != nullptr && captures_->belong_to(this) && k >= 1 &&
                              k <= std::min(numVars_, kValuesMax);
  return is_in_captures ? captures_->view(static_cast<std::size_t>(k - 1)) : captured(k).view();
}

// Texts.

tvStrobj FormatSpec::aevent() const {
  std::string text = std::string("EVENT ") + name();
  for (const MsgMapEntry* entry : slots_) {
    text.append(" `").append(entry->name()).append("=");
    text.append(entry->svalue(this).getString()).append("'");
  }
  return tvStrobj(text.append(" END"));
}

void FormatSpec::dbgdump() const {
  std::printf("%s numVars %d\n", name(), numVars_);
  for (const FormatComponent* component : components_) component->dbgdump();
  std::printf("\n");
  for (const MsgMapEntry* entry : slots_) entry->dbgdump();
}

void FormatSpec::dbgmatch() const {
  std::printf("matched %s\n", name());
  for (int k = 1; k <= numVars_; ++k) {
    std::printf("\t$%d is `%s'\n", k, captured(k).getString());
  }
}

// Slots that come from the parent are left out when FOLLOWS brings them back; when the set does not
// hold the parent they are spelled out.
void FormatSpec::genFmt(std::FILE* out, LogDriver* set, int /*i*/) const {
  const bool follows = parent_ && set != nullptr && set->getFormatSpec(parent_->name()) != nullptr;
  std::fprintf(out, "FORMAT %s", name());
  if (follows) std::fprintf(out, " FOLLOWS %s", parent_->name());
  std::fputs("\n", out);
  for (const FormatComponent* component : components_) {
    std::fprintf(out, "%s", component->fmtRep());
  }
  std::fputs("\n", out);
  for (const MsgMapEntry* entry : slots_) {
    if (entry->owner() == this || (parent_ && !follows)) {
      std::fprintf(out, "%s\n", entry->fmtMap(this).getString());
    }
  }
  std::fputs("END\n\n", out);
}
