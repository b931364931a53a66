// The reading of a location that has to be there.
#include "language/file_object.h"

#include <cstdio>
#include <cstdlib>

const TDMSourceLocation &TDMFileObject::get_location(LocationKey key) const
{
  const TDMSourceLocation *found = sourceLocations.find(key);
  if (found == nullptr) {
    // Not assert(): the check stands in release builds too.
    std::fprintf(stderr, "TDMFileObject: assertion failed: loc_itr != sourceLocations.end() (%s)\n",
                 key.text());
    std::abort();
  }
  return *found;
}
