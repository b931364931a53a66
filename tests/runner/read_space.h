// Renders a walk of a space as lines, one for each callback, with all that the getters tell of what
// is met, indented by scopes.
#pragma once

#include <string>
#include <vector>

#include "render.h"

namespace cases {

/// Options, each at the most once:
///   sections=a,b/rw,c   the caller's sections, in this order, with their flags behind a slash;
///                       those that a selection takes are taken out
///   exists=a,b          the sections that conditions find
///   null=x,y            the callbacks that are null
///   without_expressions no table of expression callbacks
[[nodiscard]] Lines read_space(tdm_space *space, const std::vector<std::string> &options);

} // namespace cases
