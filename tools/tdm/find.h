// The objects that names of the command line mean: the one of that full name, else the only one of
// that plain name. Where there is none, the error lists those there are.
#pragma once

#include <string>

#include <tdm_c/tdm.h>

namespace tool {

// Throw UsageError (usage_error.h), for an empty name too.
[[nodiscard]] tdm_space *find_space(const tdm_spec *spec, const std::string &name);
[[nodiscard]] tdm_memory *find_memory(const tdm_spec *spec, const std::string &name);

} // namespace tool
