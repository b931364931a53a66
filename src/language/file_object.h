// The base of all records: what the parser leaves of a description is a forest of plain objects,
// each of which knows where in the user's files its parts were written.
#pragma once

#include <vector>

#include "common/block_pool.h"
#include "common/source_location.h"

namespace tdm {

/// What records keep lists in.
template <typename T> using RecordList = std::vector<T, RecordAllocator<T>>;

} // namespace tdm

/// A record of the parse. It says what was written and nothing more; the model is built from
/// records and never refers to one.
class TDMFileObject : public tdm::RecordMemory {
public:
  TDMFileObject() = default;
  TDMFileObject(const TDMFileObject &) = delete;
  TDMFileObject &operator=(const TDMFileObject &) = delete;
  virtual ~TDMFileObject() = default;

  /// Keeps the location under the key; the first one stored under a key wins.
  void store_location(LocationKey key, const TDMSourceLocation &location)
  {
    sourceLocations.store(key, location);
  }

  /// The location under the key, which must be there: an absent key is a fault of the calling code
  /// and ends the process. Code that can't be sure calls find_location first.
  [[nodiscard]] const TDMSourceLocation &get_location(LocationKey key) const;

  /// The location under the key, or null.
  [[nodiscard]] const TDMSourceLocation *find_location(LocationKey key) const
  {
    return sourceLocations.find(key);
  }

  SourceLocations sourceLocations;
};
