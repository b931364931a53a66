/// @file
/// What a `fill` says: the values that a gap is filled with, and their alignment.
#pragma once

#include <memory>
#include <vector>

#include "common/tdm_object.h"
#include "expressions/expression.h"

class TDMFileFillSpec;

namespace tdm {
class ArgumentScope;
} // namespace tdm

/// Expressions stay open: they may ask for data that only the caller has.
struct TDMFillSpec : tdm::ObjectMemory {
  /// Made by the model alone.
  TDMFillSpec(const TDMFileFillSpec &record, const tdm::ArgumentScope &scope,
              const TDMSourceLocation &place);

  tdm::ObjectList<std::unique_ptr<TDMExpression>> values; ///< empty for a bare `fill`
  std::unique_ptr<TDMExpression> alignment;               ///< null without a colon
};
