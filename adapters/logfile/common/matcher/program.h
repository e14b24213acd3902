/// The compiled form of a set of FORMATs: what the compiler (set_compiler.h) writes and the
/// compiled set (compiled_set.h) follows. See compiled_set.h for a worked example.
///
/// A program is one array of bytes. A step begins with its operation, one byte:
///
///     text       a piece of text: the message goes on with it
///     word, time, star, plus, present
///                number of the variable (4 bytes): its component succeeds here; then a piece of
///                text, which may be empty. (BM_Match: variables and texts take turns, and half the
///                steps are half the mispredicted jumps.)
///     choice     a ChoiceHead, then the first byte of each branch of text, then all branches,
///                those of texts first: several FORMATs part here
///     end        position (4 bytes): a FORMAT ends here
///
/// A piece of text is its length (1 byte) and that many bytes. The next step stands behind it; what
/// a branch of text leads to has its first byte behind it already. Numbers are in the machine's
/// order and lie at any address.
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
  kText,
  kWord,
  kTime,
  kStar,
  kPlus,
  kPresent,  ///< a constant without text: wants a word at the cursor, takes nothing
  kChoice,
  kEnd,
};

/// What steps of variables share: a component and the constant that cuts its words.
struct Variable {
  std::uint32_t width;       ///< 0: none
  std::uint32_t cut;         ///< where the constant's text stands in the program
  std::uint32_t cut_length;  ///< 0: nothing cuts
};

/// One way on.
struct Branch {
  Position first;        ///< the best FORMAT that can be reached
  std::uint32_t target;  ///< where its steps begin
};

struct ChoiceHead {
  Position end;             ///< of the FORMAT that ends here, or kNoPosition
  std::uint32_t texts;      ///< branches by the next byte
  std::uint32_t variables;  ///< branches that begin with a variable
};

struct Program {
  std::vector<char> code;  ///< ends in a block of padding
  std::vector<Variable> variables;
  std::uint32_t start = 0;       ///< where the first step stands
  Position first = kNoPosition;  ///< the best FORMAT of all; kNoPosition: there are no steps
};

/// The number or record at `at`.
template <class T>
[[nodiscard]] T load(const char* at) noexcept {
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

}  // namespace zem::format
