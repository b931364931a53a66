// The text that a stream reads before its first file.
#pragma once

namespace tdm {

/// Pushes the definitions of the language and of the options UNDEF and DEFINE as texts.
void push_predefinitions();

} // namespace tdm
