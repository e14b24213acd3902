/// The classes of a class file as they are carried out on an event that is a view: no list, no
/// record, nothing looked up or quoted that was known when the file was read. The class
///
///   CLASS Su_Failed
///     SELECT 1: ATTR(=,"_event_id"), VALUE(=,"17");  2: ATTR(=,"user");  3: ATTR(=,"tty");
///     MAP severity = WARNING;  user = $V2;  msg = PRINTF("su on %s failed", $V3);
///   END
///
/// becomes
///
///   a selection   _event_id, user and tty must be there; shared by all classes that want these
///   a name        "Su_Failed;"
///   steps         "severity=WARNING;user="   and the value of 2
///                 ";msg="
///                 a group: "su on " and the value of 3, " failed", quoted as one text
///                 ";END\n"
///
/// A selection knows where its attributes stand in an event of the layout that it met last: mostly
/// it has nothing to look for. Equal pieces of text are stored once, and so are equal steps: among
/// 10,000 classes that are nearly all in no cache, only the name is not met again and again. What
/// is left for each event is to copy texts, with quotes where they need them (BM_Text beside
/// BM_TextPlain: a thirtieth of the time).
///
/// The plans answer only where the plain evaluation (kernel.h) is known to succeed without a
/// message. A class with FETCH items, a test that may report something, a mistaken PRINTF, a
/// variable that is never set: kUnknown is the answer where such a class has its turn, and the
/// plain evaluation decides.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/libzemad/event_text.h"
#include "adapters/libzemad/event_view.h"
#include "adapters/libzemad/printf_conversion.h"

namespace zem::kernel {

/// What becomes of an event.
enum class Outcome {
  kText,     ///< it is sent
  kDropped,  ///< it is not
  kUnknown,  ///< ask the plain evaluation
};

// The compiled form -------------------------------------------------------------------------------

enum class NameTest : std::uint8_t { kEqual, kPrefix, kSuffix };
enum class ValueTest : std::uint8_t { kNone, kEqual, kPrefix, kSuffix, kContains, kNever };

/// One SELECT item; the texts belong to the list of constants.
struct ItemTest {
  NameTest name_test;
  ValueTest value_test;
  std::string_view name;
  std::string_view value;
};

/// The SELECT items of one or more classes.
class Selection {
 public:
  explicit Selection(std::vector<ItemTest> items);

  /// True when every item holds for the event.
  [[nodiscard]] bool holds(const EventView& event);
  /// Where in such an event the attribute of item `item`, counting from 0, stands.
  [[nodiscard]] std::size_t place(std::size_t item) const { return places_[item]; }

 private:
  void find_places(const EventLayout& layout);

  std::vector<ItemTest> items_;
  std::vector<std::uint32_t> tested_;  ///< the items with a test of the value
  std::uint32_t layout_ = 0;           ///< the layout met last: what follows is true of it
  bool is_complete_ = false;           ///< it has an attribute for every item
  std::vector<std::uint32_t> places_;
};

/// What a piece of an event text shows of an item's attribute.
enum class Part : std::uint8_t { kNothing, kName, kKey, kValue, kGroup };

/// A text, and behind it what `part` says, quoted where needed. Or, for kGroup, pieces.
struct Step {
  std::uint32_t begin;   ///< of the text, or the first piece
  std::uint16_t length;  ///< of the text, or how many pieces
  Part part;
  std::uint8_t item;
};

/// A part of a PRINTF: a text, and behind it what `part` says, converted.
struct Piece {
  std::uint32_t begin;
  std::uint16_t length;
  Part part;
  std::uint8_t item;
  Conversion conversion;
};

struct Plan {
  enum class Kind : std::uint8_t {
    kUnknown,   ///< whether it is selected
    kSelects,   ///< but what its slots are is not known
    kDiscards,  ///< every event that it selects
    kWrites,
  };
  Kind kind = Kind::kUnknown;
  std::uint16_t name_length = 0;
  std::uint32_t name_begin = 0;
  std::uint32_t selection = 0;
  std::uint32_t first_step = 0;
  std::uint32_t step_count = 0;
};

// ---------------------------------------------------------------------------------------------------

class ClassPlans {
 public:
  /// Whether the class at `position` takes the event. False also for one whose plan is unknown.
  enum class Fit { kNo, kYes, kUnknown };

  /// `position` is one of those that the index (class_index.h) names for the event.
  [[nodiscard]] Fit try_class(std::size_t position, const EventView& event);
  /// What the class, which has taken the event, makes of it; the event text in `text`, whatever its
  /// length.
  [[nodiscard]] Outcome carry_out(std::size_t position, const EventView& event, EventText& text);

 private:
  friend class PlanCompiler;

  [[nodiscard]] std::string_view group_text(const Step& group, const Selection& selection,
                                            const EventView& event);
  [[nodiscard]] std::string_view text_of(std::uint32_t begin, std::size_t length) const {
    return {texts_.data() + begin, length};
  }

  std::vector<Plan> plans_;  ///< by position of the class
  std::vector<Selection> selections_;
  std::vector<Step> steps_;
  std::vector<Piece> pieces_;
  std::string texts_;  ///< and EventText::kBlockBytes more
  std::string group_;  ///< the last one that was written
};

}  // namespace zem::kernel
