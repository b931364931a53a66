// Expressions as source text again.
#pragma once

#include <string>

class TDMExpression;

namespace tdm {

/// The expression as it could stand in a description, with no more parentheses than the text needs
/// to be read as the same tree. Names of parameters aren't there any more: what they were bound
/// to stands in their place.
[[nodiscard]] std::string source_text(const TDMExpression &expression);

} // namespace tdm
