/// The compiled form of a set of FORMATs: what the compiler (set_compiler.h) writes and the
/// compiled set (compiled_set.h) follows. See compiled_set.h for a worked example.
///
/// A program is one array of bytes. A step is a piece of text, with which the message goes on, and
/// an operation behind it. (BM_Match: texts and operations take turns, and half the steps are half
/// the mispredicted jumps.) A piece of text is its length, one byte, and that many bytes; it may be
/// empty. An operation is one byte and what belongs to it:
///
///     word       nothing: the commonest variable succeeds here
///     cut_word, time, star, plus, present
///                number of the variable (4 bytes): its component succeeds here
///     more       nothing: the text was too long for one piece
///     choice     a ChoiceHead, then for each byte from the lowest to the highest the number of its
///                branch (1 byte), then the targets of the branches (4 bytes): texts part here
///     parting    a PartingHead, then branches that begin with a variable, then what follows a
///                choice: several FORMATs part here, not only with text, or one of them ends
///     end        position (4 bytes): a FORMAT ends here
///
/// What a branch of text leads to has its first byte behind it already. Numbers are in the
/// machine's order and lie at any address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace zem::format {

/// Place of a FORMAT in the order in which the set tries them: the smallest that matches wins.
using Position = std::uint32_t;
inline constexpr Position kNoPosition = std::numeric_limits<Position>::max();

enum class Operation : std::uint8_t {
  kWord,     ///< that nothing cuts, of any width
  kCutWord,  ///< any other
  kTime,
  kStar,
  kPlus,
  kPresent,  ///< a constant without text: wants a word at the cursor, takes nothing
  kMore,     ///< the text goes on
  kChoice,
  kParting,
  kEnd,
};

/// What steps of variables share: a component and the constant that cuts its words.
struct Variable {
  std::uint32_t width;       ///< 0: none
  std::uint32_t cut;         ///< where the constant's text stands in the program
  std::uint32_t cut_length;  ///< 0: nothing cuts
};

/// A branch that begins with a variable.
struct Branch {
  Position first;        ///< the best FORMAT that can be reached
  std::uint32_t target;  ///< where its steps begin
};

struct PartingHead {
  Position end;             ///< of the FORMAT that ends here, or kNoPosition
  std::uint32_t variables;  ///< branches
};

/// Which branch a byte takes is looked up. (BM_Match, 1,000 FORMATs: a vector compare with the
/// first bytes of all branches takes a tenth longer, since the next step waits for the answer.)
struct ChoiceHead {
  std::uint8_t lowest;  ///< byte that has a branch
  std::uint8_t bytes;   ///< from the lowest to the highest; 0: no branches
};
inline constexpr std::uint8_t kNoBranch = 255;

struct Program {
  std::vector<char> code;  ///< ends in a block of padding
  std::vector<Variable> variables;
  std::uint32_t start = 0;      ///< where the first step stands
  std::size_t pending_max = 0;  ///< branches that wait at a time, at most
  std::size_t values_max = 0;   ///< values on a path, at most
};

/// The number or record at `at`.
template <class T>
[[nodiscard]] T load(const char* at) noexcept {
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

}  // namespace zem::format
