// Which part of a span each of its routes carries, and which part none does.
#pragma once

#include "routes.h"

namespace tool {

/// Whether any bit is in it at all: of its mask, and from its low end to a higher one.
[[nodiscard]] bool holds_something(const tdm_interval &interval);

/// For an answer about a span: sets the part of each route, and what is left. Throws
/// std::runtime_error if the library can't translate that.
void tell_parts(Answer &answer);

} // namespace tool
