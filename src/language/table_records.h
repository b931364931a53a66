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
  std::string symbolName;
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
  std::optional<std::string> name;
  tdm::ExpressionPtr vectorSize;
  tdm::ExpressionPtr size;
  std::optional<std::string> idSymbolPrefix;
  tdm::ExpressionPtr address;
  std::optional<std::string> memoryName;
  std::optional<std::string> templateName;
  std::optional<std::string> templateSymbolName;
  std::optional<std::string> vectorNamePrefix;
  bool defaultInline = true;
  bool copy = false;
  std::unique_ptr<TDMFileVectorValue> defaultValue;
  tdm::RecordList<std::unique_ptr<TDMFileVector>> vectors;
};

/// `table` of a copy table. Key "table".
class TDMFileCopySubTable : public TDMFileObject {
public:
  std::optional<std::string> symbol;
  tdm::RecordList<std::unique_ptr<TDMFileCopySubTableSpace>> spaces;
};

/// `copytable` of a space or setup. Keys "alignment", "copyUnit", "pageRestrictROMCopies",
/// "defaultCopyDestination", and for each pair the name of the source itself.
class TDMFileCopyTable : public TDMFileObject {
public:
  tdm::ExpressionPtr alignment;
  tdm::ExpressionPtr copyUnit;
  std::optional<std::string> defaultCopyDestination;
  tdm::RecordList<tdm::FileDestination> destinations;
  bool pageRestrictROMCopies = false;
  tdm::RecordList<std::unique_ptr<TDMFileCopySubTable>> subTables;
};

/// `direct_init`. Keys "alignment", "name" at a destination, and for each pair the name of the
/// source itself.
class TDMFileDirectInit : public TDMFileObject {
public:
  tdm::ExpressionPtr alignment;
  std::optional<std::string> defaultDestination;
  tdm::RecordList<tdm::FileDestination> destinations;
};

/// `bank`. Keys "bank", and beside each field below.
class TDMFileBankDef : public TDMFileObject {
public:
  std::optional<std::string> stubTemplate;   ///< "stub_template"
  std::optional<std::string> stubArgBank;    ///< "stub_arg_bank"
  std::optional<std::string> stubArgAddress; ///< "stub_arg_address"
  std::optional<std::string> stubArgSwitch;  ///< "stub_arg_switch"
  std::optional<std::string> stubPrefix;     ///< "stub_prefix"
  std::optional<std::string> switchTemplate; ///< "switch_template"
  std::optional<std::string> switchArgBank;  ///< "switch_arg_bank"
  std::optional<std::string> switchPrefix;   ///< "switch_prefix"
  std::optional<std::string> spaceName;      ///< "space_name"
};
