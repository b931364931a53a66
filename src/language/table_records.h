// The records of the tables that a space asks the linker for: vector tables, copy tables, direct
// init and banks.
#pragma once

#include <map>

#include "language/basic_records.h"

namespace tdm {

/// TDMFileVectorValue::type.
enum VectorValueType : int { kVectorSymbol = 1, kVectorNumbers = 2, kVectorLoop = 3 };

/// An ordered set of vector ids. It is kept as disjoint ranges that don't touch, since a single
/// `[0 .. 0x7FFFFFFF]` may put the whole positive half of the ids into it.
class VectorIds {
public:
  /// Adds all ids from low to high, both included; low must not be above high.
  void add(std::int32_t low, std::int32_t high);

  [[nodiscard]] bool empty() const { return ranges_.empty(); }

  /// Low end to high end of each range, both included, in ascending order.
  [[nodiscard]] const std::map<std::int32_t, std::int32_t> &ranges() const { return ranges_; }

private:
  std::map<std::int32_t, std::int32_t> ranges_;
};

} // namespace tdm

/// What a vector holds. Keys "type", "symbol_name", "loop_offset".
struct TDMFileVectorValue {
  void set_loop_offset(tdm::ExpressionPtr offset);

  SourceLocations sourceLocations;
  int type = 0; ///< tdm::VectorValueType
  tdm::Text symbolName;
  std::vector<std::int64_t> values;
  tdm::ExpressionPtr loopOffset;
};

/// `vector`. Keys "id", "value", "optional".
struct TDMFileVector {
  SourceLocations sourceLocations;
  tdm::VectorIds ids;
  std::unique_ptr<TDMFileVectorValue> value;
  bool optional = false;
};

/// `vector_table`. Keys "name", "size", "vector_size", "default_value", "id_symbol_prefix",
/// "run_address", "template_name", "template_symbol_name", "vector_name_prefix", "default_inline".
class TDMFileVectorTable : public TDMFileObject {
public:
  std::optional<tdm::Text> name;
  tdm::ExpressionPtr vectorSize;
  tdm::ExpressionPtr size;
  std::optional<tdm::Text> idSymbolPrefix;
  tdm::ExpressionPtr address;
  std::optional<tdm::Text> memoryName;
  std::optional<tdm::Text> templateName;
  std::optional<tdm::Text> templateSymbolName;
  std::optional<tdm::Text> vectorNamePrefix;
  bool defaultInline = true;
  bool copy = false;
  std::unique_ptr<TDMFileVectorValue> defaultValue;
  tdm::RecordList<std::unique_ptr<TDMFileVector>> vectors;
};

/// `table` of a copy table. Key "table".
class TDMFileCopySubTable : public TDMFileObject {
public:
  std::optional<tdm::Text> symbol;
  tdm::RecordList<std::unique_ptr<TDMFileCopySubTableSpace>> spaces;
};

/// `copytable` of a space or setup. Keys "alignment", "copyUnit", "pageRestrictROMCopies",
/// "defaultCopyDestination", and for each pair the name of the source itself.
class TDMFileCopyTable : public TDMFileObject {
public:
  tdm::ExpressionPtr alignment;
  tdm::ExpressionPtr copyUnit;
  std::optional<tdm::Text> defaultCopyDestination;
  tdm::RecordList<tdm::FileDestination> destinations;
  bool pageRestrictROMCopies = false;
  tdm::RecordList<std::unique_ptr<TDMFileCopySubTable>> subTables;
};

/// `direct_init`. Keys "alignment", "name" at a destination, and for each pair the name of the
/// source itself.
class TDMFileDirectInit : public TDMFileObject {
public:
  tdm::ExpressionPtr alignment;
  std::optional<tdm::Text> defaultDestination;
  tdm::RecordList<tdm::FileDestination> destinations;
};

/// `bank`. Keys "bank", and beside each field below.
class TDMFileBankDef : public TDMFileObject {
public:
  std::optional<tdm::Text> stubTemplate;   ///< "stub_template"
  std::optional<tdm::Text> stubArgBank;    ///< "stub_arg_bank"
  std::optional<tdm::Text> stubArgAddress; ///< "stub_arg_address"
  std::optional<tdm::Text> stubArgSwitch;  ///< "stub_arg_switch"
  std::optional<tdm::Text> stubPrefix;     ///< "stub_prefix"
  std::optional<tdm::Text> switchTemplate; ///< "switch_template"
  std::optional<tdm::Text> switchArgBank;  ///< "switch_arg_bank"
  std::optional<tdm::Text> switchPrefix;   ///< "switch_prefix"
  std::optional<tdm::Text> spaceName;      ///< "space_name"
};
