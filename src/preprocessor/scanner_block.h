// The quick road to a token: from the bytes at hand, if the token lies in them whole. What these
// functions can't decide they hand over to by_character().
//
// The short ones stand here, so that the read step has them in its own loop: they run for every
// token of a text. Only the scanner and the read step look in here.
#pragma once

#include "preprocessor/c_input.h"
#include "preprocessor/c_pragma.h"
#include "preprocessor/c_srcpos.h"
#include "preprocessor/scanner_parts.h"

namespace tdm {

// Blanks and tabs come in runs; a longer one makes several tokens.
inline constexpr std::size_t longest_run = 32;
inline constexpr char blanks[] = "                                ";
inline constexpr char tabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
static_assert(sizeof blanks == longest_run + 1 && sizeof tabs == longest_run + 1);

/// The top record, if tokens can be taken from its block, or null.
inline TDMInputRecord *record_with_block()
{
  return input_stack.has_unread ? nullptr : input_stack.top;
}

void place_in_text();

/// Gives the token the place at which the record stands.
inline void place_at_next(TDMInputRecord &record)
{
  input_begin_line(record);
  if (record.kind != TDMInputRecord::file) return place_in_text();
  tdm_srcpos &position = scanner.token.position;
  position.file = record.presumed_name;
  position.line = static_cast<int>(record.presumed_line);
  position.column = static_cast<int>(record.column + 1);
  position.pragmas = pragma_vector_current();
}

inline bool needs_other_road(const char *cursor)
{
  return start_of(*cursor) == Start::special;
}

// Ends a token of one line: the record stands behind it.
inline const PpToken &pass(TDMInputRecord &record, const char *end)
{
  record.column += static_cast<std::uint32_t>(end - record.cursor);
  record.cursor = end;
  return scanner.token;
}

const PpToken &comment_in_block(TDMInputRecord &record);
/// A string or character constant behind `prefix` bytes of its own.
const PpToken &quoted_in_block(TDMInputRecord &record, std::size_t prefix = 0);
const PpToken &punctuator_in_block(TDMInputRecord &record);
const PpToken &long_number_in_block(TDMInputRecord &record);

inline const PpToken &name_in_block(TDMInputRecord &record)
{
  const char *begin = record.cursor;
  const char *end = begin + 1;
  while (has_part(static_cast<unsigned char>(*end), in_name)) ++end;
  const Start behind = start_of(*end);
  if (behind == Start::special) return by_character();
  if (behind == Start::quote && *begin == 'L' && end == begin + 1)
    return quoted_in_block(record, 1);
  place_at_next(record);
  scanner.token.number = tIDENT;
  set_interned({begin, static_cast<std::size_t>(end - begin)});
  return pass(record, end);
}

inline const PpToken &number_in_block(TDMInputRecord &record)
{
  const char *end = record.cursor + 1;
  while (has_part(static_cast<unsigned char>(*end), is_digit)) ++end;
  const bool goes_on = *end == '.' || has_part(static_cast<unsigned char>(*end), in_name);
  if (goes_on || needs_other_road(end)) return long_number_in_block(record);
  place_at_next(record);
  scanner.token.number = tICON;
  set_interned({record.cursor, static_cast<std::size_t>(end - record.cursor)});
  return pass(record, end);
}

/// A punctuator of one byte that the byte behind it can't be part of, or null.
inline const PpToken *short_punctuator_in_block(TDMInputRecord &record)
{
  const auto c = static_cast<unsigned char>(record.cursor[0]);
  const auto behind = static_cast<unsigned char>(record.cursor[1]);
  if (c > 127 || behind > 127 || needs_other_road(record.cursor + 1)) return nullptr;
  const std::size_t at = recogniser.next[0][c];
  const int number = recogniser.token[at];
  if (at == 0 || recogniser.next[at][behind] != 0 || number == tLT || number == tWHITE)
    return nullptr;
  place_at_next(record);
  scanner.token.number = number;
  set_text(scanner.texts[number], 1);
  return &pass(record, record.cursor + 1);
}

inline const PpToken &blanks_in_block(TDMInputRecord &record)
{
  const char first = *record.cursor;
  const char *end = record.cursor + 1;
  while (*end == first && end != record.cursor + longest_run) ++end;
  place_at_next(record);
  scanner.token.number = tWHITE;
  set_text(first == ' ' ? blanks : tabs, static_cast<std::size_t>(end - record.cursor));
  return pass(record, end);
}

inline const PpToken &single_in_block(TDMInputRecord &record)
{
  const auto c = static_cast<unsigned char>(*record.cursor);
  const int number = recogniser.token[recogniser.next[0][c]];
  place_at_next(record);
  scanner.token.number = number;
  set_text(scanner.texts[number], 1);
  return pass(record, record.cursor + 1);
}

inline const PpToken &pass_newline(TDMInputRecord &record)
{
  input_note_line(record);
  record.at_line_start = true;
  scanner.header_mode = false;
  return pass(record, record.cursor + 1);
}

inline const PpToken &newline_in_block(TDMInputRecord &record)
{
  place_at_next(record);
  scanner.token.number = tNEWLINE;
  set_text(scanner.texts[tNEWLINE], 1);
  return pass_newline(record);
}

} // namespace tdm
