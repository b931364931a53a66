// The escape sequences of strings, character constants and identifiers.
#pragma once

#include <cstdint>

#include "common/tdm_types.h"

namespace tdm {

/// Reads an escape sequence. The cursor stands behind the backslash and is moved behind the
/// sequence; `end` bounds it. Gives the value of the character. Faults are reported at the
/// position, unless `report` is off.
[[nodiscard]] std::uint32_t escape_check(const char *&cursor, const char *end,
                                         const tdm_srcpos &position, bool report);

} // namespace tdm
