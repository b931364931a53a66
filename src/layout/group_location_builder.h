// Builds the location of a group from its record, and finds the memories and mappings it names.
#pragma once

#include <memory>

#include "layout/group_location.h"
#include "layout/layout_builder.h"

class TDMFileGroupLocation;

namespace tdm {

/// `group_place` is reported at where the location has no place of its own.
[[nodiscard]] std::unique_ptr<TDMGroupLocation>
build_group_location(const TDMFileGroupLocation &record, const LayoutContext &context,
                     const TDMSourceLocation &group_place);

} // namespace tdm
