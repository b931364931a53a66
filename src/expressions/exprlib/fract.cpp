// Arithmetic of fractions. Everything runs from the last byte toward the first, as a carry does.
#include "expressions/exprlib/fract.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace exprlib {

namespace {

Byte low_byte(unsigned value)
{
  return static_cast<Byte>(value & 0xFF);
}

void set_greatest(Byte *out, std::size_t size)
{
  std::memset(out, 0xFF, size);
  out[0] = 0x7F;
}

void set_minus_one(Byte *out, std::size_t size)
{
  std::memset(out, 0, size);
  out[0] = 0x80;
}

void two_complement(Byte *bytes, std::size_t size)
{
  unsigned carry = 1;
  for (std::size_t i = size; i > 0; --i) {
    carry += low_byte(~static_cast<unsigned>(bytes[i - 1]));
    bytes[i - 1] = low_byte(carry);
    carry >>= 8;
  }
}

void halve(Byte *bytes, std::size_t size)
{
  unsigned above = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const unsigned byte = bytes[i];
    bytes[i] = low_byte((byte >> 1) | (above << 7));
    above = byte & 1;
  }
}

void add_to(Byte *out, const Byte *a, std::size_t size)
{
  unsigned carry = 0;
  for (std::size_t i = size; i > 0; --i) {
    carry += static_cast<unsigned>(out[i - 1]) + a[i - 1];
    out[i - 1] = low_byte(carry);
    carry >>= 8;
  }
}

/// One more in the last place; false if that reaches the sign.
bool round_up(Byte *bytes, std::size_t size)
{
  for (std::size_t i = size; i > 0; --i)
    if (++bytes[i - 1] != 0) break;
  return (bytes[0] & 0x80) == 0;
}

} // namespace

bool fract_is_negative(Fract a)
{
  return a.size != 0 && a.bytes[0] > 127;
}

bool fract_is_minus_one(Fract a)
{
  return a.size != 0 && a.bytes[0] == 0x80 && is_zero(a.bytes + 1, a.size - 1);
}

int fract_compare(Fract a, Fract b)
{
  for (std::size_t i = 0; i < std::max(a.size, b.size); ++i)
    if (a.at(i) != b.at(i)) return a.at(i) < b.at(i) ? -1 : 1;
  return 0;
}

void fract_add(Byte *out, Fract a, Fract b)
{
  unsigned carry = 0;
  for (std::size_t i = std::max(a.size, b.size); i > 0; --i) {
    carry += static_cast<unsigned>(a.at(i - 1)) + b.at(i - 1);
    out[i - 1] = low_byte(carry);
    carry >>= 8;
  }
}

void fract_subtract(Byte *out, Fract a, Fract b)
{
  unsigned carry = 1;
  for (std::size_t i = std::max(a.size, b.size); i > 0; --i) {
    carry += a.at(i - 1) + low_byte(~static_cast<unsigned>(b.at(i - 1)));
    out[i - 1] = low_byte(carry);
    carry >>= 8;
  }
}

void fract_negate(Byte *out, Fract a)
{
  if (fract_is_minus_one(a)) {
    set_greatest(out, a.size);
    return;
  }
  std::memmove(out, a.bytes, a.size);
  two_complement(out, a.size);
}

// The multiplicand is halved for each bit of the multiplier below the sign, and added where the bit
// is set.
void fract_multiply(Byte *out, Fract a, Fract b, Byte *work)
{
  const std::size_t size = std::max(a.size, b.size);
  if (fract_is_minus_one(a) || fract_is_minus_one(b)) {
    const Fract other = fract_is_minus_one(a) ? b : a;
    std::memset(out, 0, size);
    fract_negate(out, other);
    return;
  }
  const bool negative = fract_is_negative(a) != fract_is_negative(b);
  Byte *multiplicand = work;
  for (std::size_t i = 0; i < size; ++i) multiplicand[i] = a.at(i);
  if (fract_is_negative(a)) two_complement(multiplicand, size);
  Byte *multiplier = work + size;
  for (std::size_t i = 0; i < size; ++i) multiplier[i] = b.at(i);
  if (fract_is_negative(b)) two_complement(multiplier, size);

  std::memset(out, 0, size);
  for (std::size_t bit = 1; bit < size * 8; ++bit) {
    halve(multiplicand, size);
    if ((multiplier[bit / 8] & (0x80U >> (bit % 8))) != 0) add_to(out, multiplicand, size);
  }
  if (negative) two_complement(out, size);
}

bool fract_from_double(Byte *out, std::size_t size, double value)
{
  if (value >= 1.0) {
    set_greatest(out, size);
    return false;
  }
  if (value <= -1.0) {
    set_minus_one(out, size);
    return value == -1.0;
  }
  std::memset(out, 0, size);
  double rest = std::fabs(value) * 128;
  for (std::size_t i = 0; i < size && rest != 0; ++i) {
    const double whole = std::floor(rest);
    out[i] = static_cast<Byte>(whole);
    rest -= whole; // behind the last byte this is what the result can't hold
    if (i + 1 < size) rest *= 256;
  }
  if (rest >= 0.5 && !round_up(out, size)) {
    value < 0 ? set_minus_one(out, size) : set_greatest(out, size);
    return false;
  }
  if (value < 0) two_complement(out, size);
  return true;
}

double fract_to_double(Fract a)
{
  std::array<Byte, 20> low_first{};
  const std::size_t size = std::min(a.size, low_first.size());
  if (size == 0) return 0;
  for (std::size_t i = 0; i < size; ++i) low_first[i] = a.bytes[size - 1 - i];
  const bool negative = fract_is_negative(a);
  if (negative) negate(low_first.data(), low_first.data(), size);
  const double magnitude =
      std::ldexp(unsigned_to_double(low_first.data(), size), -static_cast<int>(size * 8 - 1));
  return negative ? -magnitude : magnitude;
}

// Eight bytes from the first that isn't 0 hold at least 57 bits, more than a double keeps; a bit in
// the last place stands for whatever lies below, so that the one rounding is the right one.
double unsigned_to_double(const Byte *a, std::size_t size)
{
  while (size > 0 && a[size - 1] == 0) --size;
  if (size <= 8) return static_cast<double>(load(a, size, size, 0));
  const std::size_t below = size - 8;
  std::uint64_t top = load(a + below, 8, 8, 0);
  if (!is_zero(a, below)) top |= 1;
  return std::ldexp(static_cast<double>(top), static_cast<int>(below * 8));
}

} // namespace exprlib
