/// @file
/// What a space asks the linker to copy at startup: through a table, or by direct initialisation.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/tdm_object.h"
#include "common/text.h"

class TDMFileCopyTable;
class TDMFileDirectInit;
struct TDMSpace;

namespace tdm {
class ArgumentScope;
class SpaceLookup;
} // namespace tdm

/// A part of a copy table with a symbol of its own.
struct TDMCopySubTable {
  tdm::Text symbol;                   ///< its symbol
  tdm::ObjectList<TDMSpace *> spaces; ///< the spaces that it serves
};

struct TDMCopyTable : TDMObject {
  /// Made by the model alone.
  TDMCopyTable(const TDMFileCopyTable &record, const tdm::ArgumentScope &scope);

  /// Finds the spaces that the record names, once all spaces of the core stand.
  void resolve(const TDMFileCopyTable &record, const tdm::SpaceLookup &lookup);

  tdm::Text name = "table";                            ///< of the section that holds the table
  int64_t alignment = 1;                               ///< in MAUs of the space
  int64_t copy_unit = 0;                               ///< in MAUs of the space; 0 if none is given
  tdm::ObjectMap<TDMSpace *, TDMSpace *> destinations; ///< source to destination
  TDMSpace *default_destination = nullptr;             ///< null if none is given
  bool page_restrict_rom_copies = false;               ///< `page`
  tdm::ObjectList<TDMCopySubTable> sub_tables; ///< `table { ... }`, in the order of the text
};

struct TDMDirectInit : TDMObject {
  /// Made by the model alone.
  TDMDirectInit(const TDMFileDirectInit &record, const tdm::ArgumentScope &scope);

  /// Finds the spaces that the record names.
  void resolve(const TDMFileDirectInit &record, const tdm::SpaceLookup &lookup);

  tdm::Text name = "dinit";                            ///< always this one
  int64_t alignment = 1;                               ///< in MAUs of the space
  tdm::ObjectMap<TDMSpace *, TDMSpace *> destinations; ///< source to destination
  TDMSpace *default_destination = nullptr;             ///< null if none is given
};
