// The process-wide intern table: every text that the library hands out, every token text, file
// name and macro name is held here once, so that equal texts have one address.
#pragma once

#include <string_view>

namespace tdm {

/// Makes the pool, unless it exists (tdm_init).
void string_pool_start();

/// Frees the pool with all its texts (tdm_cleanup).
void string_pool_end();

[[nodiscard]] bool string_pool_started();

/// The pool's copy of the text, NUL-terminated; stays valid until string_pool_end. The text must
/// hold no NUL. The pool must have been started.
[[nodiscard]] const char *intern(std::string_view text);

} // namespace tdm
