// What a text with an include guard leaves to be read when its macro is defined: nothing but blank
// lines and comments around a group that is skipped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tdm {

/// The lines are counted from 1.
struct GuardedText {
  std::uint32_t opening_line = 0; ///< of the #ifndef; 0 if the text isn't known to be guarded
  std::uint32_t closing_line = 0; ///< of the #endif
  std::uint32_t last_line = 0;
  std::uint32_t tokens = 0; ///< outside the group, for the preprocessor
};

/// Looks at a text whose #ifndef in the line `opening_line` is skipped to `closing`, where the line
/// `closing_line` begins. Forms that are hard to tell, with splices say, aren't found guarded.
[[nodiscard]] GuardedText find_guard(std::string_view text, std::uint32_t opening_line,
                                     std::size_t closing, std::uint32_t closing_line);

} // namespace tdm
