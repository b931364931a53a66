// #define and #undef: reading a definition from its line.
#include <string>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/directives.h"
#include "preprocessor/macros.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr std::size_t usual_body = 16;

bool ends_line(const PpToken &token)
{
  return token.number == tNEWLINE || token.number == tEOF;
}

bool is_name(const PpToken &token)
{
  return token.number == tIDENT || token.number == tIDENT2;
}

// Reads a parameter list, behind its "(". False after a fault, which is reported.
bool read_parameters(std::vector<MacroParameter> &parameters)
{
  const PpToken *token = &pp_next_significant(false);
  if (token->number == tRPAR) return true;
  for (;;) {
    MacroParameter parameter = {token->text, token->number == tELLIPS, false};
    if (!is_name(*token) && !parameter.variadic) break;
    const bool named = !parameter.variadic;
    token = &pp_next_token(false);
    if (named && token->number == tELLIPS && option_get_bool(optA_GCC)) {
      parameter.variadic = true;
      token = &pp_next_token(false);
    }
    parameters.push_back(parameter);
    if (is_white(token->number)) token = &pp_next_significant(false);
    if (token->number == tRPAR) return true;
    if (token->number != tCOMMA || parameter.variadic) break;
    token = &pp_next_significant(false);
  }
  diag_at(E_syntax_define, token->position);
  return false;
}

// The white space between two tokens of a body, as one token.
PpToken white_token(std::string_view text, const tdm_srcpos &position)
{
  PpToken white;
  white.number = tWHITE;
  white.text = text == " " ? token_text(tSPACE) : intern(text);
  white.length = text.size();
  white.position = position;
  return white;
}

// Reads a body, which begins with the token given, to the end of the line. White space at either
// end is no part of it, and a comment counts as a blank.
std::vector<PpToken> read_body(const PpToken *token)
{
  std::vector<PpToken> body;
  body.reserve(usual_body);
  std::string white;
  for (; !ends_line(*token); token = &pp_next_token(false)) {
    if (is_white(token->number)) {
      if (!body.empty()) white += token->number == tCOMMENT ? " " : token->view();
      continue;
    }
    if (!white.empty()) body.push_back(white_token(white, token->position));
    white.clear();
    body.push_back(*token);
    body.back().link = 0;
  }
  return body;
}

} // namespace

void macro_parse_define()
{
  const PpToken name = pp_next_significant(false);
  if (!is_name(name)) {
    diag_at(E_bad_define, directive_position());
    return;
  }
  const PpToken *token = &pp_next_token(false);
  std::vector<MacroParameter> parameters;
  const bool function_like = token->number == tLPAR;
  if (function_like) {
    if (!read_parameters(parameters)) return;
    token = &pp_next_token(false);
  } else if (!is_white(token->number) && !ends_line(*token)) {
    diag_at(W_expected_white_space, token->position);
  }
  macro_define(name.text, function_like ? &parameters : nullptr, read_body(token), name.position,
               false);
}

void macro_parse_undef()
{
  const PpToken name = pp_next_significant(false);
  if (!is_name(name)) {
    diag_at(E_bad_undef, directive_position());
    return;
  }
  macro_undefine(name.text, name.position);
  expect_line_end();
}

} // namespace tdm
