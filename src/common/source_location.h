// Where something stands in the user's files, and the table that an object keeps of such places.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <unordered_map>
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

/// The locations of one object, in the order in which they were stored. Most objects have a dozen
/// keys at the most, and for these a flat list beats any tree, in memory and in time. But where
/// keys are names of the text, as in copy tables, there is no end to them: a long list is indexed.
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
    if (entries_.size() > flat_limit) return find_indexed(key);
    for (const Entry &entry : entries_)
      if (entry.first == key) return &entry.second;
    return nullptr;
  }

  [[nodiscard]] const std::vector<Entry> &entries() const { return entries_; }

private:
  static constexpr std::size_t flat_limit = 32;

  /// The places of the keys in the list, as far as it has been looked through. A copy starts
  /// without it.
  struct Index {
    Index() = default;
    Index(const Index &) {}
    Index(Index &&) = default;
    Index &operator=(const Index &)
    {
      places.reset();
      return *this;
    }
    Index &operator=(Index &&) = default;
    ~Index() = default;

    std::unique_ptr<std::unordered_map<std::string_view, std::size_t>> places;
  };

  [[nodiscard]] const TDMSourceLocation *find_indexed(LocationKey key) const
  {
    auto &places = index_.places;
    if (places == nullptr)
      places = std::make_unique<std::unordered_map<std::string_view, std::size_t>>();
    // Every key stands in the list once.
    for (std::size_t i = places->size(); i < entries_.size(); ++i)
      places->emplace(entries_[i].first.text(), i);
    const auto found = places->find(key.text());
    return found != places->end() ? &entries_[found->second].second : nullptr;
  }

  std::vector<Entry> entries_;
  mutable Index index_;
};
