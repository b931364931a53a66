// Where something stands in the user's files, and the table that an object keeps of such places.
#pragma once

#include <cstring>
#include <utility>
#include <vector>

/// A place in a file. `file` is a text of the string pool (or a literal), so a location is three
/// words that are copied freely; line and column count from 1, and 0/0 means "the file as a whole".
struct TDMSourceLocation {
  const char *file = "";
  int line = 0;
  int column = 0;
};

/// The key under which a location is kept: a literal, or a text of the string pool. Keys are
/// compared as texts; equal literals of one translation unit compare by address first.
class LocationKey {
public:
  // Implicit on purpose: keys are written as plain words at every use.
  constexpr LocationKey(const char *text) : text_(text) {}

  [[nodiscard]] const char *text() const { return text_; }

  friend bool operator==(LocationKey a, LocationKey b)
  {
    return a.text_ == b.text_ || std::strcmp(a.text_, b.text_) == 0;
  }

private:
  const char *text_;
};

/// The locations of one object, in the order in which they were stored. Objects have a dozen keys
/// at the most, so a flat list beats any tree, in memory and in time.
class SourceLocations {
public:
  using Entry = std::pair<LocationKey, TDMSourceLocation>;

  /// Keeps the location under the key; the first one stored under a key wins.
  void store(LocationKey key, const TDMSourceLocation &location)
  {
    if (find(key) == nullptr) entries_.emplace_back(key, location);
  }

  /// The location under the key, or null. The pointer stays valid until the next store.
  [[nodiscard]] const TDMSourceLocation *find(LocationKey key) const
  {
    for (const Entry &entry : entries_)
      if (entry.first == key) return &entry.second;
    return nullptr;
  }

  [[nodiscard]] const std::vector<Entry> &entries() const { return entries_; }

private:
  std::vector<Entry> entries_;
};
