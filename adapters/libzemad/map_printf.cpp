/// PRINTF of a MAP line. Every conversion is a string conversion, each value takes the next one,
/// and no mistake in the format loses the text:
///
///   "%-5s|%.1s"  with  ab, xyz   "ab   |x"
///   "%d items"   with  7         "7 items"    reported: Format not %s
///   "x"          with  7         "7"          the x is taken for the conversion letter
///   "%s and %s"  with  a         "a and %s"
#include <cstring>
#include <string_view>

#include "adapters/libzemad/error.h"
#include "adapters/libzemad/map.h"
#include "adapters/libzemad/printf_conversion.h"

namespace {

using zem::kernel::Conversion;
using zem::util::HeapText;

constexpr zem::log::Source kSource{zem::log::kMap, "map"};
constexpr int kNoArgument = 22;
constexpr int kBadFormat = 51;
constexpr int kNotGrown = 98;
constexpr int kNoMemory = 99;

constexpr std::size_t kFirstBytes = 513;
/// A longer text comes from a mistaken width: it is refused before it eats the memory.
constexpr std::size_t kTextBytesMax = 16UL * 1024 * 1024;

void complain(int number, const char* text) {
  zem::log::fail(kSource, zem::log::kMajor, number, text);
}

// The text ----------------------------------------------------------------------------------------

/// A growing text in the heap of the records, which becomes a slot's value. Every operation that
/// can fail reports it and returns false.
class PrintfText {
 public:
  [[nodiscard]] bool create() {
    text_.reset(static_cast<char*>(zem::util::allocate(kFirstBytes)));
    if (!text_) complain(kNoMemory, "Malloc failure");
    return text_ != nullptr;
  }

  [[nodiscard]] bool append(std::string_view piece) {
    if (!make_room(piece.size())) return false;
    piece.copy(text_.get() + size_, piece.size());
    end_at(size_ + piece.size());
    return true;
  }

  [[nodiscard]] bool append(std::size_t count, char fill) {
    if (!make_room(count)) return false;
    std::memset(text_.get() + size_, fill, count);
    end_at(size_ + count);
    return true;
  }

  [[nodiscard]] char* release() { return text_.release(); }

 private:
  bool make_room(std::size_t extra) {
    const std::size_t needed = size_ + extra + 1;
    if (needed <= bytes_) return true;
    void* grown = needed > kTextBytesMax + 1 ? nullptr : zem::util::reallocate(text_.get(), needed);
    if (grown == nullptr) {
      complain(kNotGrown, "Realloc failure");
      return false;
    }
    static_cast<void>(text_.release());
    text_.reset(static_cast<char*>(grown));
    bytes_ = needed;
    return true;
  }

  void end_at(std::size_t size) {
    size_ = size;
    text_.get()[size_] = '\0';
  }

  HeapText text_;
  std::size_t size_ = 0;
  std::size_t bytes_ = kFirstBytes;
};

/// The format, consumed from left to right.
struct Cursor {
  bool is_set;  ///< not for a plain line, and no longer after a trailing %
  std::string_view rest;
};

/// Copies what stands before the next % and steps over the %.
bool copy_to_conversion(Cursor& cursor, PrintfText& text) {
  if (!cursor.is_set) return true;
  const std::size_t percent = cursor.rest.find('%');
  if (percent == std::string_view::npos) {
    complain(kBadFormat, "Too much arguments in format");
    return true;
  }
  if (!text.append(cursor.rest.substr(0, percent))) return false;
  cursor.rest.remove_prefix(percent + 1);
  if (cursor.rest.empty()) {
    complain(kBadFormat, "Format ended in %");
    cursor.is_set = false;
  }
  return true;
}

bool append_converted(PrintfText& text, std::string_view value, const Conversion& conversion) {
  const std::string_view cut = conversion.cut(value);
  const std::size_t fill = conversion.fill_beside(cut);
  if (conversion.is_left_justified) return text.append(cut) && text.append(fill, conversion.fill);
  return text.append(fill, conversion.fill) && text.append(cut);
}

/// False when memory is short; a mistake in the format is reported and passed over.
bool append_value(PrintfText& text, Cursor& cursor, const AttributeEntry* value) {
  if (value == nullptr) {
    complain(kNoArgument, "Arguments failure");
    return true;
  }
  if (!copy_to_conversion(cursor, text)) return false;
  const char* shown = ZEMAD_AttributeEntryValueToString(value);
  if (shown == nullptr) {
    complain(kBadFormat, "EvalMapPrintAttr failure");
    return true;
  }
  const Conversion conversion =
      cursor.is_set ? zem::kernel::take_conversion(cursor.rest) : Conversion();
  if (!conversion.is_string) complain(kBadFormat, "Format not %s");
  return append_converted(text, shown, conversion);
}

}  // namespace

char* ZEMAD_EvalMapPrintf(const char* format, int count, const SL_List* values) {
  zem::log::trace(kSource, "Entered Eval_Map_Printf", zem::log::kNormal);
  if (values == nullptr) {
    zem::log::trace(kSource, "ZEMAD_EvalMapFormat: arguments NULL");
    return nullptr;
  }
  PrintfText text;
  if (!text.create()) return nullptr;
  Cursor cursor{format != nullptr, format == nullptr ? std::string_view() : format};
  for (int i = 0; i < count; ++i) {
    const auto* value = static_cast<const AttributeEntry*>(SL_GetPos(values, i));
    if (!append_value(text, cursor, value)) return nullptr;
  }
  if (cursor.is_set && !text.append(cursor.rest)) return nullptr;
  zem::log::trace(kSource, "Finished Eval_Map_Printf", zem::log::kNormal);
  return text.release();
}
