// Hash and comparison of short texts such as names, eight bytes at a time: they are taken for
// nearly every token that is read and every question by name, and most texts are so short that a
// call or a loop over characters would cost more than all the rest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tdm {

[[nodiscard]] inline std::uint64_t load_bytes(const char *bytes, std::size_t count)
{
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  return word;
}

/// Up to eight bytes, which make one number for each text of that length, without a call and
/// without reading past either end.
[[nodiscard]] inline std::uint64_t load_short(const char *bytes, std::size_t count)
{
  if (count >= 4) return load_bytes(bytes, 4) << 32 | load_bytes(bytes + count - 4, 4);
  if (count == 0) return 0;
  const auto byte = [bytes](std::size_t i) {
    return std::uint64_t{static_cast<unsigned char>(bytes[i])};
  };
  return byte(0) << 16 | byte(count / 2) << 8 | byte(count - 1);
}

[[nodiscard]] inline std::uint64_t mix_hash(std::uint64_t h, std::uint64_t word)
{
  h = (h ^ word) * 0x9E3779B97F4A7C15;
  return h ^ h >> 32;
}

/// Of a text of more than eight bytes the last eight are taken whole, whatever of them was taken
/// before.
[[nodiscard]] inline std::uint32_t text_hash(std::string_view text)
{
  const char *bytes = text.data();
  const std::size_t length = text.size();
  if (length <= 8) return static_cast<std::uint32_t>(mix_hash(length, load_short(bytes, length)));
  std::uint64_t h = length;
  for (std::size_t i = 0; i + 8 < length; i += 8) h = mix_hash(h, load_bytes(bytes + i, 8));
  return static_cast<std::uint32_t>(mix_hash(h, load_bytes(bytes + length - 8, 8)));
}

/// Of two texts of one length.
[[nodiscard]] inline bool same_bytes(const char *a, const char *b, std::size_t length)
{
  if (length <= 8) return load_short(a, length) == load_short(b, length);
  for (std::size_t i = 0; i + 8 < length; i += 8)
    if (load_bytes(a + i, 8) != load_bytes(b + i, 8)) return false;
  return load_bytes(a + length - 8, 8) == load_bytes(b + length - 8, 8);
}

} // namespace tdm
