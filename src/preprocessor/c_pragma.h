// c-pragma: binds some options to positions in the source.
//
// The values of the pragma-bound options that are in force at a place form a vector, one word per
// option, interned by content; every position carries a pointer to the vector of its place. Lines
// with #pragma don't reach this module (they are forwarded to the lexer), so in one input the
// vector is the same from start to end.
#pragma once

#include "preprocessor/c_opt.h"

namespace tdm {

/// Gives the bound options their slots and fills the first vector from the option table.
void pragma_start();
void pragma_end();

/// The vector in force. Only c_pragma.cpp changes it.
[[gnu::visibility("hidden")]] extern const void *pragma_vector;

/// Whether the pragma table has a row of this name.
[[nodiscard]] bool pragma_known(const char *name);

} // namespace tdm

/// The vector in force.
[[nodiscard]] inline const void *pragma_vector_current()
{
  return tdm::pragma_vector;
}

/// A switch of a vector. The option must be a switch and pragma-bound.
[[nodiscard]] bool pragma_get(const void *vector, tdm::Option option);
