// How groups are told to people: where they go, and the rules that they state or inherit.
#pragma once

#include <string>

#include <tdm_c/tdm_inspect.h>

#include "tree.h"

namespace tool {

/// "mem:flash/cached[0x100 ..] | [0x200..0x300]": as a description has it.
[[nodiscard]] std::string written_text(const tdm_group_location *location);

/// The rules that a group states, in the order of the words in a description, without its location.
void add_rules(Facts &facts, const tdm_group *group);

/// The rules in force that the groups around an inner one state and that it doesn't replace,
/// without a location.
void add_inherited(Facts &facts, const tdm_statement_env *outer, const tdm_group *group);

/// "+x-w", all conditions on attributes of a select; "" for none.
[[nodiscard]] std::string conditions_text(const tdm_selection_statement *statement);

/// "rwx"
[[nodiscard]] std::string letters_of(const tdm_attributes *attributes);

} // namespace tool
