// What a parse and a token stream begin with, and what must have ended before.
#pragma once

#include <string>
#include <vector>

#include "common/tdm_types.h"

namespace tdm {

/// Takes what a caller names as input: adds the directories to those of earlier calls, and gives
/// the names of the files. Ends a token stream that is open. Fails before tdm_init, and without
/// files.
[[nodiscard]] std::vector<std::string> begin_input(const tdm_arr *files,
                                                   const tdm_arr *include_dirs);

/// The stream of tokens that a client reads, if there is one, ends: there is one input at a time.
void end_token_stream();

} // namespace tdm
