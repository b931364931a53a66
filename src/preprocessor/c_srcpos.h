// c-srcpos: the position at which the input stands.
//
// A position belongs to the innermost file, also while a text on top of it is read. When the last
// input has ended, the position of the end is kept and serves from then on.
#pragma once

#include "common/tdm_types.h"

namespace tdm {

void srcpos_start();
void srcpos_stop();

/// The presumed place of the character last delivered, with the pragma vector in force.
[[nodiscard]] tdm_srcpos srcpos_current();

/// Keeps the position of the end of input.
void srcpos_set_end(const char *file, int line, int column);

} // namespace tdm
