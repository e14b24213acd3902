/// Sixteen bytes looked at in one step, each answer a mask with one bit a byte, the first byte in
/// bit 0. Everything that searches or compares text in this room is built on it; whoever calls sees
/// to it that sixteen bytes may be read. (BM_Match: a loop over single bytes costs twice the time.)
#pragma once

#include <algorithm>
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
  /// Sixteen times `c`.
  explicit ByteBlock(char c) noexcept : bytes_(_mm_set1_epi8(c)) {}
  /// The bytes of two numbers, as the machine would store them.
  ByteBlock(std::uint64_t first, std::uint64_t last) noexcept
      : bytes_(_mm_set_epi64x(static_cast<std::int64_t>(last), static_cast<std::int64_t>(first))) {}

  void store(char* at) const noexcept { _mm_storeu_si128(reinterpret_cast<__m128i*>(at), bytes_); }
  [[nodiscard]] ByteMask equal(const ByteBlock& other) const noexcept {
    return static_cast<ByteMask>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes_, other.bytes_)));
  }
  [[nodiscard]] ByteMask equal(char c) const noexcept { return equal(ByteBlock(c)); }
  /// Bytes from `low` to `high`, both below 127; bytes above 127 are never among them.
  [[nodiscard]] ByteMask between(char low, char high) const noexcept {
    const __m128i above = _mm_cmpgt_epi8(bytes_, _mm_set1_epi8(static_cast<char>(low - 1)));
    const __m128i below = _mm_cmplt_epi8(bytes_, _mm_set1_epi8(static_cast<char>(high + 1)));
    return static_cast<ByteMask>(_mm_movemask_epi8(_mm_and_si128(above, below)));
  }
  /// Each byte the smaller of the two, both taken as unsigned.
  [[nodiscard]] ByteBlock smaller(const ByteBlock& other) const noexcept {
    return ByteBlock(_mm_min_epu8(bytes_, other.bytes_));
  }
  /// Each bit that either has.
  [[nodiscard]] ByteBlock operator|(const ByteBlock& other) const noexcept {
    return ByteBlock(_mm_or_si128(bytes_, other.bytes_));
  }
  /// Each bit that only one has.
  [[nodiscard]] ByteBlock operator^(const ByteBlock& other) const noexcept {
    return ByteBlock(_mm_xor_si128(bytes_, other.bytes_));
  }

 private:
  explicit ByteBlock(__m128i bytes) noexcept : bytes_(bytes) {}

  __m128i bytes_;
};

#else

class ByteBlock {
 public:
  explicit ByteBlock(const char* at) noexcept { std::memcpy(bytes_.data(), at, kBlockBytes); }
  /// Sixteen times `c`.
  explicit ByteBlock(char c) noexcept { bytes_.fill(static_cast<unsigned char>(c)); }
  /// The bytes of two numbers, as the machine would store them.
  ByteBlock(std::uint64_t first, std::uint64_t last) noexcept {
    std::memcpy(bytes_.data(), &first, sizeof first);
    std::memcpy(bytes_.data() + sizeof first, &last, sizeof last);
  }

  void store(char* at) const noexcept { std::memcpy(at, bytes_.data(), kBlockBytes); }
  [[nodiscard]] ByteMask equal(const ByteBlock& other) const noexcept {
    ByteMask bits = 0;
    for (std::size_t i = 0; i < kBlockBytes; ++i) {
      bits |= ByteMask{bytes_[i] == other.bytes_[i]} << i;
    }
    return bits;
  }
  [[nodiscard]] ByteMask equal(char c) const noexcept { return equal(ByteBlock(c)); }
  /// Bytes from `low` to `high`, both below 127; bytes above 127 are never among them.
  [[nodiscard]] ByteMask between(char low, char high) const noexcept {
    ByteMask bits = 0;
    for (std::size_t i = 0; i < kBlockBytes; ++i) {
      bits |= ByteMask{bytes_[i] >= static_cast<unsigned char>(low) &&
                       bytes_[i] <= static_cast<unsigned char>(high)}
              << i;
    }
    return bits;
  }
  /// Each byte the smaller of the two, both taken as unsigned.
  [[nodiscard]] ByteBlock smaller(const ByteBlock& other) const noexcept {
    return combined(other, [](unsigned a, unsigned b) { return std::min(a, b); });
  }
  /// Each bit that either has.
  [[nodiscard]] ByteBlock operator|(const ByteBlock& other) const noexcept {
    return combined(other, [](unsigned a, unsigned b) { return a | b; });
  }
  /// Each bit that only one has.
  [[nodiscard]] ByteBlock operator^(const ByteBlock& other) const noexcept {
    return combined(other, [](unsigned a, unsigned b) { return a ^ b; });
  }

 private:
  template <class Join>
  [[nodiscard]] ByteBlock combined(const ByteBlock& other, Join join) const noexcept {
    ByteBlock result = *this;
    for (std::size_t i = 0; i < kBlockBytes; ++i) {
      result.bytes_[i] = static_cast<unsigned char>(join(bytes_[i], other.bytes_[i]));
    }
    return result;
  }

  std::array<unsigned char, kBlockBytes> bytes_;
};

#endif

/// Number of the first byte in a mask that is not empty.
[[nodiscard]] inline std::size_t first_in(ByteMask mask) noexcept {
  return static_cast<unsigned>(__builtin_ctz(mask));  // countr_zero asks whether it is empty
}

/// True when the first `count` bytes are the same. Reads whole blocks of both sides, but none
/// behind the first difference.
[[nodiscard]] inline bool same_bytes(const char* a, const char* b, std::size_t count) noexcept {
  for (; count > kBlockBytes; count -= kBlockBytes, a += kBlockBytes, b += kBlockBytes) {
    if (ByteBlock(a).equal(ByteBlock(b)) != first_bytes(kBlockBytes)) return false;
  }
  return first_in(~ByteBlock(a).equal(ByteBlock(b))) >= count;
}

}  // namespace zem::format
