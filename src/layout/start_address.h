// Where execution starts: the symbol, and the address or bank if they are given.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "common/tdm_object.h"
#include "common/text.h"
#include "expressions/expression.h"

class TDMFileStartAddress;

namespace tdm {
class ArgumentScope;
} // namespace tdm

struct TDMStartAddress : TDMObject {
  /// A record without a symbol is refused.
  TDMStartAddress(const TDMFileStartAddress &record, const tdm::ArgumentScope &scope);

  std::unique_ptr<TDMExpression> address; ///< null if not given
  tdm::Text symbol;
  int32_t bank = -1; ///< -1 if not given
};
