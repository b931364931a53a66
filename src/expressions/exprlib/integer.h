// Integers of any number of bytes, least significant byte first. All wrap at their size. Results
// may stand in the place of an operand, unless a function says otherwise.
#pragma once

#include <cstddef>
#include <cstdint>

namespace exprlib {

using Byte = std::uint8_t;

/// Whether the top bit is set.
bool top_bit(const Byte *a, std::size_t size);
bool is_zero(const Byte *a, std::size_t size);
/// As unsigned numbers: below 0, 0 or above 0.
int compare(const Byte *a, const Byte *b, std::size_t size);

void negate(Byte *out, const Byte *a, std::size_t size);
void add(Byte *out, const Byte *a, const Byte *b, std::size_t size);
void subtract(Byte *out, const Byte *a, const Byte *b, std::size_t size);
/// `out` is neither operand.
void multiply(Byte *out, const Byte *a, const Byte *b, std::size_t size);
/// Of unsigned numbers; the divisor isn't 0, and the results stand in no operand's place.
void divide(Byte *quotient, Byte *remainder, const Byte *a, const Byte *b, std::size_t size);

void shift_left(Byte *out, const Byte *a, std::size_t size, std::size_t bits);
/// `fill`, 0 or 255, comes in from above.
void shift_right(Byte *out, const Byte *a, std::size_t size, std::size_t bits, Byte fill);

/// Stores a number, extended by its sign or cut.
void store(Byte *out, std::size_t size, std::int64_t value);
/// The low `count` bytes, at most eight, extended by `fill`, 0 or 255, where there are fewer.
std::uint64_t load(const Byte *a, std::size_t size, std::size_t count, Byte fill);

} // namespace exprlib
