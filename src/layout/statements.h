/// @file
/// The statements of a section layout but for selections (selection_statement.h) and groups
/// (group.h). They hold the plan; whoever links walks it and does the placing.
///
/// Expressions are null where the text gives none, and are evaluated when somebody asks.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/text.h"
#include "expressions/expression.h"
#include "layout/attributes.h"
#include "layout/fill_spec.h"
#include "layout/layout_memory.h"
#include "layout/statement.h"

/// `"symbol" = value;` or `"symbol" := value;`
struct TDM_CLIENT_API TDMAssignment final : TDMStatement {
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  tdm::Text symbol;                     ///< the name on the left
  int32_t op = 0;                       ///< 1 for `=`, 2 for `:=`
  std::unique_ptr<TDMExpression> value; ///< never null
  bool plain = false;                   ///< true for `=`
};

/// Statements one after the other: a scope of the text, but none of rules.
struct TDM_CLIENT_API TDMBlock final : TDMStatement {
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  tdm::ObjectList<std::unique_ptr<TDMStatement>> statements; ///< in the order of the text
};

struct TDM_CLIENT_API TDMIfStatement final : TDMStatement {
  /// Evaluates the condition anew, and visits the branch that it chooses.
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  std::unique_ptr<TDMExpression> condition;      ///< never null
  std::unique_ptr<TDMStatement> true_statement;  ///< never null
  std::unique_ptr<TDMStatement> false_statement; ///< null without `else`
};

struct TDM_CLIENT_API TDMHeapStatement final : TDMStatement {
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  tdm::Text name;                      ///< of the heap
  std::unique_ptr<TDMExpression> size; ///< null if not given
};

struct TDM_CLIENT_API TDMStackStatement final : TDMStatement {
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  tdm::Text name;                      ///< of the stack
  std::unique_ptr<TDMExpression> size; ///< null if not given
};

/// The place of the copy table.
struct TDM_CLIENT_API TDMTableStatement final : TDMStatement {
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;
};

/// An area that is kept free.
struct TDM_CLIENT_API TDMReservedStatement final : TDMStatement {
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  tdm::Text name;                      ///< of the area
  std::unique_ptr<TDMExpression> size; ///< null if not given
  TDMAttributes attributes;            ///< none set if not given
  std::unique_ptr<TDMFillSpec> fill;   ///< null if not given
  bool allow_alloc_absolute = false;   ///< `alloc_allowed = absolute`
  bool allow_alloc_ranged = false;     ///< `alloc_allowed = ranged`
};

/// An output section that is made on the spot, with the sections that go into it.
struct TDM_CLIENT_API TDMCreateSectionStatement final : TDMStatement {
  /// What it contains is a scope with a fresh environment.
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  tdm::Text name;                            ///< of the section
  std::optional<tdm::Text> overflow_name;    ///< `overflow = `; absent if not given
  std::unique_ptr<TDMExpression> size;       ///< never null; the block size where no size is given
  std::unique_ptr<TDMExpression> block_size; ///< null if not given
  TDMAttributes attributes;                  ///< none set if not given
  std::unique_ptr<TDMFillSpec> fill;         ///< null if not given
  std::unique_ptr<TDMStatement> statement;   ///< its selections and groups
};

/// A copy of the contents of a memory.
struct TDM_CLIENT_API TDMMemoryCopyStatement final : TDMStatement {
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  tdm::Text name;                    ///< of the section that holds the copy
  tdm::LayoutMemory memory;          ///< whose contents are meant
  std::unique_ptr<TDMFillSpec> fill; ///< null if not given
};

/// A section made of values.
struct TDM_CLIENT_API TDMStructStatement final : TDMStatement {
  void walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space) override;

  tdm::Text name;                                                              ///< of the section
  tdm::ObjectList<std::pair<std::unique_ptr<TDMExpression>, int32_t>> members; ///< value and size
};
