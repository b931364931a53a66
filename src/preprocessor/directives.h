// The main read step of the preprocessor and the directive lines.
//
// pp_next_token is what everything else sits on: it takes tokens from the list stack or from the
// scanner, runs directive lines, drops skipped groups and has names expanded. The handlers of the
// directives call it in turn. Conditions are evaluated in condition.cpp, conditionals are kept in
// conditionals.cpp, and definitions are read in macro_directives.cpp.
#pragma once

#include "preprocessor/pp_token.h"

/// The next token, in a record that is good until the next call. `expand` turns macros on.
const tdm::PpToken &pp_next_token(bool expand);

/// The same for a reader that leaves white space out anyhow: much of what comes next is read over
/// without making tokens of it, but perhaps not all.
const tdm::PpToken &pp_next_behind_blanks(bool expand);

namespace tdm {

void directives_start();
void directives_stop();

/// A directive line is being read.
[[nodiscard]] bool pp_in_directive();

/// Where the directive line stands, white space needn't be given out.
[[nodiscard]] bool pp_passing_blanks();

/// The end of the directive line has been read. Handlers read no token beyond it.
[[nodiscard]] bool pp_line_ended();

/// The newline that ended the directive line was put back, and will come again.
void pp_reopen_line();

/// The directive being read goes to the lexer: its "#" comes out, and then what is on the list
/// stack.
void pp_forward_line();

/// The position of the "#" of the directive being read.
[[nodiscard]] const tdm_srcpos &directive_position();

/// The token behind the "#".
[[nodiscard]] const PpToken &directive_name();

/// The next token that is neither white space nor a comment.
const PpToken &pp_next_significant(bool expand);

/// Reports text behind a directive, once. Nothing is read if the line has ended already.
void expect_line_end();

} // namespace tdm
