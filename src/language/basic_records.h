// The records of memories, buses and mappings, and the small ones that several definitions share.
// Fields that the text left out are empty, null, or -1 where a number is counted.
#pragma once

#include <optional>

#include "language/expr_records.h"

namespace tdm {

/// TDMFileMemory::memtype.
enum FileMemoryType : int {
  kMemoryNone = 0,
  kMemoryRam = 1,
  kMemoryRom = 2,
  kMemoryNvram = 3,
  kMemoryBlockram = 4
};

/// TDMFileMapping::destinationKind.
enum FileDestinationKind : int { kDestinationSpace = 0, kDestinationBus = 1 };

/// Grow and locate directions of records.
enum FileDirection : int { kDirectionNotSet = 0, kLowToHigh = 1, kHighToLow = 2 };

/// The elements of lists of byte orders.
enum FileEndianness : std::int32_t { kEndiannessBig = 1, kEndiannessLittle = 2 };

/// A parameter of a template: no place of its own.
struct FileParameter {
  tdm::Text name;
  ExpressionPtr defaultValue; ///< null if the text gives none
};

using FileParameters = tdm::RecordList<FileParameter>;

/// `dest source = destination` of a copy table or direct init.
struct FileDestination {
  tdm::Text source;
  tdm::Text destination;
};

} // namespace tdm

/// What a `fill` says. Key "alignment".
class TDMFileFillSpec : public TDMFileObject {
public:
  tdm::ExpressionList values; ///< empty for a bare `fill`
  tdm::ExpressionPtr alignment;
};

/// `map`. Keys "map", "destination", "connectedDestinationLines", "destinationOffset",
/// "connectedSourceLines", "sourceOffset", "size", "bankNum", "destinationBankNum", "priority",
/// "exec_priority".
class TDMFileMapping : public TDMFileObject {
public:
  std::optional<tdm::Text> destination; ///< a bus with a core is `core:bus`
  int destinationKind = tdm::kDestinationSpace;
  std::int32_t bankNum = -1;
  std::int32_t destinationBankNum = -1;
  std::int32_t priority = 0;
  std::int32_t execPriority = -1;
  bool reserved = false;
  tdm::ExpressionPtr destinationOffset;
  tdm::ExpressionPtr sourceOffset;
  tdm::ExpressionPtr size;
  std::unique_ptr<tdm::FileRange> connectedDestinationLines; ///< null for all of them
  std::unique_ptr<tdm::FileRange> connectedSourceLines;      ///< the same
  std::optional<tdm::Text> name;
};

using TDMFileMappings = tdm::RecordList<std::unique_ptr<TDMFileMapping>>;

namespace tdm {

/// What a `memory` says of its hardware beyond sizes and priorities.
struct FileMemoryHardware {
  ExpressionPtr writeUnit;
  std::optional<Text> writeMode;
  ExpressionPtr setupTime;
  ExpressionPtr holdTime;
  ExpressionPtr cycles;
  ExpressionPtr area;
  ExpressionPtr readPorts;
  ExpressionPtr writePorts;
  ExpressionPtr readWritePorts;
};

} // namespace tdm

/// `memory`. Keys "name", "reserved", "memtype", "mauSize", "size", "speed" (also for `priority`),
/// "exec_priority", "map", "fillSpec".
class TDMFileMemory : public TDMFileObject {
public:
  std::optional<tdm::Text> name;
  int memtype = tdm::kMemoryNone;
  std::int32_t priority = -1;
  std::int32_t execPriority = -1;
  bool reserved = false;
  tdm::ExpressionPtr mauSize;
  tdm::ExpressionPtr size;
  std::unique_ptr<TDMFileFillSpec> fillSpec;
  std::unique_ptr<tdm::FileMemoryHardware> hardware; ///< null as a rule
  TDMFileMappings mappings;
};

/// `bus`. Keys "name", "mauSize", "busWidth", "busAddressWidth", "map".
class TDMFileBus : public TDMFileObject {
public:
  std::optional<tdm::Text> name;
  tdm::ExpressionPtr mauSize;
  tdm::ExpressionPtr busWidth;
  tdm::ExpressionPtr busAddressWidth;
  TDMFileMappings mappings;
  bool wishbone = false;
};

/// `start_address`. Keys "symbolName", "value", "bank", and "start_address" at the first property.
class TDMFileStartAddress : public TDMFileObject {
public:
  std::optional<tdm::Text> symbolName;
  tdm::ExpressionPtr value;
  std::int32_t bank = -1;
};

/// A space reference `cpu:core:space`, named after its first use. Keys "spaceRef" at its first
/// token, "cpuName" and "coreName" where given, "spaceName".
class TDMFileCopySubTableSpace : public TDMFileObject {
public:
  std::optional<tdm::Text> cpuName;
  std::optional<tdm::Text> coreName;
  std::optional<tdm::Text> spaceName; ///< several names are joined by '|'
};

/// The common part of the stacks and heaps of spaces. Keys "name", "minimalSize", "growDirection",
/// "alignment", "fixed", and "stack" or "heap" at the word.
class TDMFileStackOrHeapDef : public TDMFileObject {
public:
  virtual void set_minimal_size(tdm::ExpressionPtr value) = 0;
  virtual void set_grow_direction(int direction) = 0;
  virtual void set_alignment(tdm::ExpressionPtr value) = 0;
  virtual void set_fixed() = 0;
  virtual void set_id(tdm::ExpressionPtr value) = 0;

  std::optional<tdm::Text> name;
  tdm::ExpressionPtr minimalSize;
  int growDirection = tdm::kDirectionNotSet;
  tdm::ExpressionPtr alignment;
  bool fixed = false;
};

/// Also key "id". Minimal size, grow direction and alignment are refused a second time.
class TDMFileStackDef final : public TDMFileStackOrHeapDef {
public:
  void set_minimal_size(tdm::ExpressionPtr value) override;
  void set_grow_direction(int direction) override;
  void set_alignment(tdm::ExpressionPtr value) override;
  void set_fixed() override;
  void set_id(tdm::ExpressionPtr value) override;

  tdm::ExpressionPtr id;
};

/// The last value counts, and an id is dropped.
class TDMFileHeapDef final : public TDMFileStackOrHeapDef {
public:
  TDMFileHeapDef() { growDirection = tdm::kLowToHigh; }
  void set_minimal_size(tdm::ExpressionPtr value) override;
  void set_grow_direction(int direction) override;
  void set_alignment(tdm::ExpressionPtr value) override;
  void set_fixed() override;
  void set_id(tdm::ExpressionPtr value) override;
};
