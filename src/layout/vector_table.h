/// @file
/// A table of vectors that the linker is to make.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/tdm_object.h"
#include "common/tdm_types.h"
#include "common/text.h"
#include "expressions/expression.h"

/// What stands in a vector.
struct TDM_CLIENT_API TDMVectorValue final : TDMObject {
  /// What kind of value it is.
  enum Type : int32_t { symbol_value = 1, numbers = 2, loop = 3 };

  Type type = symbol_value;                   ///< tells which of the members below counts
  tdm::Text symbol;                           ///< of a symbol
  tdm::ObjectList<int64_t> values;            ///< of numbers
  std::unique_ptr<TDMExpression> loop_offset; ///< of a loop; may be null
};

struct TDM_CLIENT_API TDMVector final : TDMObject {
  /// The numbers of the vectors as ranges, both ends included, ascending, none next to another: a
  /// short text can name every number there is.
  tdm::ObjectList<std::pair<int32_t, int32_t>> ids;
  std::unique_ptr<TDMVectorValue> value; ///< null if not given
  bool optional = false;                 ///< its symbol need not be there
};

struct TDM_CLIENT_API TDMVectorTable final : TDMObject {
  tdm::Text name;                                ///< of the table
  std::unique_ptr<TDMExpression> vector_size;    ///< of one vector, in MAUs of the space
  std::unique_ptr<TDMExpression> size;           ///< number of vectors
  std::optional<tdm::Text> id_symbol_prefix;     ///< absent if not given
  std::unique_ptr<TDMExpression> run_address;    ///< in the space; null if not given
  tdm::Text template_name;                       ///< the template section
  tdm::Text template_symbol_name;                ///< the symbol in it that stands for the target
  std::optional<tdm::Text> vector_name_prefix;   ///< absent if not given
  std::unique_ptr<TDMVectorValue> default_value; ///< null if not given
  bool default_inline = true;                    ///< false with `no_inline`
  bool copy = false;                             ///< `copy`
  tdm::ObjectList<std::unique_ptr<TDMVector>> vectors; ///< those that are defined one by one
};
