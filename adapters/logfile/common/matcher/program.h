/// The compiled form of a set of FORMATs: what the compiler (set_compiler.h) writes and the
/// compiled set (compiled_set.h) follows. See compiled_set.h for a worked example.
///
/// A program is one array of bytes. A step begins with its operation, one byte:
///
///     literal    length (1 byte), then that many bytes of text: the message goes on with them
///     word, time, star, plus, present
///                number of the variable (4 bytes): its component succeeds here
///     choice     a ChoiceHead, then the first byte of each literal branch, then all branches,
///                those of literals first: several FORMATs part here
///     end        position (4 bytes): a FORMAT ends here
///
/// Literal, variable and present go on with the step behind them; a literal branch has matched its
/// first byte already. Numbers are in the machine's order and lie at any address.
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
  kLiteral,
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
  std::uint32_t literals;   ///< branches by the next byte
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
