// The records of templates and of what picks them: spaces, architectures, cores, derivatives,
// processors, section setups, and the whole result of a parse.
#pragma once

#include "language/layout_records.h"
#include "language/table_records.h"

/// `space`. Keys "name", "mauSize", "id", "alignment", "pageSize", "pageRestrictSections",
/// "locateDirection", "address_literal_space", "map", "table" (behind a copy table),
/// "start_address".
class TDMFileSpace : public TDMFileObject {
public:
  std::optional<std::string> name;
  std::int32_t id = -1;
  tdm::ExpressionPtr mauSize;
  tdm::ExpressionPtr alignment;
  tdm::ExpressionPtr pageSize;
  std::vector<tdm::FileRange> pages;
  bool pageRestrictSections = false;
  int locateDirection = tdm::kLowToHigh;
  std::optional<std::string> addressLiteralSpace;
  std::vector<std::unique_ptr<TDMFileStackDef>> stacks;
  std::vector<std::unique_ptr<TDMFileHeapDef>> heaps;
  std::unique_ptr<TDMFileCopyTable> copyTable;
  std::unique_ptr<TDMFileDirectInit> directInit;
  std::vector<std::unique_ptr<TDMFileVectorTable>> vectorTables;
  std::vector<tdm::FileRange> reservedRanges;
  std::unique_ptr<TDMFileStartAddress> startAddress;
  std::vector<std::unique_ptr<TDMFileBankDef>> banks;
  TDMFileMappings mappings;
  std::vector<std::unique_ptr<TDMFileSectionLayout>> sectionLayouts;
};

/// `architecture`. Keys "name", "base".
class TDMFileArchitecture : public TDMFileObject {
public:
  std::optional<std::string> name;
  tdm::FileParameters parameters;
  std::optional<std::string> base;
  tdm::ExpressionList baseArguments;
  std::vector<std::unique_ptr<TDMFileBus>> buses;
  std::vector<std::unique_ptr<TDMFileSpace>> spaces;
  std::vector<std::int32_t> endianness; ///< tdm::FileEndianness, in the order of the text
};

/// `core`. Keys "name", "archName", "copyTableCoreName", "copyTableSpaceName", "startAddress".
class TDMFileCore : public TDMFileObject {
public:
  std::optional<std::string> name;
  std::optional<std::string> archName;
  tdm::ExpressionList arguments;
  std::vector<std::int32_t> endianness; ///< tdm::FileEndianness, in the order of the text
  std::unique_ptr<TDMFileStartAddress> startAddress;
  std::optional<std::string> copyTableCoreName;
  std::optional<std::string> copyTableSpaceName;
  std::vector<std::string> imports;
  std::int32_t spaceIdOffset = 0;
};

/// `modify input`. No keys.
class TDMFileInputModification : public TDMFileObject {
public:
  std::unique_ptr<TDMFileCopySubTableSpace> space;
  std::unique_ptr<TDMFileSelector> selector;
  std::vector<std::unique_ptr<TDMFileSelectSectionStatement>> selects;
};

/// `section_setup`. Keys "section_setup", "cpuName", "coreName", "spaceName", "startAddress".
class TDMFileSectionSetup : public TDMFileObject {
public:
  std::optional<std::string> cpuName;
  std::optional<std::string> coreName;
  std::optional<std::string> spaceName; ///< several names are joined by '|'
  std::vector<std::unique_ptr<TDMFileVectorTable>> vectorTables;
  std::vector<tdm::FileRange> reservedRanges;
  std::vector<std::unique_ptr<TDMFileStackDef>> stacks;
  std::vector<std::unique_ptr<TDMFileHeapDef>> heaps;
  std::vector<std::unique_ptr<TDMFileCopyTable>> copyTables;
  std::unique_ptr<TDMFileStartAddress> startAddress;
  std::vector<std::unique_ptr<TDMFileCopySubTableSpace>> prohibitedSpaces;
  std::vector<std::unique_ptr<TDMFileInputModification>> inputModifications;
};

/// `derivative`. Keys "name", "base".
class TDMFileDerivative : public TDMFileObject {
public:
  std::optional<std::string> name;
  tdm::FileParameters parameters;
  std::optional<std::string> base;
  tdm::ExpressionList baseArguments;
  std::vector<std::unique_ptr<TDMFileCore>> cores;
  std::vector<std::unique_ptr<TDMFileBus>> buses;
  std::vector<std::unique_ptr<TDMFileMemory>> memories;
  std::vector<std::unique_ptr<TDMFileSectionLayout>> sectionLayouts;
  std::vector<std::unique_ptr<TDMFileSectionSetup>> sectionSetups;
};

/// `processor`. Keys "name", "derivativeName".
class TDMFileCPU : public TDMFileObject {
public:
  std::optional<std::string> name;
  std::optional<std::string> derivativeName;
  tdm::ExpressionList arguments;
};

/// The result of a parse; memories, buses, layouts and setups are those of the file level.
class TDMFileInterface {
public:
  std::vector<std::unique_ptr<TDMFileArchitecture>> architectures;
  std::vector<std::unique_ptr<TDMFileDerivative>> derivatives;
  std::vector<std::unique_ptr<TDMFileCPU>> processors;
  std::vector<std::unique_ptr<TDMFileMemory>> memories;
  std::vector<std::unique_ptr<TDMFileBus>> buses;
  std::vector<std::unique_ptr<TDMFileSectionLayout>> sectionLayouts;
  std::vector<std::unique_ptr<TDMFileSectionSetup>> sectionSetups;
};
