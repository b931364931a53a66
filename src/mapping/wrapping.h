/// @file
/// Signed arithmetic that wraps at the ends of its range. A description may hold any 64-bit number,
/// so offsets and sizes can leave the range on their way; what comes out then is the number modulo
/// 2^64 (2^32 for priorities), on purpose, and never undefined.
#pragma once

#include <cstdint>

namespace tdm {

/// a + b, modulo 2^64.
[[nodiscard]] constexpr int64_t wrap_add(int64_t a, int64_t b)
{
  return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}

/// a - b, modulo 2^64.
[[nodiscard]] constexpr int64_t wrap_sub(int64_t a, int64_t b)
{
  return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}

/// a * b, modulo 2^64.
[[nodiscard]] constexpr int64_t wrap_mul(int64_t a, int64_t b)
{
  return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}

/// a + b, modulo 2^32.
[[nodiscard]] constexpr int32_t wrap_add(int32_t a, int32_t b)
{
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

/// a - b, modulo 2^32.
[[nodiscard]] constexpr int32_t wrap_sub(int32_t a, int32_t b)
{
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

/// a * b, modulo 2^32.
[[nodiscard]] constexpr int32_t wrap_mul(int32_t a, int32_t b)
{
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

} // namespace tdm
