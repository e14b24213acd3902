/// A text with fields that each message of a FORMAT fills in: all that its messages have in common
/// in print is worked out once, and a message then is a row of copies.
#pragma once

#include <cstdint>
#include <string_view>
#include <tuple>
#include <vector>

#include "tools/fmt/match_result.h"
#include "tools/fmt/text_buffer.h"

namespace zem::fmt {

/// Appends a text that may hold anything so that nobody misreads it. True when it is plain: all of
/// it stands for itself, as then does any part of it.
using Escape = bool (*)(TextBuffer& out, std::string_view text);

class PrintForm {
 public:
  /// For values that are written by `escape`.
  explicit PrintForm(Escape escape) : escape_(escape) {}

  void add_text(std::string_view text) { text_.append(text); }
  /// A field for the FORMAT's number in the set.
  void add_index();
  /// The value of `source`: a field, or a text when all messages of the FORMAT, of which `result`
  /// is one, have the same.
  void add_value(const format::SlotSource& source, const MatchResult& result);

  /// Appends the text, filled in for the message of `result`. `is_plain` says that this message
  /// is plain, and so is what was captured from it.
  void fill(const MatchResult& result, bool is_plain, TextBuffer& out) const;

  /// An order among forms of one `Escape`; equal forms are filled in alike.
  bool operator<(const PrintForm& other) const;

 private:
  enum class Kind : std::uint8_t {
    kIndex,
    kCaptured,
    kAddress,  ///< of the host that was captured
  };
  struct Field {
    std::size_t text_bytes;  ///< between the field before it and this one
    std::size_t part;        ///< of the captures
    Kind kind;

    bool operator<(const Field& other) const {
      return std::tie(text_bytes, part, kind) < std::tie(other.text_bytes, other.part, other.kind);
    }
  };

  void add_field(Kind kind, std::size_t part);
  void fill_plain(const MatchResult& result, TextBuffer& out) const;
  void fill_escaped(const MatchResult& result, TextBuffer& out) const;

  Escape escape_;
  TextBuffer text_;
  std::size_t text_before_fields_ = 0;
  std::vector<Field> fields_;
};

}  // namespace zem::fmt
