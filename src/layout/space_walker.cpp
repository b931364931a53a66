// Hands the visits of a walk on to the caller's functions.
#include "layout/space_walker.h"

#include "expressions/expression_env.h"
#include "layout/statement_env.h"

TDMSpaceWalker::~TDMSpaceWalker() = default;

TDMSpaceWalkerWrapper::TDMSpaceWalkerWrapper(const tdm_walk_callbacks &table, void *user,
                                             TDMExpressionEnvWrapper *expression_env)
    : table_(table), user_(user), expression_env_(expression_env)
{
}

TDMExpressionEnv *TDMSpaceWalkerWrapper::expression_env()
{
  return expression_env_;
}

std::unique_ptr<TDMStatementEnv> TDMSpaceWalkerWrapper::new_statement_env()
{
  return std::make_unique<TDMStatementEnv>();
}

// What is visited without an environment.

void TDMSpaceWalkerWrapper::stack_def(TDMStackDef &definition)
{
  call(table_.stack_def, &definition);
}

void TDMSpaceWalkerWrapper::heap_def(TDMHeapDef &definition)
{
  call(table_.heap_def, &definition);
}

void TDMSpaceWalkerWrapper::vector_table_begin(TDMVectorTable &table)
{
  call(table_.vector_table_begin, &table);
}

void TDMSpaceWalkerWrapper::vector_table_end(TDMVectorTable &table)
{
  call(table_.vector_table_end, &table);
}

void TDMSpaceWalkerWrapper::copy_table(TDMCopyTable *table)
{
  call(table_.copy_table, table);
}

void TDMSpaceWalkerWrapper::direct_init(TDMDirectInit &init)
{
  call(table_.direct_init, &init);
}

void TDMSpaceWalkerWrapper::reserved_range(TDMReservedRange &range)
{
  call(table_.reserved_range, &range);
}

void TDMSpaceWalkerWrapper::section_layout_begin(TDMSectionLayout &layout)
{
  call(table_.section_layout_begin, &layout);
}

void TDMSpaceWalkerWrapper::section_layout_end(TDMSectionLayout &layout)
{
  call(table_.section_layout_end, &layout);
}

// Statements.

void TDMSpaceWalkerWrapper::assignment(TDMAssignment &statement, TDMStatementEnv &env)
{
  call(table_.assignment, &statement, &env);
}

void TDMSpaceWalkerWrapper::block_begin(TDMBlock &block, TDMStatementEnv &env)
{
  call(table_.block_begin, &block, &env);
}

void TDMSpaceWalkerWrapper::block_end(TDMBlock &block, TDMStatementEnv &env)
{
  call(table_.block_end, &block, &env);
}

void TDMSpaceWalkerWrapper::if_begin(TDMIfStatement &statement, TDMStatementEnv &env)
{
  call(table_.if_begin, &statement, &env);
}

void TDMSpaceWalkerWrapper::if_end(TDMIfStatement &statement, TDMStatementEnv &env)
{
  call(table_.if_end, &statement, &env);
}

void TDMSpaceWalkerWrapper::create_section_begin(TDMCreateSectionStatement &statement,
                                                 TDMStatementEnv &env)
{
  call(table_.create_section_begin, &statement, &env);
}

void TDMSpaceWalkerWrapper::create_section_end(TDMCreateSectionStatement &statement,
                                               TDMStatementEnv &env)
{
  call(table_.create_section_end, &statement, &env);
}

void TDMSpaceWalkerWrapper::group_begin(TDMGroup &group, TDMStatementEnv &outer,
                                        TDMStatementEnv &inner)
{
  call(table_.group_begin, &group, &outer, &inner);
}

void TDMSpaceWalkerWrapper::group_end(TDMGroup &group, TDMStatementEnv &outer,
                                      TDMStatementEnv &inner)
{
  call(table_.group_end, &group, &outer, &inner);
}

void TDMSpaceWalkerWrapper::heap_statement(TDMHeapStatement &statement, TDMStatementEnv &env)
{
  call(table_.heap_statement, &statement, &env);
}

void TDMSpaceWalkerWrapper::memory_copy(TDMMemoryCopyStatement &statement, TDMStatementEnv &env)
{
  call(table_.memory_copy, &statement, &env);
}

void TDMSpaceWalkerWrapper::reserved_statement(TDMReservedStatement &statement,
                                               TDMStatementEnv &env)
{
  call(table_.reserved_statement, &statement, &env);
}

void TDMSpaceWalkerWrapper::selection(TDMSelectionStatement &statement, TDMStatementEnv &env)
{
  call(table_.selection, &statement, &env);
}

void TDMSpaceWalkerWrapper::stack_statement(TDMStackStatement &statement, TDMStatementEnv &env)
{
  call(table_.stack_statement, &statement, &env);
}

void TDMSpaceWalkerWrapper::struct_statement(TDMStructStatement &statement, TDMStatementEnv &env)
{
  call(table_.struct_statement, &statement, &env);
}

void TDMSpaceWalkerWrapper::table_statement(TDMTableStatement &statement, TDMStatementEnv &env)
{
  call(table_.table_statement, &statement, &env);
}
