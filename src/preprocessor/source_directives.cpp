// Reading file names and line numbers, and acting on them.
#include "preprocessor/source_directives.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_input_files.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_pragma.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/directives.h"
#include "preprocessor/kept_texts.h"
#include "preprocessor/macro_expand.h"
#include "preprocessor/macros.h"
#include "preprocessor/source_files.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

bool ends_line(const PpToken &token)
{
  return token.number == tNEWLINE || token.number == tEOF;
}

// The text of a file name with its delimiters, from the token that begins it; it stays, as texts of
// the pool do. Null if that token can't begin one. A "<" that came from a macro starts a name of
// several tokens. With `report` off, a missing ">" is supplied in silence.
std::optional<std::string_view> read_name(const PpToken &first, bool report)
{
  switch (first.number) {
  case tFILE:
  case tHEADER:
  case tSTRING:
    return first.view();
  case tLT:
    break;
  default:
    return std::nullopt;
  }
  std::string text = "<";
  for (;;) {
    const PpToken &token = pp_next_token(true);
    if (ends_line(token)) {
      if (report) diag_at(E_missing_bracket, directive_position());
      return pooled_text(text += '>');
    }
    text += token.view();
    if (token.number == tGT) return pooled_text(text);
  }
}

bool is_double_byte_lead(char c)
{
  const auto byte = static_cast<unsigned char>(c);
  return option_get_bool(optA_KANJI) &&
         ((byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xEF));
}

// The name of a #line: without delimiters, each backslash making the next character plain. Null if
// the text is neither quoted nor in angle brackets.
const char *line_name(std::string_view text)
{
  if (text.starts_with("L\"")) text.remove_prefix(1);
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  const bool angled = text.size() >= 2 && text.front() == '<' && text.back() == '>';
  if (!quoted && !angled) return nullptr;
  text = text.substr(1, text.size() - 2);
  std::string name;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool double_byte = is_double_byte_lead(text[i]);
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    name += text[i];
    if (double_byte && i + 1 < text.size()) name += text[++i];
  }
  return intern(name);
}

// Whether a file that is included here would lie deeper than is allowed, which is reported.
bool too_deep()
{
  const std::int32_t limit = source_files_depth_limit();
  const std::int32_t here = reading_source();
  if (limit <= 0 || here < 0 || source_files()[static_cast<std::size_t>(here)].depth < limit)
    return false;
  diag_at(E_include_depth, directive_position(), limit);
  return true;
}

// Whether no further file may be opened. The first one that is refused is reported.
bool too_many()
{
  if (!source_files_exhausted()) return false;
  if (!source_files_refused())
    diag_at(E_include_count, directive_position(), static_cast<int>(source_files_allowed()));
  return true;
}

std::uint32_t line_number(const PpToken &number)
{
  return static_cast<std::uint32_t>(std::strtoul(number.text, nullptr, 0));
}

// The name behind a line number, null for none. `token` is the token behind the number.
const char *read_line_name(const PpToken &token, bool report)
{
  if (token.number == tWSTRING) return line_name(token.view());
  const std::optional<std::string_view> text = read_name(token, report);
  return text ? line_name(*text) : nullptr;
}

// Reads a text that would leave nothing but white space, if this is the place to leave that out.
// All that is told of files and lines is as if it had been opened.
bool pass_over(const KeptText &text)
{
  if (!pp_passing_blanks() || text.guarded.opening_line == 0 ||
      text.undefinitions != macro_undefinitions())
    return false;
  const GuardedText &guarded = text.guarded;
  const std::int32_t source = source_file_opened(text.name, reading_source());
  source_file_skips(source, guarded.opening_line, true);
  source_file_skips(source, guarded.closing_line, false);
  input_note_line(text.name, guarded.last_line);
  expansion_work.allowed += expansion_per_token * guarded.tokens;
  return true;
}

bool include_again(const char *written)
{
  KeptText *const text = input_included_before(written);
  if (text == nullptr) return false;
  if (!pass_over(*text)) input_open_again(*text);
  return true;
}

} // namespace

void handle_include()
{
  scanner_set_header_mode();
  const PpToken &token = pp_next_significant(true);
  const void *pragmas = token.position.pragmas;
  const char *const file_token = token.number == tFILE ? token.text : nullptr;
  const std::optional<std::string_view> text = read_name(token, true);
  if (!text) {
    diag_at(E_missing_file, directive_position());
    return;
  }
  expect_line_end();
  while (!pp_line_ended()) pp_next_token(false);
  if (too_deep() || too_many()) return;
  source_files_include_at(directive_position());
  const std::string_view name = text->substr(1, text->size() - 2);
  const bool only_standard = pragma_get(pragmas, optSTDINC);
  const bool in_local = text->front() != '<';
  const bool in_standard = only_standard || !option_get_bool(optNOSTDINC);
  // Most names are found in the same place each time, and are searched once.
  const bool usual = file_token != nullptr && !only_standard;
  if (usual && include_again(file_token)) return;
  const bool found = usual ? input_include(file_token, name, in_local, in_standard)
                           : input_search_file(name, in_local, !only_standard, in_standard);
  if (!found) diag_at(E_include_file, directive_position(), name);
}

void handle_line()
{
  const PpToken &number = pp_next_significant(true);
  if (number.number != tICON) {
    diag_at(E_bad_line, directive_position());
    return;
  }
  const std::uint32_t line = line_number(number);
  const PpToken *token = &pp_next_significant(true);
  const char *name = nullptr;
  if (!ends_line(*token)) {
    const tdm_srcpos position = token->position;
    name = read_line_name(*token, true);
    if (name == nullptr) {
      diag_at(E_syntax_line, position);
      return;
    }
    if (!pp_line_ended()) token = &pp_next_significant(true);
  }
  if (!pp_line_ended()) {
    diag_at(E_syntax_line, token->position);
    return;
  }
  input_set_presumed(name, line);
}

void handle_line_marker()
{
  const std::uint32_t line = line_number(directive_name());
  const char *name = nullptr;
  const PpToken &token = pp_next_significant(true);
  if (!ends_line(token)) name = read_line_name(token, false);
  while (!pp_line_ended()) pp_next_token(false);
  input_set_presumed(name, line);
}

} // namespace tdm
