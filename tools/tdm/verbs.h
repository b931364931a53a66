// What the tool does once a description is read.
#pragma once

#include <ostream>

#include "diagnostics.h"
#include "options.h"
#include "outline.h"
#include "session.h"

namespace tool {

// Each writes its answer, and gives what the process ends with if the description is in order.
// Throw UsageError (usage_error.h) where names or addresses of the command line don't fit the
// description.
int deps(const Options &options, const Session &session, std::ostream &out);
int draw(const Options &options, const Session &session, std::ostream &out);
int map(const Options &options, const Session &session, std::ostream &out);
int show_text(const Options &options, const Session &session, std::ostream &out);
int show_json(const Options &options, const Session &session, std::ostream &out);

/// Reads each description itself, and reports to `messages` in the form of text.
int check(const Options &options, std::ostream &out, std::ostream &messages);
/// The same for the text that the language reads.
int preprocess(const Options &options, std::ostream &out, std::ostream &messages);
/// Reads no description.
int explain(const Options &options, std::ostream &out);

// These go on to tell what fails in a walk.
int layout(const Options &options, const Session &session, Diagnostics &diagnostics,
           std::ostream &out);
int select(const Options &options, const Session &session, Diagnostics &diagnostics,
           std::ostream &out);
/// The same for the expression.
int eval(const Options &options, const Session &session, Diagnostics &diagnostics,
         std::ostream &out);

// What these have in common.
[[nodiscard]] Answers answers_of(const Options &options);
/// What the process ends with.
int report_failures(const Outline &outline, Diagnostics &diagnostics);

} // namespace tool
