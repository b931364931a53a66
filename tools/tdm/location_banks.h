// In which banks of its space the location of a group lies. The library tells a location in plain
// numbers; a location in a memory is translated once more here, as an address with its bank.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <tdm_c/tdm.h>

#include "outline.h"

namespace tool {

/// The bank of a location that is an address in a memory: that of the first route with this number,
/// which is the one that the library takes. -1 for no bank, and where nothing can be told.
[[nodiscard]] int32_t bank_of_address(const tdm_group_location *location, int64_t address);

/// Sets the banks of the ranges that the library tells of a location. A range of a memory has one
/// range in the space for each route, so each has one bank; -1 stays where nothing can be told.
void set_banks(const tdm_group_location *location, std::vector<BankedRange> &ranges);

/// "2:0x4000..0x8000", "0x100..0x200" of no bank
[[nodiscard]] std::string range_text(const BankedRange &range);

} // namespace tool
