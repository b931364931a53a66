/// @file
/// The sections that are still to be placed, found by name or one after the other.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "common/tdm_types.h"
#include "layout/section.h"

/// Gives sections one after the other. Stays valid while its map lives, also when sections that it
/// has given already are removed from the map.
struct TDM_CLIENT_API TDMSectionEnumerator {
  /// Whether next() has one to give.
  virtual bool has_more() = 0;
  /// The next section; null at the end.
  virtual TDMSection *next() = 0;
  virtual ~TDMSectionEnumerator();
};

/// Implemented by a client that keeps its sections in a structure of its own.
struct TDM_CLIENT_API TDMSectionMap {
  /// Over all sections.
  virtual std::unique_ptr<TDMSectionEnumerator> all() = 0;
  /// Whether there is a section of exactly that name.
  virtual bool contains(const std::string &name) = 0;
  /// Over the sections of exactly that name.
  virtual std::unique_ptr<TDMSectionEnumerator> with_name(const std::string &name) = 0;
  /// Takes the section out; it stays the client's.
  virtual void remove(TDMSection *section) = 0;
  virtual ~TDMSectionMap();
  /// Takes the section in; it stays the client's.
  virtual void add(TDMSection *section) = 0;
};

/// Ordered by name as bytes; sections of one name keep the order in which they were added. Doesn't
/// own the sections, and reads only their names.
struct TDM_CLIENT_API TDMDefaultSectionMap final : TDMSectionMap {
  std::unique_ptr<TDMSectionEnumerator> all() override;
  bool contains(const std::string &name) override;
  std::unique_ptr<TDMSectionEnumerator> with_name(const std::string &name) override;
  /// A section that isn't there is ignored. Doesn't look at the section, which may be gone.
  void remove(TDMSection *section) override;
  /// A section that is there already is ignored.
  void add(TDMSection *section) override;

private:
  friend struct TDMDefaultSectionEnumerator;

  /// The keys are the names that the sections hold.
  using Sections = std::multimap<std::string_view, TDMSection *>;

  Sections sections_;
  std::unordered_map<TDMSection *, Sections::iterator> places_;
};

/// Holds a position and an end in the map.
struct TDM_CLIENT_API TDMDefaultSectionEnumerator final : TDMSectionEnumerator {
  /// From the position up to the end.
  TDMDefaultSectionEnumerator(TDMDefaultSectionMap::Sections::iterator position,
                              TDMDefaultSectionMap::Sections::iterator end)
      : position_(position), end_(end)
  {
  }

  bool has_more() override { return position_ != end_; }
  TDMSection *next() override { return has_more() ? (position_++)->second : nullptr; }

private:
  TDMDefaultSectionMap::Sections::iterator position_;
  TDMDefaultSectionMap::Sections::iterator end_;
};
