/// @file
/// The stacks and heaps that a space or a section setup asks for.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "common/tdm_object.h"
#include "common/text.h"
#include "expressions/expression.h"

class TDMFileHeapDef;
class TDMFileStackDef;
class TDMFileStackOrHeapDef;

namespace tdm {
class ArgumentScope;
} // namespace tdm

/// What stacks and heaps have in common.
struct TDMStackOrHeapDef : TDMObject {
  tdm::Text name;                              ///< unique in a core
  std::unique_ptr<TDMExpression> minimal_size; ///< evaluated when it is asked for
  bool high_to_low = false;                    ///< `grows`
  int32_t alignment = 1;                       ///< in MAUs of the space
  bool fixed = false;                          ///< the least size is the size

protected:
  /// Made by the model alone.
  TDMStackOrHeapDef(const TDMFileStackOrHeapDef &record, const tdm::ArgumentScope &scope);
  ~TDMStackOrHeapDef() = default;
};

struct TDMStackDef final : TDMStackOrHeapDef {
  /// Made by the model alone.
  TDMStackDef(const TDMFileStackDef &record, const tdm::ArgumentScope &scope);

  std::unique_ptr<TDMExpression> id; ///< null if not given
};

struct TDMHeapDef final : TDMStackOrHeapDef {
  /// Made by the model alone.
  TDMHeapDef(const TDMFileHeapDef &record, const tdm::ArgumentScope &scope);
};
