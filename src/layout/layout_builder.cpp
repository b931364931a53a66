// Builds statements, one function for each kind. Recursion follows the nesting of the text, which
// the parser limits; failures are composed elsewhere, so that the frames stay small.
#include "layout/layout_builder.h"

#include "common/failures.h"
#include "common/make_object.h"
#include "language/layout_records.h"
#include "layout/group.h"
#include "layout/group_location_builder.h"
#include "layout/record_values.h"
#include "layout/section_names.h"

namespace tdm {

namespace {

TDMAttributes attributes_of(const AttributeSet &set)
{
  return {set.r, set.w, set.x, set.i, set.s, set.b, set.p};
}

/// What a text doesn't give is a set of no flags.
TDMAttributes attributes_of(const std::optional<AttributeSet> &set)
{
  return set ? attributes_of(*set) : TDMAttributes();
}

class StatementBuilder {
public:
  StatementBuilder(const LayoutContext &context, const TDMSourceLocation &layout_place)
      : context_(context), layout_place_(layout_place)
  {
  }

  std::unique_ptr<TDMBlock> block(const TDMFileBlock &record)
  {
    auto block = start<TDMBlock>(record);
    block->statements.reserve(record.statements.size());
    for (const auto &statement : record.statements) block->statements.push_back(build(*statement));
    return block;
  }

private:
  std::unique_ptr<TDMStatement> build(const TDMFileSectionStatement &record)
  {
    switch (record.kind()) {
    case kStatementAssignment:
      return assignment(static_cast<const TDMFileAssignment &>(record));
    case kStatementIf:
      return if_statement(static_cast<const TDMFileIfStatement &>(record));
    case kStatementSelect:
      return selection(static_cast<const TDMFileSelectSectionStatement &>(record));
    case kStatementHeap:
      return heap(static_cast<const TDMFileHeapStatement &>(record));
    case kStatementStack:
      return stack(static_cast<const TDMFileStackStatement &>(record));
    case kStatementTable:
      return start<TDMTableStatement>(record);
    case kStatementReserved:
      return reserved(static_cast<const TDMFileReservedStatement &>(record));
    case kStatementSection:
      return create_section(static_cast<const TDMFileSectionCreationStatement &>(record));
    case kStatementGroup:
      return group(static_cast<const TDMFileGroup &>(record));
    case kStatementMemCopy:
      return memory_copy(static_cast<const TDMFileMemCopyStatement &>(record));
    case kStatementStruct:
      return struct_statement(static_cast<const TDMFileStructStatement &>(record));
    default:
      return block(static_cast<const TDMFileBlock &>(record));
    }
  }

  template <class Statement> std::unique_ptr<Statement> start(const TDMFileObject &record)
  {
    auto statement = make_object<Statement>();
    statement->sourceLocations = record.sourceLocations;
    return statement;
  }

  std::unique_ptr<TDMStatement> assignment(const TDMFileAssignment &record)
  {
    auto statement = start<TDMAssignment>(record);
    statement->symbol = record.symbolName;
    statement->op = record.op;
    statement->value = translate(record, "value", record.value);
    if (record.op != kAssign && record.op != kAssignColon)
      fail_at(record, "op", "unsupported assignment operator, use = or :=");
    statement->plain = record.op == kAssign;
    append(context_.names.assigned_symbols, statement->symbol);
    return statement;
  }

  std::unique_ptr<TDMStatement> if_statement(const TDMFileIfStatement &record)
  {
    auto statement = start<TDMIfStatement>(record);
    statement->condition = translate(record, "condition", record.condition);
    statement->true_statement = build(*record.trueStatement);
    if (record.falseStatement != nullptr)
      statement->false_statement = build(*record.falseStatement);
    return statement;
  }

  std::unique_ptr<TDMStatement> selection(const TDMFileSelectSectionStatement &record)
  {
    auto statement = build_selection(record);
    if (const Text *name = statement->literal_section_name())
      append(context_.names.referenced_names, *name);
    return statement;
  }

  std::unique_ptr<TDMStatement> heap(const TDMFileHeapStatement &record)
  {
    auto statement = start<TDMHeapStatement>(record);
    statement->name = record.sectionName;
    statement->size = translate(record, "size", record.size);
    return statement;
  }

  std::unique_ptr<TDMStatement> stack(const TDMFileStackStatement &record)
  {
    auto statement = start<TDMStackStatement>(record);
    statement->name = record.name;
    statement->size = translate(record, "size", record.size);
    return statement;
  }

  std::unique_ptr<TDMStatement> reserved(const TDMFileReservedStatement &record)
  {
    auto statement = start<TDMReservedStatement>(record);
    statement->name = record.sectionName;
    statement->size = translate(record, "size", record.size);
    statement->attributes = attributes_of(record.attributes);
    statement->fill = fill(record, record.fillSpec);
    statement->allow_alloc_absolute = record.allowAllocAbsolute;
    statement->allow_alloc_ranged = record.allowAllocRanged;
    return statement;
  }

  std::unique_ptr<TDMStatement> create_section(const TDMFileSectionCreationStatement &record)
  {
    auto statement = start<TDMCreateSectionStatement>(record);
    statement->name = record.sectionName;
    set_section_size(*statement, record);
    statement->overflow_name = record.overflowSectionName;
    statement->attributes = attributes_of(record.attributes);
    statement->fill = fill(record, record.fillSpec);
    statement->statement = block(*record.statement);
    return statement;
  }

  /// One of the two sizes has to be there, and the one that counts has to be above 0.
  void set_section_size(TDMCreateSectionStatement &statement,
                        const TDMFileSectionCreationStatement &record)
  {
    if (record.size == nullptr && record.blockSize == nullptr)
      fail_at(record, "sectionName",
              "neither size nor blocksize specified for linker-created section " + statement.name);
    statement.size = translate(record, "size", record.size);
    statement.block_size = translate(record, "blockSize", record.blockSize);
    if (statement.size == nullptr) statement.size = statement.block_size->clone();
    if (statement.size->value() <= 0)
      fail_at(record, "sectionName",
              "the specified size or blocksize is invalid for linker-created section " +
                  statement.name);
  }

  std::unique_ptr<TDMStatement> memory_copy(const TDMFileMemCopyStatement &record)
  {
    auto statement = start<TDMMemoryCopyStatement>(record);
    statement->name = record.sectionName;
    if (!record.memName)
      fail_at(record, "sectionName", "memory attribute required for memory copy statement");
    statement->memory = find_memory(context_, *record.memName, "a memcopy memory reference",
                                    place(record, "memName"));
    statement->fill = fill(record, record.fillSpec);
    return statement;
  }

  std::unique_ptr<TDMStatement> struct_statement(const TDMFileStructStatement &record)
  {
    auto statement = start<TDMStructStatement>(record);
    statement->name = record.sectionName;
    statement->members.reserve(record.members.size());
    for (const auto &member : record.members)
      statement->members.emplace_back(translate(record, "sectionName", member.value), member.size);
    return statement;
  }

  std::unique_ptr<TDMStatement> group(const TDMFileGroup &record)
  {
    auto group = start<TDMGroup>(record);
    group->name = record.name;
    if (group->name) enter_group_name(*group->name, record);
    copy_rules(*group, record);
    translate_rules(*group, record);
    set_location(*group, record);
    for (const FileRange &page : record.pages)
      group->pages.emplace_back(translate(record, "pageAlign", page.low),
                                translate(record, "pageAlign", page.high));
    group->statement = build(*record.statement);
    return group;
  }

  void enter_group_name(Text name, const TDMFileGroup &record)
  {
    if (!context_.names.group_names.add(name))
      fail_at(record, "group",
              "group " + name + " defined more than once for core " + context_.core.text());
  }

  static void copy_rules(TDMGroup &group, const TDMFileGroup &record)
  {
    group.contiguous = record.contiguous;
    group.clustered = record.clustered;
    group.ordered = record.ordered;
    group.overlay = record.overlay;
    group.copy = record.copy;
    group.nocopy = record.nocopy;
    if (record.attributes) group.attributes = attributes_of(*record.attributes);
    group.paged = record.paged;
    group.cross_references = record.crossReferences;
    group.output_section_name = record.outputSectionName;
    group.load_time = record.loadTimeGroup;
    group.priority = record.priority;
  }

  void translate_rules(TDMGroup &group, const TDMFileGroup &record)
  {
    group.alignment = translate(record, "alignment", record.alignment);
    group.fill = fill(record, record.fillSpec);
    group.page_number = translate(record, "pageNum", record.pageNum);
    group.page_size = translate(record, "pageAlign", record.pageAlign);
  }

  /// A run address goes before a load address.
  void set_location(TDMGroup &group, const TDMFileGroup &record)
  {
    group.is_run_address = record.runAddress != nullptr;
    const TDMFileGroupLocation *location =
        group.is_run_address ? record.runAddress.get() : record.loadAddress.get();
    if (location != nullptr)
      group.location =
          build_group_location(*location, context_,
                               place(record, group.is_run_address ? LocationKey("runAddress")
                                                                  : LocationKey("loadAddress")));
  }

  std::unique_ptr<TDMExpression> translate(const TDMFileObject &record, LocationKey key,
                                           const ExpressionPtr &expression) const
  {
    return translate_expression(expression.get(), context_.scope,
                                [&] { return place(record, key); });
  }

  std::unique_ptr<TDMFillSpec> fill(const TDMFileObject &record,
                                    const std::unique_ptr<TDMFileFillSpec> &fill_record) const
  {
    if (fill_record == nullptr) return nullptr;
    return make_object<TDMFillSpec>(*fill_record, context_.scope, place(record, "fillSpec"));
  }

  /// Where the key was stored; else where anything of the statement is known to stand.
  TDMSourceLocation place(const TDMFileObject &record, LocationKey key) const
  {
    if (const TDMSourceLocation *found = record.find_location(key)) return *found;
    const auto &known = record.sourceLocations.entries();
    return known.empty() ? layout_place_ : known.front().second;
  }

  [[noreturn]] void fail_at(const TDMFileObject &record, LocationKey key,
                            const std::string &text) const
  {
    throw new TDMSyntaxException(place(record, key), text);
  }

  const LayoutContext &context_;
  const TDMSourceLocation layout_place_;
};

} // namespace

std::unique_ptr<TDMSectionLayout> build_section_layout(const TDMFileSectionLayout &record,
                                                       const LayoutContext &context)
{
  auto layout = make_object<TDMSectionLayout>();
  layout->sourceLocations = record.sourceLocations;
  layout->locate_direction = record.locateDirection;
  layout->statement =
      StatementBuilder(context, place_of(record, "section_layout")).block(*record.statement);
  return layout;
}

std::unique_ptr<TDMSelectionStatement> build_selection(const TDMFileSelectSectionStatement &record)
{
  auto statement = make_object<TDMSelectionStatement>(record.sourceLocations, record.sectionName);
  statement->use_reference_tree = record.referenceTree;
  statement->selectors.reserve(record.selectors.size());
  for (const auto &selector : record.selectors)
    statement->selectors.push_back(build_selector(*selector));
  return statement;
}

std::unique_ptr<TDMSectionSelector> build_selector(const TDMFileSelector &record)
{
  const auto &attributes = static_cast<const TDMFileSelectAttrs &>(record);
  return make_object<TDMSectionAttributesSelector>(attributes_of(attributes.attributesSet),
                                                   attributes_of(attributes.attributesNotSet));
}

LayoutMemory find_memory(const LayoutContext &context, Text name, const std::string &what,
                         const TDMSourceLocation &place)
{
  if (context.memories == nullptr)
    throw new TDMSyntaxException(
        place, "Using a " + what +
                   " in a section layout within an address space definition is not possible. For "
                   "internal memories, use a section layout in the derivative or on global scope; "
                   "for global memories use a section layout on global scope.");
  const LayoutMemory memory = context.memories->find(name);
  if (memory.object == nullptr)
    throw new TDMSyntaxException(place, "Could not find memory " + name + " for " + what);
  return memory;
}

} // namespace tdm
