// Records as one line of text, for the expectations of tests.
//
// A record is its word and, in parentheses, what was set: `memory(name=aa size=4)`. Behind it stand
// its places, in the order in which they were stored: `<name@1/8>`. Expressions are in prefix form.
#pragma once

#include <string>

#include "language/records.h"

[[nodiscard]] std::string dump(const TDMFileExpression &expression);

/// All records of a parse, separated by blanks.
[[nodiscard]] std::string dump(const TDMFileInterface &result);

/// The places of the expression's own nodes too.
[[nodiscard]] std::string dump_with_places(const TDMFileExpression &expression);
