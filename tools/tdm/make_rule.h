// The files that a description is made of, as a rule of a Makefile.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "session.h"

namespace tool {

void write_make_rule(const std::string &target, const std::vector<std::string> &files,
                     std::ostream &out);

/// Of the latest description, in order or not; each once, in the order in which they were opened.
[[nodiscard]] std::vector<std::string> files_read(const Session &session);

} // namespace tool
