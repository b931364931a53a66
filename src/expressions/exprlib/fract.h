// Fixed-point fractions: bytes, most significant first, two's complement; the value is the signed
// sum of byte[i] / (128 * 256^i), from -1.0 up to just under +1.0. Where two lengths meet, the
// shorter number goes on with zero bytes.
#pragma once

#include "expressions/exprlib/integer.h"

namespace exprlib {

struct Fract {
  const Byte *bytes;
  std::size_t size;

  /// Byte number i, also behind the end.
  [[nodiscard]] Byte at(std::size_t i) const { return i < size ? bytes[i] : Byte{0}; }
};

bool fract_is_negative(Fract a);
/// Exactly -1.0, which has no positive counterpart.
bool fract_is_minus_one(Fract a);
/// The order of numbers of equal sign: below 0, 0 or above 0.
int fract_compare(Fract a, Fract b);

// `out` has the size of the longer operand, and is neither of them where two are given.
void fract_add(Byte *out, Fract a, Fract b);
void fract_subtract(Byte *out, Fract a, Fract b);
/// Not for two operands that are both -1.0. Each partial product is cut to the size. `work` is room
/// for two such numbers.
void fract_multiply(Byte *out, Fract a, Fract b, Byte *work);
/// -1.0 becomes the greatest number.
void fract_negate(Byte *out, Fract a);

/// The number in `size` bytes; false if it had to be saturated.
bool fract_from_double(Byte *out, std::size_t size, double value);
/// From the first 20 bytes.
double fract_to_double(Fract a);

/// The nearest double of an unsigned number, least significant byte first.
double unsigned_to_double(const Byte *a, std::size_t size);

} // namespace exprlib
