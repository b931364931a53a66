// Memories that lie over each other on a bus, and mappings of a space that overlap: what the
// failure of a check doesn't say of them.
#pragma once

#include <vector>

#include "findings.h"

namespace tool {

/// Notes for that failure: two for each overlap, one at either mapping, with the range and the
/// amount. Of many overlaps the first few.
[[nodiscard]] std::vector<Finding> overlap_notes(const Session &session);

} // namespace tool
