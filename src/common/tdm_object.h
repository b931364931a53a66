/// @file
/// The base of all model objects: the places in the user's files where their parts were written.
#pragma once

#include <cstddef>

#include "common/source_location.h"

/// Has no virtual operations, so that it never decides the layout of what derives from it. Objects
/// live in the library's pool of small blocks, those of classes that a client derives too; so one
/// that is deleted as another class than its own needs a virtual destructor, as ever.
struct TDM_CLIENT_API TDMObject {
  /// Memory for an object; std::bad_alloc where there is none.
  static void *operator new(std::size_t size);
  /// Gives the memory of an object back.
  static void operator delete(void *object, std::size_t size) noexcept;

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
