// The preprocessor as the rest of the library starts and ends it. What lives from tdm_init to
// tdm_cleanup is made and ended here; what lives as long as one input is the stream's.
#pragma once

namespace tdm {

/// Steps of tdm_init before the macro definitions: the string pool, unless it exists, the option
/// table with its defaults, and empty message lists.
void preprocessor_start();

/// All of tdm_cleanup: message lists, option table, string pool. No stream may exist.
void preprocessor_end();

[[nodiscard]] bool preprocessor_started();

} // namespace tdm
