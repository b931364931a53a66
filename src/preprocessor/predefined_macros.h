// The macros that exist from the start: their table, and the texts that some of them are made of.
#pragma once

#include "preprocessor/macros.h"

namespace tdm {

/// Enters all of them in the macro table.
void define_predefined_macros();

/// Enters a macro without a body.
void define_builtin(const char *name, MacroKind kind);

} // namespace tdm
