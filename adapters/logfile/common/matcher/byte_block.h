/// Sixteen bytes looked at in one step, each answer a mask with one bit a byte, the first byte in
/// bit 0. Everything that searches or compares text in this room is built on it; whoever calls sees
/// to it that sixteen bytes may be read. (BM_Match: a loop over single bytes costs twice the time.)
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zem::format {

inline constexpr std::size_t kBlockBytes = 16;

using ByteMask = std::uint32_t;

/// The mask of the first `count` bytes.
[[nodiscard]] constexpr ByteMask first_bytes(std::size_t count) noexcept {
  return count < kBlockBytes ? (ByteMask{1} << count) - 1 : 0xFFFF;
}

#ifdef __SSE2__

class ByteBlock {
 public:
  explicit ByteBlock(const char* at) noexcept
      : bytes_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at))) {}

  [[nodiscard]] ByteMask equal(const ByteBlock& other) const noexcept {
    return mask(_mm_cmpeq_epi8(bytes_, other.bytes_));
  }
  [[nodiscard]] ByteMask equal(char c) const noexcept {
    return mask(_mm_cmpeq_epi8(bytes_, _mm_set1_epi8(c)));
  }
  /// Bytes from `low` to `high`, both below 127; bytes above 127 are never among them.
  [[nodiscard]] ByteMask between(char low, char high) const noexcept {
    const __m128i above = _mm_cmpgt_epi8(bytes_, _mm_set1_epi8(static_cast<char>(low - 1)));
    const __m128i below = _mm_cmplt_epi8(bytes_, _mm_set1_epi8(static_cast<char>(high + 1)));
    return mask(_mm_and_si128(above, below));
  }

 private:
  [[nodiscard]] static ByteMask mask(__m128i bytes) noexcept {
    return static_cast<ByteMask>(_mm_movemask_epi8(bytes));
  }

  __m128i bytes_;
};

#else

class ByteBlock {
 public:
  explicit ByteBlock(const char* at) noexcept { std::memcpy(bytes_.data(), at, kBlockBytes); }

  [[nodiscard]] ByteMask equal(const ByteBlock& other) const noexcept {
    return mask([&](std::size_t i) { return bytes_[i] == other.bytes_[i]; });
  }
  [[nodiscard]] ByteMask equal(char c) const noexcept {
    return mask([&](std::size_t i) { return bytes_[i] == static_cast<signed char>(c); });
  }
  /// Bytes from `low` to `high`, both below 127; bytes above 127 are never among them.
  [[nodiscard]] ByteMask between(char low, char high) const noexcept {
    return mask([&](std::size_t i) { return bytes_[i] >= low && bytes_[i] <= high; });
  }

 private:
  template <class Holds>
  [[nodiscard]] static ByteMask mask(Holds holds) noexcept {
    ByteMask bits = 0;
    for (std::size_t i = 0; i < kBlockBytes; ++i) bits |= ByteMask{holds(i)} << i;
    return bits;
  }

  std::array<signed char, kBlockBytes> bytes_;
};

#endif

/// Number of the first byte in a mask that is not empty.
[[nodiscard]] inline std::size_t first_in(ByteMask mask) noexcept {
  return static_cast<std::size_t>(std::countr_zero(mask));
}

/// True when the first `count` bytes are the same. Reads whole blocks of both sides, but none
/// behind the first difference.
[[nodiscard]] inline bool same_bytes(const char* a, const char* b, std::size_t count) noexcept {
  for (; count > kBlockBytes; count -= kBlockBytes, a += kBlockBytes, b += kBlockBytes) {
    if (ByteBlock(a).equal(ByteBlock(b)) != first_bytes(kBlockBytes)) return false;
  }
  return (~ByteBlock(a).equal(ByteBlock(b)) & first_bytes(count)) == 0;
}

}  // namespace zem::format
