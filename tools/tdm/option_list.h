// All verbs and options as JSON, for the script that makes the manual and the completions of
// shells.
#pragma once

#include <CLI/App.hpp>
#include <ostream>

namespace tool {

void write_option_list(const CLI::App &app, std::ostream &out);

} // namespace tool
