/// @file
/// What a `select` asks of a section beside its name.
#pragma once

#include <ostream>
#include <string>

#include "common/tdm_object.h"
#include "common/tdm_types.h"
#include "layout/attributes.h"

struct TDMSection;

struct TDM_CLIENT_API TDMSectionSelector : tdm::ObjectMemory {
  virtual ~TDMSectionSelector();
  /// Whether the section is one of those that are asked for.
  virtual bool matches(const TDMSection &section) const = 0;
  /// Writes the selector as messages show it.
  virtual void print(std::ostream &stream) const = 0;
};

/// Asks for flags that are set and for flags that are clear.
struct TDM_CLIENT_API TDMSectionAttributesSelector final : TDMSectionSelector {
  /// The flags that must be set, and those that must be clear.
  TDMSectionAttributesSelector(const TDMAttributes &set, const TDMAttributes &clear)
      : required(set), excluded(clear)
  {
  }
  bool matches(const TDMSection &section) const override;
  /// "attributes: +", the letters of the flags that are asked for, "-", those that are excluded.
  void print(std::ostream &stream) const override;

  TDMAttributes required; ///< the flags that must be set
  TDMAttributes excluded; ///< the flags that must be clear
};

/// Names a file; asks nothing of a section. No text of the language makes one.
struct TDM_CLIENT_API TDMSectionFileSelector final : TDMSectionSelector {
  /// Names the file.
  explicit TDMSectionFileSelector(std::string file) : file_name(std::move(file)) {}
  bool matches(const TDMSection &) const override { return true; }
  void print(std::ostream &) const override {}

  std::string file_name; ///< the name as it was given
};
