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
  std::optional<tdm::Text> name;
  std::int32_t id = -1;
  tdm::ExpressionPtr mauSize;
  tdm::ExpressionPtr alignment;
  tdm::ExpressionPtr pageSize;
  tdm::RecordList<tdm::FileRange> pages;
  bool pageRestrictSections = false;
  int locateDirection = tdm::kLowToHigh;
  std::optional<tdm::Text> addressLiteralSpace;
  tdm::RecordList<std::unique_ptr<TDMFileStackDef>> stacks;
  tdm::RecordList<std::unique_ptr<TDMFileHeapDef>> heaps;
  std::unique_ptr<TDMFileCopyTable> copyTable;
  std::unique_ptr<TDMFileDirectInit> directInit;
  tdm::RecordList<std::unique_ptr<TDMFileVectorTable>> vectorTables;
  tdm::RecordList<tdm::FileRange> reservedRanges;
  std::unique_ptr<TDMFileStartAddress> startAddress;
  tdm::RecordList<std::unique_ptr<TDMFileBankDef>> banks;
  TDMFileMappings mappings;
  tdm::RecordList<std::unique_ptr<TDMFileSectionLayout>> sectionLayouts;
};

/// `architecture`. Keys "name", "base".
class TDMFileArchitecture : public TDMFileObject {
public:
  std::optional<tdm::Text> name;
  tdm::FileParameters parameters;
  std::optional<tdm::Text> base;
  tdm::ExpressionList baseArguments;
  tdm::RecordList<std::unique_ptr<TDMFileBus>> buses;
  tdm::RecordList<std::unique_ptr<TDMFileSpace>> spaces;
  std::vector<std::int32_t> endianness; ///< tdm::FileEndianness, in the order of the text
};

/// `core`. Keys "name", "archName", "copyTableCoreName", "copyTableSpaceName", "startAddress".
class TDMFileCore : public TDMFileObject {
public:
  std::optional<tdm::Text> name;
  std::optional<tdm::Text> archName;
  tdm::ExpressionList arguments;
  std::vector<std::int32_t> endianness; ///< tdm::FileEndianness, in the order of the text
  std::unique_ptr<TDMFileStartAddress> startAddress;
  std::optional<tdm::Text> copyTableCoreName;
  std::optional<tdm::Text> copyTableSpaceName;
  std::vector<tdm::Text> imports;
  std::int32_t spaceIdOffset = 0;
};

/// `modify input`. No keys.
class TDMFileInputModification : public TDMFileObject {
public:
  std::unique_ptr<TDMFileCopySubTableSpace> space;
  std::unique_ptr<TDMFileSelector> selector;
  tdm::RecordList<std::unique_ptr<TDMFileSelectSectionStatement>> selects;
};

/// `section_setup`. Keys "section_setup", "cpuName", "coreName", "spaceName", "startAddress".
class TDMFileSectionSetup : public TDMFileObject {
public:
  std::optional<tdm::Text> cpuName;
  std::optional<tdm::Text> coreName;
  std::optional<tdm::Text> spaceName; ///< several names are joined by '|'
  tdm::RecordList<std::unique_ptr<TDMFileVectorTable>> vectorTables;
  tdm::RecordList<tdm::FileRange> reservedRanges;
  tdm::RecordList<std::unique_ptr<TDMFileStackDef>> stacks;
  tdm::RecordList<std::unique_ptr<TDMFileHeapDef>> heaps;
  tdm::RecordList<std::unique_ptr<TDMFileCopyTable>> copyTables;
  std::unique_ptr<TDMFileStartAddress> startAddress;
  tdm::RecordList<std::unique_ptr<TDMFileCopySubTableSpace>> prohibitedSpaces;
  tdm::RecordList<std::unique_ptr<TDMFileInputModification>> inputModifications;
};

/// `derivative`. Keys "name", "base".
class TDMFileDerivative : public TDMFileObject {
public:
  std::optional<tdm::Text> name;
  tdm::FileParameters parameters;
  std::optional<tdm::Text> base;
  tdm::ExpressionList baseArguments;
  tdm::RecordList<std::unique_ptr<TDMFileCore>> cores;
  tdm::RecordList<std::unique_ptr<TDMFileBus>> buses;
  tdm::RecordList<std::unique_ptr<TDMFileMemory>> memories;
  tdm::RecordList<std::unique_ptr<TDMFileSectionLayout>> sectionLayouts;
  tdm::RecordList<std::unique_ptr<TDMFileSectionSetup>> sectionSetups;
};

/// `processor`. Keys "name", "derivativeName".
class TDMFileCPU : public TDMFileObject {
public:
  std::optional<tdm::Text> name;
  std::optional<tdm::Text> derivativeName;
  tdm::ExpressionList arguments;
};

/// The result of a parse; memories, buses, layouts and setups are those of the file level.
class TDMFileInterface {
public:
  tdm::RecordList<std::unique_ptr<TDMFileArchitecture>> architectures;
  tdm::RecordList<std::unique_ptr<TDMFileDerivative>> derivatives;
  tdm::RecordList<std::unique_ptr<TDMFileCPU>> processors;
  tdm::RecordList<std::unique_ptr<TDMFileMemory>> memories;
  tdm::RecordList<std::unique_ptr<TDMFileBus>> buses;
  tdm::RecordList<std::unique_ptr<TDMFileSectionLayout>> sectionLayouts;
  tdm::RecordList<std::unique_ptr<TDMFileSectionSetup>> sectionSetups;
};
