// Reads the values of a definition's record: the place of a property, and its number.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "common/failures.h"
#include "expressions/translate.h"
#include "language/file_object.h"

namespace tdm {

/// The place of a property: where the key was stored, else the definition's name.
inline TDMSourceLocation place_of(const TDMFileObject &record, LocationKey key)
{
  if (const TDMSourceLocation *found = record.find_location(key)) return *found;
  if (const TDMSourceLocation *found = record.find_location("name")) return *found;
  return {};
}

/// The property's value, evaluated at once without an environment.
inline int64_t number_of(const TDMFileObject &record, LocationKey key,
                         const TDMFileExpression &value, const ArgumentScope &scope)
{
  if (value.kind() == kExprNumber) return static_cast<const TDMExprNumber &>(value).value;
  if (const std::optional<int64_t> plain = plain_value(value, scope)) return *plain;
  return evaluate(value, scope, place_of(record, key));
}

/// The property as an expression, or null if it isn't there.
inline std::unique_ptr<TDMExpression> expression_of(const TDMFileObject &record, LocationKey key,
                                                    const TDMFileExpression *value,
                                                    const ArgumentScope &scope)
{
  return translate_expression(value, scope, [&] { return place_of(record, key); });
}

/// The same for a property that is kept in 32 bits: the low 32 bits count.
inline int32_t number32_of(const TDMFileObject &record, LocationKey key,
                           const TDMFileExpression &value, const ArgumentScope &scope)
{
  return static_cast<int32_t>(number_of(record, key, value, scope));
}

/// The same, with the value of a property that isn't there.
inline int32_t number32_or(const TDMFileObject &record, LocationKey key,
                           const TDMFileExpression *value, const ArgumentScope &scope,
                           int32_t otherwise)
{
  return value != nullptr ? number32_of(record, key, *value, scope) : otherwise;
}

} // namespace tdm
