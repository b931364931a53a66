/// @file
/// The base of all model objects: the places in the user's files where their parts were written.
#pragma once

#include "common/source_location.h"

/// Has no virtual operations, so that it never decides the layout of what derives from it.
struct TDMObject {
  SourceLocations sourceLocations; ///< under keys such as "name"; which there are is no promise

  /// The location under the key, or null; what the `..._get_source_location` getters give.
  [[nodiscard]] const TDMSourceLocation *location(LocationKey key) const
  {
    return sourceLocations.find(key);
  }

  /// A location to report at: that of the key, else that of `name`, else the fallback.
  [[nodiscard]] TDMSourceLocation location_or(LocationKey key,
                                              const TDMSourceLocation &fallback = {}) const
  {
    if (const TDMSourceLocation *found = sourceLocations.find(key)) return *found;
    if (const TDMSourceLocation *found = sourceLocations.find("name")) return *found;
    return fallback;
  }
};
