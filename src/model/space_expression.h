// Expressions that come after the parse, as a section layout of a space would have them.
#pragma once

#include <memory>
#include <string_view>

#include "expressions/expression.h"
#include "expressions/quantity.h"

struct TDMSpace;
struct TDMSpec;

namespace tdm {

struct SpaceExpression {
  std::unique_ptr<TDMExpression> expression;
  Quantity quantity;
};

/// Reads a text in the scope of a space of the spec: the parameters of the processor's derivative,
/// and the memories that a layout of the space can name at file level. What comes out doesn't refer
/// to the spec. Throws TDMFileSyntaxError *, TDMSyntaxException * with places in the text.
[[nodiscard]] SpaceExpression expression_in_space(TDMSpec &spec, const TDMSpace &space,
                                                  std::string_view text);

} // namespace tdm
