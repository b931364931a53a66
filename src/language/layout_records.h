// The records of section layouts: a tree of statements with groups, selections and output
// sections. Statements nest no deeper than the parser's limit, so destruction may recurse here.
#pragma once

#include "language/basic_records.h"

namespace tdm {

/// What TDMFileSectionStatement::kind() gives.
enum StatementKind : int {
  kStatementAssignment = 0,
  kStatementIf = 1,
  kStatementSelect = 2,
  kStatementHeap = 3,
  kStatementStack = 4,
  kStatementTable = 5,
  kStatementReserved = 6,
  kStatementSection = 7,
  kStatementGroup = 8,
  kStatementBlock = 9,
  kStatementMemCopy = 10,
  kStatementStruct = 11
};

/// TDMFileAssignment::op.
enum AssignmentOperator : std::int32_t {
  kAssign = 1,
  kAssignColon = 2,
  kAssignAdd = 3,
  kAssignSub = 4,
  kAssignMul = 5,
  kAssignDiv = 6
};

/// A set of section attributes, one flag for each letter.
struct AttributeSet {
  bool r = false;
  bool w = false;
  bool x = false;
  bool i = false;
  bool s = false;
  bool b = false;
  bool p = false;

  void merge(const AttributeSet &other)
  {
    r |= other.r;
    w |= other.w;
    x |= other.x;
    i |= other.i;
    s |= other.s;
    b |= other.b;
    p |= other.p;
  }

  friend bool operator==(const AttributeSet &, const AttributeSet &) = default;
};

/// The set that the letters of the word make up. Throws TDMFileSyntaxException for a letter that
/// is no attribute.
[[nodiscard]] AttributeSet attribute_set(std::string_view word);

} // namespace tdm

/// A statement of a layout.
class TDMFileSectionStatement : public TDMFileObject {
public:
  /// A number of tdm::StatementKind.
  [[nodiscard]] virtual int kind() const = 0;
};

using TDMFileStatementPtr = std::unique_ptr<TDMFileSectionStatement>;

/// The base of heap, stack, table and reserved statements.
class TDMFileSpecialSectionStatement : public TDMFileSectionStatement {};

/// `"symbol" = value`. Keys "symbolName", "op", "value".
class TDMFileAssignment final : public TDMFileSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementAssignment; }

  tdm::Text symbolName;
  std::int32_t op = 0; ///< tdm::AssignmentOperator
  tdm::ExpressionPtr value;
};

/// `{ ... }`. No keys.
class TDMFileBlock final : public TDMFileSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementBlock; }

  tdm::RecordList<TDMFileStatementPtr> statements;
};

/// `if`. Keys "condition", "trueStatement", "falseStatement".
class TDMFileIfStatement final : public TDMFileSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementIf; }

  tdm::ExpressionPtr condition;
  TDMFileStatementPtr trueStatement;
  TDMFileStatementPtr falseStatement; ///< may be null
};

/// A criterion of a selection.
class TDMFileSelector : public TDMFileObject {
public:
  /// 1, the number of the one class below.
  [[nodiscard]] virtual int kind() const = 0;
};

/// Attributes that selected sections must have, and others that they must not have.
class TDMFileSelectAttrs final : public TDMFileSelector {
public:
  [[nodiscard]] int kind() const override { return 1; }

  tdm::AttributeSet attributesSet;
  tdm::AttributeSet attributesNotSet;
};

/// `select`. Keys "select", "referenceTree", "sectionName".
class TDMFileSelectSectionStatement final : public TDMFileSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementSelect; }

  std::optional<tdm::Text> sectionName; ///< a selection pattern, as written
  bool referenceTree = false;
  tdm::RecordList<std::unique_ptr<TDMFileSelector>> selectors;
};

/// `heap` of a layout. Keys "sectionName", "size".
class TDMFileHeapStatement final : public TDMFileSpecialSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementHeap; }

  tdm::Text sectionName;
  tdm::ExpressionPtr size;
};

/// `stack` of a layout. Keys "name", "size".
class TDMFileStackStatement final : public TDMFileSpecialSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementStack; }

  tdm::Text name;
  tdm::ExpressionPtr size;
};

/// `copytable` of a layout. Key "copytable".
class TDMFileTableStatement final : public TDMFileSpecialSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementTable; }
};

/// `reserved` of a layout. Keys "sectionName", "size", "attributes", "allowAllocAbsolute",
/// "allowAllocRanged".
class TDMFileReservedStatement final : public TDMFileSpecialSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementReserved; }

  tdm::Text sectionName;
  tdm::ExpressionPtr size;
  std::optional<tdm::AttributeSet> attributes;
  std::unique_ptr<TDMFileFillSpec> fillSpec;
  bool allowAllocAbsolute = false;
  bool allowAllocRanged = false;
};

/// `section`. Keys "statement" at the word, "sectionName", "attributes", "size", "blockSize",
/// "overflowSectionName".
class TDMFileSectionCreationStatement final : public TDMFileSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementSection; }

  tdm::Text sectionName;
  std::optional<tdm::Text> overflowSectionName;
  tdm::ExpressionPtr size;
  tdm::ExpressionPtr blockSize;
  std::optional<tdm::AttributeSet> attributes;
  std::unique_ptr<TDMFileFillSpec> fillSpec;
  std::unique_ptr<TDMFileBlock> statement; ///< always there, may be empty
};

/// One range of a group's location: a memory, with bounds or without, or two bounds.
class TDMFileGroupLocationRange : public tdm::RecordMemory {
public:
  virtual ~TDMFileGroupLocationRange() = default;

  std::optional<tdm::Text> memoryName;
  std::optional<tdm::Text> mappingName;
  tdm::ExpressionPtr low;
  tdm::ExpressionPtr high;
};

/// Where a group is to go. Keys "address", "range", "memoryReference".
class TDMFileGroupLocation : public TDMFileObject {
public:
  tdm::ExpressionPtr address;
  std::optional<tdm::Text> memoryName;
  std::optional<tdm::Text> mappingName;
  tdm::RecordList<std::unique_ptr<TDMFileGroupLocationRange>> ranges;
};

/// `group`. Keys "group", "contiguous", "clustered", "ordered", "overlay", "copy", "nocopy",
/// "alignment", "attributes", "loadTimeGroup", "loadAddress", "runAddress", "outputSectionName",
/// "crossReferences", "paged", "pageNum", "pageAlign", "priority", "statement".
class TDMFileGroup final : public TDMFileSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementGroup; }

  std::optional<tdm::Text> name;
  bool contiguous = false;
  bool clustered = false;
  bool ordered = false;
  bool overlay = false;
  bool copy = false;
  bool nocopy = false;
  tdm::ExpressionPtr alignment;
  std::optional<tdm::AttributeSet> attributes;
  std::unique_ptr<TDMFileGroupLocation> loadAddress;
  std::unique_ptr<TDMFileFillSpec> fillSpec;
  bool paged = false;
  tdm::ExpressionPtr pageNum;
  tdm::ExpressionPtr pageAlign;
  tdm::RecordList<tdm::FileRange> pages;
  std::unique_ptr<TDMFileGroupLocation> runAddress;
  bool crossReferences = false;
  std::optional<tdm::Text> outputSectionName;
  bool loadTimeGroup = false;
  std::int32_t priority = 1;
  TDMFileStatementPtr statement;
};

/// `memcopy`. Keys "sectionName" at the list, "memName", "fillSpec".
class TDMFileMemCopyStatement final : public TDMFileSectionStatement {
public:
  [[nodiscard]] int kind() const override { return tdm::kStatementMemCopy; }

  tdm::Text sectionName;
  std::optional<tdm::Text> memName;
  std::unique_ptr<TDMFileFillSpec> fillSpec;
};

/// `struct`. Key "sectionName".
class TDMFileStructStatement final : public TDMFileSectionStatement {
public:
  struct Member {
    tdm::ExpressionPtr value;
    std::int32_t size;
  };

  [[nodiscard]] int kind() const override { return tdm::kStatementStruct; }

  tdm::Text sectionName;
  tdm::RecordList<Member> members;
};

/// `section_layout`. Keys "section_layout", "cpuName", "coreName", "spaceName", "locateDirection",
/// "statement".
class TDMFileSectionLayout : public TDMFileObject {
public:
  std::optional<tdm::Text> cpuName;
  std::optional<tdm::Text> coreName;
  std::optional<tdm::Text> spaceName; ///< several names are joined by '|'
  int locateDirection = tdm::kDirectionNotSet;
  std::unique_ptr<TDMFileBlock> statement;
};
