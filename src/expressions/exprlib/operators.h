// The operators that evaluation (eval.cpp) applies once their operands have been evaluated.
#pragma once

#include <cstdint>

#include "expressions/exprlib/exprlib.h"

namespace exprlib {

struct OperatorRow {
  std::uint8_t types;    // bit n: the operator has an evaluation for value type n
  std::uint8_t operands; // evaluated in order before `fold`
  bool pair;             // the types of two operands must go together from the start
  /// Writes the result over the node, or leaves it open. Null where evaluation has steps of its
  /// own (eval.cpp).
  int (*fold)(ExprlibNode *node);
};

/// Null for a code without evaluation.
const OperatorRow *find_operator(std::int32_t op);

/// Whether the row of the operator has a column for the type.
inline bool has_column(const OperatorRow &row, ExprlibValueType type)
{
  return type <= EXPRLIB_STRING && ((row.types >> type) & 1) != 0;
}

/// Converts the child of a cast to the type of the node.
int fold_cast(ExprlibNode *node);

} // namespace exprlib
