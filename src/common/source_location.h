/// @file
/// Where something stands in the user's files, and the table that an object keeps of such places.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "common/tdm_types.h"

/// A place in a file. `file` is a text of the string pool (or a literal), so a location is three
/// words that are copied freely; line and column count from 1, and 0/0 means "the file as a whole".
struct TDMSourceLocation {
  const char *file = ""; ///< the name of the file, as messages show it
  int line = 0;          ///< from 1; 0 for the file as a whole
  int column = 0;        ///< from 1; 0 for the file as a whole
};

/// The key under which a location is kept: a literal, or a text that lives as long as the table.
/// Keys are compared as texts; their hashes, which the compiler computes for literals, tell most
/// of them apart.
class LocationKey {
public:
  /// A key that is written out. Implicit on purpose: keys are plain words at every use.
  template <std::size_t Size>
  consteval LocationKey(const char (&text)[Size]) : text_(text), hash_(hash_of({text, Size - 1}))
  {
  }

  /// A key that is known at run time only.
  explicit LocationKey(const char *const &text) : text_(text), hash_(hash_of(text)) {}

  /// The key as text.
  [[nodiscard]] const char *text() const { return text_; }
  /// A hash of the text, the same in every process.
  [[nodiscard]] std::uint32_t hash() const { return hash_; }

  /// Whether the texts are equal.
  friend bool operator==(LocationKey a, LocationKey b)
  {
    return a.hash_ == b.hash_ && (a.text_ == b.text_ || std::strcmp(a.text_, b.text_) == 0);
  }

private:
  static constexpr std::uint32_t hash_of(std::string_view text)
  {
    std::uint32_t hash = 2166136261U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    return hash;
  }

  const char *text_;
  std::uint32_t hash_;
};

/// The locations of one object, in the order in which they were stored.
///
/// Most objects have a dozen keys at the most, and for these a flat list beats any tree, in memory
/// and in time. But where keys are names of the text, as in copy tables, there is no end to them: a
/// long list is indexed. What is copied from object to object shares one list, until somebody
/// stores into a shared one. The count of users is no atomic one: like all of the model, a list
/// belongs to one thread at a time.
class TDM_CLIENT_API SourceLocations {
public:
  /// A location and its key.
  struct Entry {
    LocationKey first;        ///< the key
    TDMSourceLocation second; ///< the location
  };

  SourceLocations() = default;
  /// Shares the list of the other one.
  SourceLocations(const SourceLocations &other) : list_(other.list_)
  {
    if (list_ != nullptr) ++list_->users;
  }
  /// Takes the list of the other one, which is empty then.
  SourceLocations(SourceLocations &&other) noexcept : list_(other.list_) { other.list_ = nullptr; }
  /// Gives up the own list for that of the other one.
  SourceLocations &operator=(SourceLocations other) noexcept
  {
    List *const mine = list_;
    list_ = other.list_;
    other.list_ = mine;
    return *this;
  }
  ~SourceLocations()
  {
    if (list_ != nullptr && --list_->users == 0) free(list_);
  }

  /// Keeps the location under the key; the first one stored under a key wins.
  void store(LocationKey key, const TDMSourceLocation &location)
  {
    if (list_ == nullptr) {
      reserve(1);
    } else {
      if (find(key) != nullptr) return;
      if (list_->count == list_->capacity || list_->users > 1) renew();
    }
    list_->entries()[list_->count++] = {key, location};
  }

  /// Makes room for so many entries where there are none yet.
  void reserve(std::uint32_t capacity);

  /// The location under the key, or null. The pointer stays valid until the next store.
  [[nodiscard]] const TDMSourceLocation *find(LocationKey key) const
  {
    if (list_ == nullptr) return nullptr;
    if (list_->count > flat_limit) return find_indexed(key);
    for (const Entry &entry : entries())
      if (entry.first == key) return &entry.second;
    return nullptr;
  }

  /// All of them, in the order in which they were stored; valid until the next store.
  [[nodiscard]] std::span<const Entry> entries() const
  {
    if (list_ == nullptr) return {};
    return {list_->entries(), list_->count};
  }

private:
  static constexpr std::uint32_t flat_limit = 32;

  /// The head of a block of memory that goes on with the entries.
  struct List {
    std::uint32_t users;
    std::uint32_t count;
    std::uint32_t capacity;
    std::uint32_t slots;   ///< of the index; 0 as long as there is none
    std::uint32_t indexed; ///< how many entries the index knows
    std::uint32_t *index;  ///< number of an entry plus one, or 0, by the hash of its key

    [[nodiscard]] Entry *entries() { return reinterpret_cast<Entry *>(this + 1); }
  };

  void renew();
  [[nodiscard]] const TDMSourceLocation *find_indexed(LocationKey key) const;
  static void update_index(List &list);
  static void free(List *list);

  List *list_ = nullptr;
};
