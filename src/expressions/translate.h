// From expression records to expressions: variables are replaced by what their scope binds, and
// what is left is the form that the model holds and evaluates.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "common/make_object.h"
#include "common/source_location.h"
#include "expressions/applications.h"
#include "expressions/argument_scope.h"
#include "expressions/expression.h"
#include "language/expr_records.h"

/// A new expression from the record, which it doesn't refer to afterwards; null for null. The place
/// is that of the property at hand: what goes wrong is reported there, now or in an evaluation,
/// where the record at fault has no location of its own. Throws TDMSyntaxException *.
[[nodiscard]] std::unique_ptr<TDMExpression>
tdm_translate_expression(const TDMFileExpression *record, const tdm::ArgumentScope &scope,
                         const TDMSourceLocation &place);

namespace tdm {

/// As tdm_translate_expression(), with a place that is asked for when it is needed: most properties
/// are plain numbers.
template <typename Place>
[[nodiscard]] std::unique_ptr<TDMExpression>
translate_expression(const TDMFileExpression *record, const ArgumentScope &scope, Place place)
{
  if (record == nullptr) return nullptr;
  if (record->kind() == kExprNumber)
    return make_object<TDMNumber>(static_cast<const TDMExprNumber &>(*record).value);
  return tdm_translate_expression(record, scope, place());
}

/// The record's value without an environment, if it is a small expression of numbers; else nothing,
/// and evaluate() has the answer.
[[nodiscard]] std::optional<std::int64_t> plain_value(const TDMFileExpression &record,
                                                      const ArgumentScope &scope);

/// The record's value without an environment, for what is needed once.
[[nodiscard]] std::int64_t evaluate(const TDMFileExpression &record, const ArgumentScope &scope,
                                    const TDMSourceLocation &place);

} // namespace tdm
