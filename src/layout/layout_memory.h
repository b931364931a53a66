/// @file
/// A memory as a layout names it, without knowing the model.
#pragma once

#include <cstdint>

struct TDMMapDestination;

namespace tdm {

/// A memory and how much there is of it.
struct LayoutMemory {
  const TDMMapDestination *object = nullptr; ///< null if none is named
  int64_t size = 0;                          ///< in its own MAUs
};

} // namespace tdm
