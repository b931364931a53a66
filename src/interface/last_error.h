// What is kept of the latest failure: the last error text, and beside it the count and the text
// that also know the failures which leave the last error text alone. Process-wide, and the one
// thing that neither the start nor the end of the library touches.
#pragma once

#include <cstdint>
#include <string_view>

namespace tdm {

/// Whether a failure becomes the last error text.
enum class Tell { last_error, inspection_only };

/// Counts a failure and keeps its text.
void keep_failure(std::string_view text, Tell tell);

/// Counts a failure for whose text there was no memory left; texts stay as they are.
void count_failure() noexcept;

[[nodiscard]] int64_t failure_count();

/// The texts, from the pool where there is one; never null.
[[nodiscard]] const char *last_error_text();
[[nodiscard]] const char *failure_text();

} // namespace tdm
