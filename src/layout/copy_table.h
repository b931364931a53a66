// What a space asks the linker to copy at startup: through a table, or by direct initialisation.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/tdm_object.h"

class TDMFileCopyTable;
class TDMFileDirectInit;
struct TDMSpace;

namespace tdm {
class ArgumentScope;
class SpaceLookup;
} // namespace tdm

/// A part of a copy table with a symbol of its own.
struct TDMCopySubTable {
  std::string symbol;
  std::vector<TDMSpace *> spaces;
};

struct TDMCopyTable : TDMObject {
  TDMCopyTable(const TDMFileCopyTable &record, const tdm::ArgumentScope &scope);

  /// Finds the spaces that the record names, once all spaces of the core stand.
  void resolve(const TDMFileCopyTable &record, const tdm::SpaceLookup &lookup);

  std::string name = "table";
  int64_t alignment = 1;
  int64_t copy_unit = 0;
  std::map<TDMSpace *, TDMSpace *> destinations; ///< source to destination
  TDMSpace *default_destination = nullptr;
  bool page_restrict_rom_copies = false;
  std::vector<TDMCopySubTable> sub_tables;
};

struct TDMDirectInit : TDMObject {
  TDMDirectInit(const TDMFileDirectInit &record, const tdm::ArgumentScope &scope);

  void resolve(const TDMFileDirectInit &record, const tdm::SpaceLookup &lookup);

  std::string name = "dinit";
  int64_t alignment = 1;
  std::map<TDMSpace *, TDMSpace *> destinations; ///< source to destination
  TDMSpace *default_destination = nullptr;
};
