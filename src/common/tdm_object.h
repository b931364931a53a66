/// @file
/// The base of all model objects: the places in the user's files where their parts were written.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <utility>
#include <vector>

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

namespace tdm {

/// A base of what belongs to model objects without being one: it lives where they do.
struct ObjectMemory {
  /// Memory for an object; std::bad_alloc where there is none.
  static void *operator new(std::size_t size) { return TDMObject::operator new(size); }
  /// Gives the memory of an object back.
  static void operator delete(void *object, std::size_t size) noexcept
  {
    TDMObject::operator delete(object, size);
  }
};

/// Makes containers keep their elements where model objects live.
template <typename T> struct ObjectAllocator {
  /// What the elements are.
  using value_type = T;

  ObjectAllocator() = default;
  /// All of them are alike.
  template <typename Other> ObjectAllocator(const ObjectAllocator<Other> &) noexcept {}

  /// Memory for so many elements.
  [[nodiscard]] T *allocate(std::size_t count)
  {
    return static_cast<T *>(TDMObject::operator new(count * sizeof(T)));
  }
  /// Gives it back.
  void deallocate(T *elements, std::size_t count) noexcept
  {
    TDMObject::operator delete(elements, count * sizeof(T));
  }

  /// All of them are alike.
  friend bool operator==(ObjectAllocator, ObjectAllocator) { return true; }
};

/// A list in an object of which there are many.
template <typename T> using ObjectList = std::vector<T, ObjectAllocator<T>>;
/// A set of the same kind.
template <typename T> using ObjectSet = std::set<T, std::less<T>, ObjectAllocator<T>>;
/// A map of the same kind.
template <typename Key, typename T>
using ObjectMap = std::map<Key, T, std::less<Key>, ObjectAllocator<std::pair<const Key, T>>>;

} // namespace tdm
