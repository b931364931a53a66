/// @file
/// The visitor that a space is read to, and the one that hands all on to a table of plain
/// functions.
///
/// A walk goes through a space in this order: stack definitions, heap definitions, the copy table,
/// direct initialisation, the beginnings of the vector tables, reserved ranges, then each layout
/// with its statements, then the ends of the vector tables. Nesting shows in the pairing of begin
/// and end. Nothing that a visitor does changes the course of a walk; a failure ends it at once,
/// without the ends of what is open.
#pragma once

#include <memory>

#include "common/tdm_types.h"

class TDMExpressionEnv;
class TDMExpressionEnvWrapper;
struct TDMAssignment;
struct TDMBlock;
struct TDMCopyTable;
struct TDMCreateSectionStatement;
struct TDMDirectInit;
struct TDMGroup;
struct TDMHeapDef;
struct TDMHeapStatement;
struct TDMIfStatement;
struct TDMMemoryCopyStatement;
struct TDMReservedRange;
struct TDMReservedStatement;
struct TDMSectionLayout;
struct TDMSelectionStatement;
struct TDMStackDef;
struct TDMStackStatement;
struct TDMStatementEnv;
struct TDMStructStatement;
struct TDMTableStatement;
struct TDMVectorTable;

/// Implemented by a client that reads layouts. An environment lives until the end of its scope.
struct TDM_CLIENT_API TDMSpaceWalker {
  /// Each stack of the space, in order.
  virtual void stack_def(TDMStackDef &definition) = 0;
  /// Each heap of the space, in order.
  virtual void heap_def(TDMHeapDef &definition) = 0;
  /// Each vector table, before reserved ranges and layouts.
  virtual void vector_table_begin(TDMVectorTable &table) = 0;
  /// Each vector table, in the same order, behind all layouts.
  virtual void vector_table_end(TDMVectorTable &table) = 0;
  /// Called once for each space; null if the space has no copy table.
  virtual void copy_table(TDMCopyTable *table) = 0;
  /// Once, if the space has direct initialisation.
  virtual void direct_init(TDMDirectInit &init) = 0;
  /// Each reserved range, before the layouts.
  virtual void reserved_range(TDMReservedRange &range) = 0;
  /// `"symbol" = value;`
  virtual void assignment(TDMAssignment &statement, TDMStatementEnv &env) = 0;
  /// `{`; the statements in it follow, then block_end.
  virtual void block_begin(TDMBlock &block, TDMStatementEnv &env) = 0;
  /// `}`
  virtual void block_end(TDMBlock &block, TDMStatementEnv &env) = 0;
  /// `if`, before its condition is evaluated; the branch that is chosen follows, then if_end.
  virtual void if_begin(TDMIfStatement &statement, TDMStatementEnv &env) = 0;
  /// Behind the branch, also where the condition chose none.
  virtual void if_end(TDMIfStatement &statement, TDMStatementEnv &env) = 0;
  /// `section`; its selections follow, in an environment that inherits nothing.
  virtual void create_section_begin(TDMCreateSectionStatement &statement, TDMStatementEnv &env) = 0;
  /// Behind the selections of a `section`.
  virtual void create_section_end(TDMCreateSectionStatement &statement, TDMStatementEnv &env) = 0;
  /// `group`; its statement follows, in the environment `inner`.
  virtual void group_begin(TDMGroup &group, TDMStatementEnv &outer, TDMStatementEnv &inner) = 0;
  /// Behind the statement of a group.
  virtual void group_end(TDMGroup &group, TDMStatementEnv &outer, TDMStatementEnv &inner) = 0;
  /// `heap` of a layout.
  virtual void heap_statement(TDMHeapStatement &statement, TDMStatementEnv &env) = 0;
  /// `memcopy`
  virtual void memory_copy(TDMMemoryCopyStatement &statement, TDMStatementEnv &env) = 0;
  /// `reserved` of a layout.
  virtual void reserved_statement(TDMReservedStatement &statement, TDMStatementEnv &env) = 0;
  /// Each layout, in order; its statements follow, then section_layout_end.
  virtual void section_layout_begin(TDMSectionLayout &layout) = 0;
  /// Behind the statements of a layout.
  virtual void section_layout_end(TDMSectionLayout &layout) = 0;
  /// `select`; the place to call TDMSelectionStatement::select().
  virtual void selection(TDMSelectionStatement &statement, TDMStatementEnv &env) = 0;
  /// `stack` of a layout.
  virtual void stack_statement(TDMStackStatement &statement, TDMStatementEnv &env) = 0;
  /// `struct`
  virtual void struct_statement(TDMStructStatement &statement, TDMStatementEnv &env) = 0;
  /// `copytable` of a layout.
  virtual void table_statement(TDMTableStatement &statement, TDMStatementEnv &env) = 0;
  /// What conditions are evaluated with, or null: `exists` then fails as without layout data.
  virtual TDMExpressionEnv *expression_env() = 0;
  /// A fresh environment, for a scope that inherits nothing.
  virtual std::unique_ptr<TDMStatementEnv> new_statement_env() = 0;
  virtual ~TDMSpaceWalker();
};

/// Calls the function of each visit; a null one is skipped.
struct TDM_CLIENT_API TDMSpaceWalkerWrapper final : TDMSpaceWalker {
  /// The table isn't copied. The expression environment may be null.
  TDMSpaceWalkerWrapper(const tdm_walk_callbacks &table, void *user,
                        TDMExpressionEnvWrapper *expression_env);

  void stack_def(TDMStackDef &definition) override;
  void heap_def(TDMHeapDef &definition) override;
  void vector_table_begin(TDMVectorTable &table) override;
  void vector_table_end(TDMVectorTable &table) override;
  void copy_table(TDMCopyTable *table) override;
  void direct_init(TDMDirectInit &init) override;
  void reserved_range(TDMReservedRange &range) override;
  void assignment(TDMAssignment &statement, TDMStatementEnv &env) override;
  void block_begin(TDMBlock &block, TDMStatementEnv &env) override;
  void block_end(TDMBlock &block, TDMStatementEnv &env) override;
  void if_begin(TDMIfStatement &statement, TDMStatementEnv &env) override;
  void if_end(TDMIfStatement &statement, TDMStatementEnv &env) override;
  void create_section_begin(TDMCreateSectionStatement &statement, TDMStatementEnv &env) override;
  void create_section_end(TDMCreateSectionStatement &statement, TDMStatementEnv &env) override;
  void group_begin(TDMGroup &group, TDMStatementEnv &outer, TDMStatementEnv &inner) override;
  void group_end(TDMGroup &group, TDMStatementEnv &outer, TDMStatementEnv &inner) override;
  void heap_statement(TDMHeapStatement &statement, TDMStatementEnv &env) override;
  void memory_copy(TDMMemoryCopyStatement &statement, TDMStatementEnv &env) override;
  void reserved_statement(TDMReservedStatement &statement, TDMStatementEnv &env) override;
  void section_layout_begin(TDMSectionLayout &layout) override;
  void section_layout_end(TDMSectionLayout &layout) override;
  void selection(TDMSelectionStatement &statement, TDMStatementEnv &env) override;
  void stack_statement(TDMStackStatement &statement, TDMStatementEnv &env) override;
  void struct_statement(TDMStructStatement &statement, TDMStatementEnv &env) override;
  void table_statement(TDMTableStatement &statement, TDMStatementEnv &env) override;
  TDMExpressionEnv *expression_env() override;
  std::unique_ptr<TDMStatementEnv> new_statement_env() override;

private:
  template <typename Function, typename... Arguments>
  void call(Function *function, Arguments *...arguments) const
  {
    if (function != nullptr) function(arguments..., user_);
  }

  const tdm_walk_callbacks &table_;
  void *user_;
  TDMExpressionEnvWrapper *expression_env_;
};
