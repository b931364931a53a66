// c-con: the integers that #if computes with, and the constants that denote them.
//
// An integer has 80 bits: a 64-bit value with room above it, so that a sum or product is exact
// until it is narrowed. Nothing here reads tokens or knows operators by their tokens.
#pragma once

#include <cstdint>

#include "preprocessor/pp_token.h"

/// An 80-bit two's complement number; arithmetic wraps.
class TDMWideValue {
public:
  constexpr TDMWideValue() = default;
  constexpr TDMWideValue(std::int64_t value) : value_(value) {}

  [[nodiscard]] constexpr bool is_zero() const { return value_ == 0; }

  friend constexpr TDMWideValue operator+(TDMWideValue a, TDMWideValue b)
  {
    return wrap(bits(a) + bits(b));
  }
  friend constexpr TDMWideValue operator-(TDMWideValue a, TDMWideValue b)
  {
    return wrap(bits(a) - bits(b));
  }
  friend constexpr TDMWideValue operator*(TDMWideValue a, TDMWideValue b)
  {
    return wrap(bits(a) * bits(b));
  }
  /// Truncates towards zero; b must not be zero. The same for the remainder, which takes a's sign.
  friend constexpr TDMWideValue operator/(TDMWideValue a, TDMWideValue b)
  {
    return wrap(static_cast<Bits>(a.value_ / b.value_));
  }
  friend constexpr TDMWideValue operator%(TDMWideValue a, TDMWideValue b)
  {
    return wrap(static_cast<Bits>(a.value_ % b.value_));
  }
  friend constexpr TDMWideValue operator&(TDMWideValue a, TDMWideValue b)
  {
    return wrap(bits(a) & bits(b));
  }
  friend constexpr TDMWideValue operator|(TDMWideValue a, TDMWideValue b)
  {
    return wrap(bits(a) | bits(b));
  }
  friend constexpr TDMWideValue operator^(TDMWideValue a, TDMWideValue b)
  {
    return wrap(bits(a) ^ bits(b));
  }
  constexpr TDMWideValue operator~() const { return wrap(~bits(*this)); }

  /// The count is the low 16 bits of b; from 80 up nothing is shifted. `>>` keeps the sign.
  friend constexpr TDMWideValue operator<<(TDMWideValue a, TDMWideValue b)
  {
    return count(b) < width ? wrap(bits(a) << count(b)) : a;
  }
  friend constexpr TDMWideValue operator>>(TDMWideValue a, TDMWideValue b)
  {
    return count(b) < width ? wrap(static_cast<Bits>(a.value_ >> count(b))) : a;
  }

  friend constexpr bool operator==(TDMWideValue a, TDMWideValue b) { return a.value_ == b.value_; }
  friend constexpr bool operator<(TDMWideValue a, TDMWideValue b) { return a.value_ < b.value_; }

  /// Keeps the low 64 bits; those above become copies of bit 63, or 0 for an unsigned value.
  [[nodiscard]] constexpr TDMWideValue narrowed(bool as_unsigned) const
  {
    const auto low = static_cast<std::uint64_t>(bits(*this));
    return as_unsigned ? wrap(low) : TDMWideValue(static_cast<std::int64_t>(low));
  }

  /// Multiplies by the base and adds the digit; false if the product needs more than 79 bits.
  [[nodiscard]] constexpr bool append_digit(unsigned base, unsigned digit)
  {
    const Bits product = bits(*this) * base;
    *this = wrap(product + digit);
    return product >> (width - 1) == 0;
  }

private:
  __extension__ using Value = __int128;
  __extension__ using Bits = unsigned __int128;
  static constexpr unsigned width = 80;

  static constexpr Bits bits(TDMWideValue a) { return static_cast<Bits>(a.value_); }
  static constexpr unsigned count(TDMWideValue b)
  {
    return static_cast<std::uint16_t>(static_cast<std::uint64_t>(bits(b)));
  }

  // The low 80 bits with their sign.
  static constexpr TDMWideValue wrap(Bits bits)
  {
    constexpr unsigned unused = 128 - width;
    TDMWideValue result;
    result.value_ = static_cast<Value>(bits << unused) >> unused;
    return result;
  }

  Value value_ = 0;
};

namespace tdm {

/// The value of an integer constant, narrowed; a suffix u sets the flag. Faults are reported.
[[nodiscard]] TDMWideValue integer_constant(const PpToken &token, bool &is_unsigned);

/// The value of a character constant: its characters, eight bits each. Faults are reported.
[[nodiscard]] TDMWideValue character_constant(const PpToken &token);

} // namespace tdm
