/// @file
/// What a client in C++ starts from: it includes all that the library shows beyond the C interface.
///
/// 1. Handles of the C interface are the objects themselves: a `tdm_fillspec *` is a TDMFillSpec *
///    (its values are expressions), a `tdm_group *` a TDMGroup *. What is only declared here stays
///    opaque, TDMSpace and TDMMemory for instance, and is asked through the functions of tdm.h.
/// 2. A client derives from TDMExpressionEnv to answer expressions, from TDMSpaceWalker to read a
///    space, from TDMStatementEnv, TDMSection and perhaps TDMSectionMap to have sections selected.
/// 3. What a handle leads to belongs to the spec and dies with it; a client puts nothing of its own
///    there, which would not be destroyed. A std::unique_ptr that is returned belongs to the
///    client, and so does one reference to a node that is returned. Texts in objects are views of
///    the pool of texts. They, clones of expressions and copies of places may outlive the spec,
///    until tdm_cleanup(). An object that the client makes sees the client's text, which it needs
///    as long as it lives.
/// 4. Failures are thrown as pointers to objects that were made with new. Whoever catches one ends
///    it, with delete, as the type of its family:
///
///        try {
///          tdm_walk_space(space, walker);
///        } catch (TDMFileException *failure) { // of the language, the model and expressions
///          std::unique_ptr<TDMFileException> owner(failure);
///          report(failure->text());
///        } catch (MauLibException *failure) { // of the arithmetic of AddressValue
///          delete failure;
///        }
///
///    Each root serves all of its family: the classes below the first add nothing to it, and the
///    second has a virtual destructor. Nothing else is thrown by pointer; std::bad_alloc and what
///    the client's own functions throw come as values.
/// 5. One thread at a time, as in C; compiled as C++20 with the C++ library that this was built
/// with.
#ifndef TDM_C_CLIENT_H
#define TDM_C_CLIENT_H

#include "common/failures.h"
#include "common/tdm_types.h"
#include "expressions/applications.h"
#include "expressions/checksum.h"
#include "expressions/expression.h"
#include "expressions/expression_env.h"
#include "expressions/exprlib/exprlib.h"
#include "expressions/queries.h"
#include "layout/copy_table.h"
#include "layout/fill_spec.h"
#include "layout/group.h"
#include "layout/reserved_range.h"
#include "layout/section.h"
#include "layout/section_layout.h"
#include "layout/section_map.h"
#include "layout/section_selector.h"
#include "layout/selection_statement.h"
#include "layout/space_walker.h"
#include "layout/stack_heap_def.h"
#include "layout/statement_env.h"
#include "layout/statements.h"
#include "layout/vector_table.h"

/// Reads the space to the walker, in the order that space_walker.h tells. A failure ends the walk
/// where it stands, without the ends of what is open, and comes out as a pointer.
TDM_CLIENT_API void tdm_walk_space(TDMSpace &space, TDMSpaceWalker &walker);

#endif
