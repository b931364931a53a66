/// @file
/// A start address and a size: the pages of a space, and what callers make for themselves.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/tdm_object.h"
#include "mapping/address_value.h"

struct TDMRange {
  /// Where model objects live.
  static void *operator new(std::size_t bytes) { return TDMObject::operator new(bytes); }
  /// Gives the memory back.
  static void operator delete(void *range, std::size_t bytes) noexcept
  {
    TDMObject::operator delete(range, bytes);
  }

  AddressValue start; ///< where it begins
  int64_t size = 0;   ///< MAUs of the start
};
