// Arithmetic byte by byte: the numbers are short, and any length works.
#include "expressions/exprlib/integer.h"

#include <cstring>

namespace exprlib {

namespace {

Byte low_byte(unsigned value)
{
  return static_cast<Byte>(value & 0xFF);
}

} // namespace

bool top_bit(const Byte *a, std::size_t size)
{
  return (a[size - 1] & 0x80) != 0;
}

bool is_zero(const Byte *a, std::size_t size)
{
  for (std::size_t i = 0; i < size; ++i)
    if (a[i] != 0) return false;
  return true;
}

int compare(const Byte *a, const Byte *b, std::size_t size)
{
  for (std::size_t i = size; i > 0; --i)
    if (a[i - 1] != b[i - 1]) return a[i - 1] < b[i - 1] ? -1 : 1;
  return 0;
}

void negate(Byte *out, const Byte *a, std::size_t size)
{
  unsigned carry = 1;
  for (std::size_t i = 0; i < size; ++i) {
    carry += low_byte(~static_cast<unsigned>(a[i]));
    out[i] = low_byte(carry);
    carry >>= 8;
  }
}

void add(Byte *out, const Byte *a, const Byte *b, std::size_t size)
{
  unsigned carry = 0;
  for (std::size_t i = 0; i < size; ++i) {
    carry += static_cast<unsigned>(a[i]) + b[i];
    out[i] = low_byte(carry);
    carry >>= 8;
  }
}

void subtract(Byte *out, const Byte *a, const Byte *b, std::size_t size)
{
  unsigned carry = 1;
  for (std::size_t i = 0; i < size; ++i) {
    carry += a[i] + low_byte(~static_cast<unsigned>(b[i]));
    out[i] = low_byte(carry);
    carry >>= 8;
  }
}

void multiply(Byte *out, const Byte *a, const Byte *b, std::size_t size)
{
  std::memset(out, 0, size);
  for (std::size_t i = 0; i < size; ++i) {
    if (a[i] == 0) continue;
    unsigned carry = 0;
    for (std::size_t j = 0; i + j < size; ++j) {
      carry += out[i + j] + static_cast<unsigned>(a[i]) * b[j];
      out[i + j] = low_byte(carry);
      carry >>= 8;
    }
  }
}

void divide(Byte *quotient, Byte *remainder, const Byte *a, const Byte *b, std::size_t size)
{
  std::memset(quotient, 0, size);
  std::memset(remainder, 0, size);
  for (std::size_t bit = size * 8; bit > 0; --bit) {
    const std::size_t byte = (bit - 1) / 8;
    const unsigned mask = 1U << ((bit - 1) % 8);
    // No bit is lost: before the last step the remainder has fewer bits than the size.
    shift_left(remainder, remainder, size, 1);
    if ((a[byte] & mask) != 0) remainder[0] |= 1;
    if (compare(remainder, b, size) < 0) continue;
    subtract(remainder, remainder, b, size);
    quotient[byte] = low_byte(quotient[byte] | mask);
  }
}

void shift_left(Byte *out, const Byte *a, std::size_t size, std::size_t bits)
{
  const std::size_t bytes = bits / 8;
  const unsigned rest = bits % 8;
  for (std::size_t i = size; i > 0; --i) {
    const std::size_t to = i - 1;
    const unsigned high = to >= bytes ? a[to - bytes] : 0;
    const unsigned low = to > bytes ? a[to - bytes - 1] : 0;
    out[to] = low_byte((high << rest) | (low >> (8 - rest)));
  }
}

void shift_right(Byte *out, const Byte *a, std::size_t size, std::size_t bits, Byte fill)
{
  const std::size_t bytes = bits / 8;
  const unsigned rest = bits % 8;
  for (std::size_t to = 0; to < size; ++to) {
    const unsigned low = bytes < size - to ? a[to + bytes] : fill;
    const unsigned high = bytes < size - to - 1 ? a[to + bytes + 1] : fill;
    out[to] = low_byte((low >> rest) | (high << (8 - rest)));
  }
}

void store(Byte *out, std::size_t size, std::int64_t value)
{
  const auto bits = static_cast<std::uint64_t>(value);
  for (std::size_t i = 0; i < size; ++i)
    out[i] = i < 8 ? static_cast<Byte>(bits >> (8 * i)) : (value < 0 ? Byte{0xFF} : Byte{0});
}

std::uint64_t load(const Byte *a, std::size_t size, std::size_t count, Byte fill)
{
  std::uint64_t value = 0;
  for (std::size_t i = count; i > 0; --i) value = (value << 8) | (i <= size ? a[i - 1] : fill);
  return value;
}

} // namespace exprlib
