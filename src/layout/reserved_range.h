/// @file
/// Addresses of a space that are kept free.
#pragma once

#include <cstdint>

struct TDMReservedRange {
  int64_t low = 0;  ///< the first address, in MAUs of the space
  int64_t high = 0; ///< the first address behind the range
};
