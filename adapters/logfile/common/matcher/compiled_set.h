/// All FORMATs of a set in one structure, so that a message is gone through about once, however
/// many there are. The answer is that of `FormatSpec::bind` asked of one FORMAT after the other:
/// the same winner and the same captured values. Knows positions, not FORMATs; it keeps nothing of
/// them.
///
/// The FORMATs form a tree in which equal beginnings are one path. Its edges are pieces of text, in
/// which a blank stands for a run of blanks, and variables; a variable and the constant that cuts
/// its words are one thing, since the same "%s" takes different words before different constants.
/// Text branches by its next byte. These four, tried from 0 on,
///
///     0  %t %s su: %s to root        1  %t %s su: %s to %s
///     2  %t %s sshd[%s]: closed      3  %t %s %s*
///
/// become
///
///     %t " " %s " " -+-- "s" -+-- "u: " %s " to " -+-- "root" . 0
///                    |        |                    +-- %s ..... 1
///                    |        +-- "shd[" %s{]:} "]: closed" ... 2
///                    +-- %s* .................................. 3
///
/// A message takes at most one branch of text at each parting, and every variable branch. A
/// variable branch knows the best position below it and is left out when a better one has matched:
/// "su: bob to root" ends at 0 and leaves 1 and 3 alone. No edge is entered twice, since only one
/// path leads to it; nothing is ever taken back, since no FORMAT does that.
///
/// What makes it fast is that little memory is touched (program.h: a run of steps without a parting
/// is one block of bytes; past 1,000 FORMATs cache misses are the cost, BM_Match/10000), that
/// little is decided on the way, since a decision that is foreseen wrongly costs as much as fifty
/// instructions, that a message is only copied beforehand (plain_message.h), and that values are
/// places in the message until somebody reads them (captures.h).
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "adapters/logfile/common/matcher/captures.h"
#include "adapters/logfile/common/matcher/plain_message.h"
#include "adapters/logfile/common/matcher/program.h"

class FormatSpec;

namespace zem::format {

/// A place in the program and in the message.
struct Place {
  const char* step;
  const char* cursor;
  std::size_t captured;  ///< values so far
};

/// A branch that has not been entered yet.
struct Pending {
  Place place;
  Position first;  ///< the best FORMAT that can be reached
};

class CompiledSet {
 public:
  /// Compiles `specs`, the first of which is tried first. They are not needed afterwards.
  explicit CompiledSet(std::span<FormatSpec* const> specs);
  CompiledSet(const CompiledSet&) = delete;
  CompiledSet& operator=(const CompiledSet&) = delete;

  /// Position of the first FORMAT that matches the whole of `text` (up to its first NUL), or
  /// kNoPosition. Its values can be read through `captures` until the next call, also when `text`
  /// is gone; after kNoPosition there are none. Allocates only for a message longer than all
  /// before, or with more branches to try.
  [[nodiscard]] Position match(std::string_view text);
  [[nodiscard]] Captures& captures() noexcept { return captures_; }

 private:
  Program program_;
  PlainMessage message_;
  Captures captures_;
  std::vector<Pending> pending_;  ///< room for all that can wait at a time
};

}  // namespace zem::format
