// What the tool does once a description is read.
#pragma once

#include <ostream>

#include "options.h"
#include "session.h"

namespace tool {

// Each writes its answer, and gives what the process ends with if the description is in order.
// Throw UsageError (usage_error.h) where names or addresses of the command line don't fit the
// description.
int check(const Options &options, const Session &session, std::ostream &out);
int deps(const Options &options, const Session &session, std::ostream &out);
int map(const Options &options, const Session &session, std::ostream &out);
int show_text(const Session &session, std::ostream &out);
int show_json(const Session &session, std::ostream &out);

} // namespace tool
