/// @file
/// A start address and a size: the pages of a space, and what callers make for themselves.
#pragma once

#include <cstdint>

#include "mapping/address_value.h"

struct TDMRange {
  AddressValue start; ///< where it begins
  int64_t size = 0;   ///< MAUs of the start
};
