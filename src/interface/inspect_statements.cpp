// The additive readers of layouts: the tree of statements without a walk, and the statements.
#include "interface/inspect_lists.h"
#include "interface/tdm_inspect_layout.h"
#include "layout/group.h"
#include "layout/section_layout.h"
#include "layout/selection_statement.h"
#include "model/memory.h"

using tdm::guarded;
using tdm::text_result;

namespace {

template <class Statement> bool is(const tdm_statement *statement)
{
  return dynamic_cast<const Statement *>(statement) != nullptr;
}

struct Kind {
  int kind;
  bool (*matches)(const tdm_statement *statement);
};

constexpr Kind kinds[] = {
    {TDM_STATEMENT_ASSIGNMENT, is<TDMAssignment>},
    {TDM_STATEMENT_BLOCK, is<TDMBlock>},
    {TDM_STATEMENT_IF, is<TDMIfStatement>},
    {TDM_STATEMENT_CREATE_SECTION, is<TDMCreateSectionStatement>},
    {TDM_STATEMENT_GROUP, is<TDMGroup>},
    {TDM_STATEMENT_HEAP, is<TDMHeapStatement>},
    {TDM_STATEMENT_MEMORY_COPY, is<TDMMemoryCopyStatement>},
    {TDM_STATEMENT_RESERVED, is<TDMReservedStatement>},
    {TDM_STATEMENT_SELECTION, is<TDMSelectionStatement>},
    {TDM_STATEMENT_STACK, is<TDMStackStatement>},
    {TDM_STATEMENT_STRUCT, is<TDMStructStatement>},
    {TDM_STATEMENT_TABLE, is<TDMTableStatement>},
};

template <class Statement> Statement *as(tdm_statement *statement)
{
  return dynamic_cast<Statement *>(statement);
}

} // namespace

// The tree.

int tdm_inspect_section_layout_direction(const tdm_section_layout *layout)
{
  return layout->locate_direction - 1;
}

tdm_block *tdm_inspect_section_layout_block(const tdm_section_layout *layout)
{
  return layout->statement.get();
}

tdm_arr *tdm_inspect_block_statements(const tdm_block *block)
{
  return tdm::handle_list(block->statements);
}

int tdm_inspect_statement_kind(const tdm_statement *statement)
{
  for (const Kind &kind : kinds)
    if (kind.matches(statement)) return kind.kind;
  return 0;
}

tdm_assignment *tdm_inspect_statement_assignment(tdm_statement *statement)
{
  return as<TDMAssignment>(statement);
}

tdm_block *tdm_inspect_statement_block(tdm_statement *statement)
{
  return as<TDMBlock>(statement);
}

tdm_if_statement *tdm_inspect_statement_if(tdm_statement *statement)
{
  return as<TDMIfStatement>(statement);
}

tdm_create_section_statement *tdm_inspect_statement_create_section(tdm_statement *statement)
{
  return as<TDMCreateSectionStatement>(statement);
}

tdm_group *tdm_inspect_statement_group(tdm_statement *statement)
{
  return as<TDMGroup>(statement);
}

tdm_heap_statement *tdm_inspect_statement_heap(tdm_statement *statement)
{
  return as<TDMHeapStatement>(statement);
}

tdm_memory_copy_statement *tdm_inspect_statement_memory_copy(tdm_statement *statement)
{
  return as<TDMMemoryCopyStatement>(statement);
}

tdm_reserved_statement *tdm_inspect_statement_reserved(tdm_statement *statement)
{
  return as<TDMReservedStatement>(statement);
}

tdm_selection_statement *tdm_inspect_statement_selection(tdm_statement *statement)
{
  return as<TDMSelectionStatement>(statement);
}

tdm_stack_statement *tdm_inspect_statement_stack(tdm_statement *statement)
{
  return as<TDMStackStatement>(statement);
}

tdm_struct_statement *tdm_inspect_statement_struct(tdm_statement *statement)
{
  return as<TDMStructStatement>(statement);
}

tdm_table_statement *tdm_inspect_statement_table(tdm_statement *statement)
{
  return as<TDMTableStatement>(statement);
}

// The statements.

int tdm_inspect_get_assignment(const tdm_assignment *statement, tdm_inspect_assignment *out)
{
  return guarded([&] {
    *out = {text_result(statement->symbol), statement->value.get(), statement->plain ? 1 : 0};
    return 1;
  });
}

tdm_expression *tdm_inspect_if_statement_condition(const tdm_if_statement *statement)
{
  return statement->condition.get();
}

tdm_statement *tdm_inspect_if_statement_true_branch(const tdm_if_statement *statement)
{
  return statement->true_statement.get();
}

tdm_statement *tdm_inspect_if_statement_false_branch(const tdm_if_statement *statement)
{
  return statement->false_statement.get();
}

tdm_expression *tdm_inspect_heap_statement_size(const tdm_heap_statement *statement)
{
  return statement->size.get();
}

tdm_expression *tdm_inspect_stack_statement_size(const tdm_stack_statement *statement)
{
  return statement->size.get();
}

tdm_expression *tdm_inspect_reserved_statement_size(const tdm_reserved_statement *statement)
{
  return statement->size.get();
}

tdm_fillspec *tdm_inspect_reserved_statement_fill(const tdm_reserved_statement *statement)
{
  return statement->fill.get();
}

int tdm_inspect_get_create_section(const tdm_create_section_statement *statement,
                                   tdm_inspect_create_section *out)
{
  return guarded([&] {
    *out = {text_result(statement->overflow_name), statement->size.get(),
            statement->block_size.get(), statement->fill.get(), statement->statement.get()};
    return 1;
  });
}

int tdm_inspect_get_memory_copy(const tdm_memory_copy_statement *statement,
                                tdm_inspect_memory_copy *out)
{
  return guarded([&] {
    *out = {text_result(statement->name),
            tdm::handle(dynamic_cast<const TDMMemory *>(statement->memory.object)),
            statement->fill.get()};
    return 1;
  });
}

const char *tdm_inspect_struct_statement_name(const tdm_struct_statement *statement)
{
  return guarded([&] { return text_result(statement->name); });
}

tdm_arr *tdm_inspect_struct_statement_members(const tdm_struct_statement *statement)
{
  return tdm::guarded_array<tdm_inspect_struct_member>([&] {
    return tdm::array_of(statement->members, [](const auto &member) -> tdm_inspect_struct_member {
      return {member.first.get(), member.second};
    });
  });
}

const char *tdm_inspect_selection_statement_pattern(const tdm_selection_statement *statement)
{
  return guarded([&] { return text_result(statement->section_name); });
}
