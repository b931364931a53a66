/// @file
/// Where something stands in the user's files, and the table that an object keeps of such places.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "common/location_keys.h"
#include "common/tdm_types.h"

/// The name of a file, as a number: a location that is kept for each part of a description is not
/// made larger by it.
class TDM_CLIENT_API FileName {
public:
  /// The empty name.
  FileName() = default;
  /// The name, a text of the string pool or a literal. Implicit on purpose: a name is a name.
  FileName(const char *text);
  /// The name as text.
  [[nodiscard]] const char *text() const;
  /// The same. Implicit on purpose, as what a name is made from.
  operator const char *() const { return text(); }

  /// Whether the texts are equal.
  friend bool operator==(FileName a, FileName b) = default;

private:
  std::uint32_t number_ = 0;
};

/// A place in a file, three small numbers that are copied freely. Line and column count from 1, and
/// 0/0 means "the file as a whole".
struct TDMSourceLocation {
  FileName file;  ///< as messages show it
  int line = 0;   ///< from 1; 0 for the file as a whole
  int column = 0; ///< from 1; 0 for the file as a whole
};

/// The key under which a location is kept, as a number: one of the known words, or a name of the
/// user's text.
class TDM_CLIENT_API LocationKey {
public:
  /// No key.
  constexpr LocationKey() = default;

  /// A key that is written out, and must be one of the known words. Implicit on purpose: keys are
  /// plain words at every use.
  template <std::size_t Size>
  consteval LocationKey(const char (&text)[Size]) : number_(tdm::known_location_key(text))
  {
  }

  /// A key that is known at run time only; its text must live until the library ends.
  [[nodiscard]] static LocationKey of(const char *text);
  /// The same, but no key if no location was ever kept under the text.
  [[nodiscard]] static LocationKey find(const char *text);

  /// The key as text.
  [[nodiscard]] const char *text() const;
  /// From 1 on; 0 for no key.
  [[nodiscard]] std::uint32_t number() const { return number_; }

  /// Whether the texts are equal.
  friend bool operator==(LocationKey a, LocationKey b) = default;

private:
  friend class SourceLocations;
  explicit constexpr LocationKey(std::uint32_t number) : number_(number) {}

  std::uint32_t number_ = 0;
};

namespace tdm {
/// The names of files and keys are numbered anew, as their texts are no more; nobody may ask for
/// the text of an older number.
void forget_location_texts();
} // namespace tdm

/// The locations of one object, in the order in which they were stored.
///
/// The one location of a number or a name stands in the table itself. Most other objects have a
/// dozen keys at the most, and for these a flat list beats any tree, in memory and in time. But
/// where keys are names of the text, as in copy tables, there is no end to them: a long list is
/// indexed. What is copied from object to object inside a parse shares one list, which stays until
/// the spec ends, so that nobody has to count its users; who stores into a shared one gets a list
/// of its own. Every other copy has one from the beginning.
class TDM_CLIENT_API SourceLocations {
public:
  /// A location and its key.
  struct Entry {
    LocationKey first;        ///< the key
    TDMSourceLocation second; ///< the location
  };

  SourceLocations() = default;
  /// Inside a parse, shares the list of the other one.
  SourceLocations(const SourceLocations &other) : only_(other.only_)
  {
    if (has_list()) copy_list(other);
  }
  /// Takes the list of the other one, which is empty then.
  SourceLocations(SourceLocations &&other) noexcept : only_(other.only_) { other.only_ = {}; }
  /// Gives up the own list for that of the other one.
  SourceLocations &operator=(SourceLocations other) noexcept
  {
    const Entry mine = only_;
    only_ = other.only_;
    other.only_ = mine;
    return *this;
  }
  ~SourceLocations()
  {
    if (owns_list()) free(list());
  }

  /// Keeps the location under the key; the first one stored under a key wins.
  void store(LocationKey key, const TDMSourceLocation &location)
  {
    if (is_empty()) {
      only_ = {key, location};
      return;
    }
    if (find(key) != nullptr) return;
    if (!owns_list() || list()->count == list()->capacity) renew();
    list()->entries()[list()->count++] = {key, location};
  }

  /// Makes room for so many entries, not many, where there are none yet.
  void reserve(std::uint32_t capacity)
  {
    if (is_empty()) set_list(make_list(capacity));
  }

  /// The location under the key, or null. The pointer stays valid until the next store.
  [[nodiscard]] const TDMSourceLocation *find(LocationKey key) const
  {
    if (has_list() && list()->count > flat_limit) return find_indexed(key);
    for (const Entry &entry : entries())
      if (entry.first == key) return &entry.second;
    return nullptr;
  }

  /// All of them, in the order in which they were stored; valid until the next store.
  [[nodiscard]] std::span<const Entry> entries() const
  {
    if (has_list()) return {list()->entries(), list()->count};
    return {&only_, is_empty() ? 0U : 1U};
  }

private:
  static constexpr std::uint32_t flat_limit = 31;
  static constexpr LocationKey list_mark{UINT32_MAX};
  static constexpr LocationKey shared_mark{UINT32_MAX - 1};

  /// The head of a block of memory that goes on with the entries, and behind those with the index
  /// if there are so many that they need one.
  struct List {
    std::uint32_t count;
    std::uint32_t capacity;
    std::uint32_t indexed; ///< how many entries the index knows
    std::uint32_t padding; ///< entries begin at a multiple of their size

    [[nodiscard]] Entry *entries() { return reinterpret_cast<Entry *>(this + 1); }
    /// The number of an entry plus one, or 0, by its key: twice as many places as entries.
    [[nodiscard]] std::uint32_t *index()
    {
      return reinterpret_cast<std::uint32_t *>(entries() + capacity);
    }
    [[nodiscard]] std::uint32_t slots() const { return (capacity + 1) * 2; }
  };

  [[nodiscard]] bool is_empty() const { return only_.first == LocationKey(); }
  [[nodiscard]] bool owns_list() const { return only_.first == list_mark; }
  [[nodiscard]] bool has_list() const { return only_.first.number() >= shared_mark.number(); }
  [[nodiscard]] List *list() const
  {
    List *list = nullptr;
    std::memcpy(&list, reinterpret_cast<const char *>(&only_) + address_in_entry, sizeof list);
    return list;
  }
  void set_list(List *list)
  {
    only_.first = list_mark;
    std::memcpy(reinterpret_cast<char *>(&only_) + address_in_entry, &list, sizeof list);
  }

  [[nodiscard]] static std::size_t block_size(std::uint32_t capacity);
  [[nodiscard]] static List *make_list(std::uint32_t capacity);
  [[nodiscard]] static List *copied(std::span<const Entry> entries);
  void copy_list(const SourceLocations &other);
  void renew();
  [[nodiscard]] const TDMSourceLocation *find_indexed(LocationKey key) const;
  static void update_index(List &list);
  static void free(List *list);

  static constexpr std::size_t address_in_entry = sizeof(Entry) - sizeof(List *);

  /// Or, with a mark as the key, the address of a list at its end. What is shared changes its mark.
  alignas(List *) mutable Entry only_;
};
