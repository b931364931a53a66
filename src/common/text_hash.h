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

/// The last eight bytes, or all of a text that has fewer, without a call and without reading past
/// either end. Texts of one length with equal tails differ in front of them, if at all.
[[nodiscard, gnu::always_inline]] inline std::uint64_t load_tail(const char *bytes,
                                                                 std::size_t count)
{
  if (count >= 8) return load_bytes(bytes + count - 8, 8);
  if (count >= 4) return load_bytes(bytes, 4) << 32 | load_bytes(bytes + count - 4, 4);
  if (count == 0) return 0;
  const auto byte = [bytes](std::size_t i) {
    return std::uint64_t{static_cast<unsigned char>(bytes[i])};
  };
  return byte(0) << 16 | byte(count / 2) << 8 | byte(count - 1);
}

/// Both halves of the product, so that the low bits, by which tables are searched, depend on all
/// bits of the word: names that are numbered differ in its highest byte.
[[nodiscard]] inline std::uint64_t mix_hash(std::uint64_t h, std::uint64_t word)
{
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(h ^ word) * 0x9E3779B97F4A7C15;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

[[nodiscard]] inline std::uint64_t text_hash(std::string_view text)
{
  std::uint64_t h = text.size();
  if (text.size() > 8) {
    std::size_t i = 0;
    do {
      h = mix_hash(h, load_bytes(text.data() + i, 8));
      i += 8;
    } while (i + 8 < text.size());
  }
  return mix_hash(h, load_tail(text.data(), text.size()));
}

/// Whether load_tail() gives the same of two texts of one length.
[[nodiscard, gnu::always_inline]] inline bool same_tail(const char *a, const char *b,
                                                        std::size_t length)
{
  const auto same = [a, b](std::size_t at, std::size_t count) {
    return load_bytes(a + at, count) == load_bytes(b + at, count);
  };
  if (length >= 8) return same(length - 8, 8);
  if (length >= 4) return same(length - 4, 4) && same(0, 4);
  return length == 0 || (same(length - 1, 1) && same(0, 1) && same(length / 2, 1));
}

/// Of two texts of one length. Names that aren't equal mostly differ at their end.
[[nodiscard]] inline bool same_bytes(const char *a, const char *b, std::size_t length)
{
  if (!same_tail(a, b, length)) return false;
  if (length <= 8) return true;
  std::size_t i = 0;
  do {
    if (load_bytes(a + i, 8) != load_bytes(b + i, 8)) return false;
    i += 8;
  } while (i + 8 < length);
  return true;
}

} // namespace tdm
