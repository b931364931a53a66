// Texts of descriptions for the targets that parse: how one is handed to the library, and a
// generator and a mutator that know the language, so that most of what they make gets past the
// parser.
#pragma once

#include <tdm_c/tdm.h>

#include "target.h"

namespace fuzz {

/// Parses the input, cut into files at lines that begin with `//+++ ` and a name, the main file
/// first. `//>>> ` instead names a further file to parse, behind the main one. Null after a
/// failure. Begins a period of the library; the caller ends it with finish().
tdm_spec *parse(std::string_view text);
void finish(tdm_spec *spec);

/// A whole description; the same seed gives the same one.
std::string generate_description(std::uint32_t seed);

/// The text with one change or a few: words, numbers, names, statements, blocks.
std::string mutate_description(std::string_view text, std::uint32_t seed);

/// A text with pieces of both.
std::string cross_descriptions(std::string_view one, std::string_view other, std::uint32_t seed);

} // namespace fuzz
