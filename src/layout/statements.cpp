// How statements are read to a walker. Recursion follows the nesting of the text alone, which the
// parser limits, so the frames here are kept small.
#include "layout/statements.h"

#include "layout/space_walker.h"
#include "layout/statement_env.h"

TDMStatement::~TDMStatement() = default;

void TDMAssignment::walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &)
{
  walker.assignment(*this, env);
}

void TDMBlock::walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space)
{
  walker.block_begin(*this, env);
  for (const auto &statement : statements) statement->walk(walker, env, space);
  walker.block_end(*this, env);
}

void TDMIfStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env,
                          const tdm::LayoutSpace &space)
{
  walker.if_begin(*this, env);
  // The answers of an earlier walk don't count: the caller's sections may be others by now.
  condition->forget();
  TDMStatement *taken =
      condition->value(walker.expression_env()) != 0 ? true_statement.get() : false_statement.get();
  if (taken != nullptr) taken->walk(walker, env, space);
  walker.if_end(*this, env);
}

void TDMHeapStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &)
{
  walker.heap_statement(*this, env);
}

void TDMStackStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &)
{
  walker.stack_statement(*this, env);
}

void TDMTableStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &)
{
  walker.table_statement(*this, env);
}

void TDMReservedStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env,
                                const tdm::LayoutSpace &)
{
  walker.reserved_statement(*this, env);
}

void TDMCreateSectionStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env,
                                     const tdm::LayoutSpace &space)
{
  walker.create_section_begin(*this, env);
  {
    const std::unique_ptr<TDMStatementEnv> inner = walker.new_statement_env();
    statement->walk(walker, *inner, space);
  }
  walker.create_section_end(*this, env);
}

void TDMMemoryCopyStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env,
                                  const tdm::LayoutSpace &)
{
  walker.memory_copy(*this, env);
}

void TDMStructStatement::walk(TDMSpaceWalker &walker, TDMStatementEnv &env,
                              const tdm::LayoutSpace &)
{
  walker.struct_statement(*this, env);
}
