// Reads a space to a table of functions.
#include "expressions/expression_env.h"
#include "interface/guard.h"
#include "interface/tdm.h"
#include "layout/space_walker.h"
#include "model/space.h"

namespace {

constexpr tdm_walk_callbacks no_callbacks{};

} // namespace

void tdm_space_walk(tdm_space *space, const tdm_walk_callbacks *callbacks, void *user,
                    const tdm_expression_callbacks *expression_callbacks, void *expression_user)
{
  tdm::guarded([&] {
    TDMExpressionEnvWrapper env(expression_callbacks, expression_user);
    TDMSpaceWalkerWrapper walker(callbacks != nullptr ? *callbacks : no_callbacks, user,
                                 expression_callbacks != nullptr ? &env : nullptr);
    space->walk(walker);
  });
}
