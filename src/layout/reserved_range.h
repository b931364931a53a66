/// @file
/// Addresses of a space that are kept free.
#pragma once

#include <cstdint>

#include "common/tdm_object.h"

struct TDMReservedRange : tdm::ObjectMemory {
  /// The addresses from the first one up to the second.
  TDMReservedRange(int64_t first, int64_t behind) : low(first), high(behind) {}

  int64_t low = 0;  ///< the first address, in MAUs of the space
  int64_t high = 0; ///< the first address behind the range
};
