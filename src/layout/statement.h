/// @file
/// The base of all statements of a section layout.
#pragma once

#include "common/tdm_object.h"
#include "common/tdm_types.h"

struct TDMSpaceWalker;
struct TDMStatementEnv;

namespace tdm {
class LayoutSpace;
} // namespace tdm

struct TDM_CLIENT_API TDMStatement : TDMObject {
  virtual ~TDMStatement();

  /// Reads the statement to the walker, and what it contains. `env` is that of the scope, `space`
  /// the one that the layout lies in. Failures end the walk where it stands.
  virtual void walk(TDMSpaceWalker &walker, TDMStatementEnv &env,
                    const tdm::LayoutSpace &space) = 0;

  TDMStatement(const TDMStatement &) = delete;
  TDMStatement &operator=(const TDMStatement &) = delete;

protected:
  TDMStatement() = default;
};
