// The derivative of an architecture that no derivative names.
#pragma once

#include <memory>

#include "language/records.h"

namespace tdm {

class Templates;

/// A record as the parser would have made it: one core of the architecture, and for each bus of
/// the architecture and its bases a bus of the same name that maps onto it.
[[nodiscard]] std::unique_ptr<TDMFileDerivative>
make_default_derivative(const TDMFileArchitecture &architecture, const Templates &templates);

} // namespace tdm
