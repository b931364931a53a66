// A #pragma isn't acted on here, it goes on to the lexer as it stands: its tokens are put on the
// list stack as a forwarded line, and the read step gives the "#" in front of them.
#include "preprocessor/text_directives.h"

#include <string>
#include <vector>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_pragma.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/directives.h"
#include "preprocessor/macro_expand.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

// The texts of the rest of the line, joined.
std::string rest_of_line()
{
  std::string text;
  if (pp_line_ended()) return text;
  const PpToken *token = &pp_next_significant(false);
  while (!pp_line_ended()) {
    text += token->view();
    token = &pp_next_token(false);
  }
  return text;
}

void report_unknown_misra_pragma(const std::vector<PpToken> &line)
{
  const PpToken *first = nullptr;
  for (const PpToken &token : line)
    if (first == nullptr && token.number == tIDENT) first = &token;
  if (first == nullptr || first->view() != "nomisrac" || pragma_known(first->text)) return;
  std::string text;
  for (const PpToken &token : line)
    if (token.number != tNEWLINE && token.number != tEOF &&
        (!text.empty() || !is_white(token.number)))
      text += token.view();
  diag_at(W_ignored_pragma, directive_position(), std::string_view(text));
}

} // namespace

void handle_error()
{
  diag_at(E_hash_error, directive_position(), std::string_view(rest_of_line()));
}

void handle_warning()
{
  diag_at(W_hash_warning, directive_position(), std::string_view(rest_of_line()));
}

void handle_pragma()
{
  std::vector<PpToken> line;
  while (!pp_line_ended()) {
    PpToken token = pp_next_token(false);
    keep_text(token);
    if (token.number != tEOF) line.push_back(token);
  }
  report_unknown_misra_pragma(line);
  PpToken word;
  word.number = tIDENT;
  word.text = intern("pragma");
  word.length = pooled(word.text).length;
  word.position = directive_position();
  PpToken blank = word;
  blank.number = tWHITE;
  blank.text = token_text(tSPACE);
  blank.length = 1;
  if (!line.empty() && is_white(line.front().number)) line.erase(line.begin());
  line.insert(line.begin(), {word, blank});
  list_push(line, true);
  pp_forward_line();
}

} // namespace tdm
