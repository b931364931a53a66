// Reads a group to a walker.
#include "layout/group.h"

#include "layout/space_walker.h"
#include "layout/statement_env.h"

TDMGroup::~TDMGroup() = default;

void TDMGroup::walk(TDMSpaceWalker &walker, TDMStatementEnv &env, const tdm::LayoutSpace &space)
{
  const std::unique_ptr<TDMStatementEnv> inner = tdm::inner_environment(*this, env, space);
  walker.group_begin(*this, env, *inner);
  statement->walk(walker, *inner, space);
  walker.group_end(*this, env, *inner);
}
