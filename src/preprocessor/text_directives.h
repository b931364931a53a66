// The directives whose line is a text: #error, #warning and #pragma.
#pragma once

namespace tdm {

void handle_error();
void handle_warning();
void handle_pragma();

} // namespace tdm
