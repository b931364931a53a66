/// @file
/// One position of a space, a bus or a memory, to the bit.
///
/// Conventions:
/// - The unit travels with the value: `value` counts whole MAUs of `mau` bits, `bits` is the
///   remainder inside one MAU from the least significant data line, and the bit address is
///   value * mau + bits.
/// - The bank is compared before the value, and -1, no bank, sorts below every bank.
/// - Values of different MAUs are unequal; to order, add or subtract them is a MauException.
/// - A value of more than 64 bits wraps. A MAU below 1 (numbers of a file and of callers are not
///   restricted) is a MauException wherever it would have to divide.
#pragma once

#include <cstdint>

#include "common/failures.h"
#include "common/tdm_types.h"
#include "mapping/wrapping.h"

/// A position, or a size.
struct TDM_CLIENT_API AddressValue {
  /// Two positions that are counted in different units met. Thrown by pointer.
  class TDM_CLIENT_API MauException : public MauLibException {};

  int64_t value = 0; ///< whole MAUs
  int16_t bits = 0;  ///< bits beyond them
  int16_t mau = 1;   ///< bits of one MAU
  int32_t bank = -1; ///< -1 for none

  constexpr AddressValue() = default;
  /// `bits` and `mau` are cut to 16 bits, as at the boundary of the library.
  constexpr AddressValue(int64_t value_, int64_t bits_, int32_t mau_, int32_t bank_ = -1)
      : value(value_), bits(static_cast<int16_t>(bits_)), mau(static_cast<int16_t>(mau_)),
        bank(bank_)
  {
  }

  /// From the form of the C interface.
  explicit AddressValue(const tdm_addressvalue &record)
      : AddressValue(record.value, record.bits, record.mau, record.bank)
  {
  }
  /// In the form of the C interface.
  [[nodiscard]] tdm_addressvalue to_record() const { return {value, bits, mau, bank}; }

  /// Of all four fields; never throws.
  friend bool operator==(const AddressValue &, const AddressValue &) = default;

  /// By bank, value and bits. MauException if the MAUs differ.
  friend bool operator<(const AddressValue &a, const AddressValue &b)
  {
    require_same_mau(a, b);
    if (a.bank != b.bank) return a.bank < b.bank;
    return a.value != b.value ? a.value < b.value : a.bits < b.bits;
  }
  /// As `<`, here and below.
  friend bool operator>(const AddressValue &a, const AddressValue &b) { return b < a; }
  /// As `<`.
  friend bool operator<=(const AddressValue &a, const AddressValue &b) { return !(b < a); }
  /// As `<`.
  friend bool operator>=(const AddressValue &a, const AddressValue &b) { return !(a < b); }

  /// The bits carry into the value; the bank is that of `a`. MauException if the MAUs differ.
  friend AddressValue operator+(const AddressValue &a, const AddressValue &b)
  {
    require_same_mau(a, b);
    if (a.mau < 1) throw_mau_exception();
    const int sum = a.bits + b.bits;
    return {tdm::wrap_add(tdm::wrap_add(a.value, b.value), int64_t{sum / a.mau}), sum % a.mau,
            a.mau, a.bank};
  }

  /// The bits borrow from the value; the bank stays. MauException if the MAUs differ.
  AddressValue &operator-=(const AddressValue &b)
  {
    require_same_mau(*this, b);
    const bool borrow = bits < b.bits;
    value = tdm::wrap_sub(tdm::wrap_sub(value, b.value), int64_t{borrow});
    bits = static_cast<int16_t>(bits - b.bits + (borrow ? mau : 0));
    return *this;
  }

  /// The same position, or size, counted in another unit: the only place that converts between
  /// units. It never forms the bit address, so that the result is exact whenever it fits; numbers
  /// below 0 round towards 0, with the rest in negative bits.
  [[nodiscard]] AddressValue in_mau(int16_t unit) const
  {
    if (unit == mau) return *this;
    if (unit < 1) throw_mau_exception();
    const int64_t whole = value / unit;
    // |value % unit| and |mau| are at most 2^15, so this product is small.
    const int64_t rest = value % unit * mau + bits;
    return {tdm::wrap_add(tdm::wrap_mul(whole, int64_t{mau}), rest / unit), rest % unit, unit,
            bank};
  }

  /// MauException if the MAUs differ.
  static void require_same_mau(const AddressValue &a, const AddressValue &b)
  {
    require_unit(a, b.mau);
  }
  /// MauException if the address is counted in another unit.
  static void require_unit(const AddressValue &address, int16_t mau)
  {
    if (address.mau != mau) throw_mau_exception();
  }

private:
  [[noreturn]] static void throw_mau_exception();
};
