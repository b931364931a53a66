// Start and stop of the scanner, and the longer tokens of its quick road (see scanner_block.h).
#include "preprocessor/c_scanner.h"

#include "preprocessor/c_input.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/scanner_block.h"

namespace tdm {

ScannerState scanner;

namespace {

/// Bytes of a block. The NUL behind the block belongs to no token, so no bound is needed.
struct BlockSource {
  const char *cursor;

  [[nodiscard]] int peek() const { return static_cast<unsigned char>(*cursor); }
  void take() { ++cursor; }
};

// Whether a special byte is no more than itself: no splice, no trigraph, no end of the block.
bool is_harmless(const char *cursor)
{
  if (*cursor == 0 || start_of(cursor[1]) == Start::special) return false;
  return *cursor == '?' || cursor[1] != '\n';
}

// The end of a string or character constant without escapes, behind its closing quote, or null.
const char *end_of_quoted(const char *cursor)
{
  if (scanner.kanji || scanner.header_mode) return nullptr;
  const char quote = *cursor++;
  for (;; ++cursor) {
    if (!has_part(static_cast<unsigned char>(*cursor), stops_string)) continue;
    if (*cursor == quote) return cursor + 1;
    const bool passes =
        *cursor == '"' || *cursor == '\'' || (*cursor == '?' && is_harmless(cursor));
    if (!passes) return nullptr;
  }
}

// The end of a file name in quotes, behind its closing one, or null.
const char *end_of_file_name(const char *cursor)
{
  do ++cursor;
  while (!has_part(static_cast<unsigned char>(*cursor), stops_string) || *cursor == '\'');
  return *cursor == '"' ? cursor + 1 : nullptr;
}

// The end of a comment, behind its closer, or null. Counts the lines that it passes.
const char *end_of_comment(const char *cursor, std::uint32_t &lines, const char *&line_start)
{
  for (cursor += 2;; ++cursor) {
    if (*cursor == '\n') {
      ++lines;
      line_start = cursor + 1;
      continue;
    }
    if (!has_part(static_cast<unsigned char>(*cursor), stops_comment)) continue;
    if (*cursor == '*') {
      if (cursor[1] == '/') return cursor + 2;
    } else if (*cursor == '/') {
      if (cursor[1] == '*' || cursor[1] == 0) return nullptr;
    } else if (!is_harmless(cursor)) {
      return nullptr;
    }
  }
}

const char *end_of_line_comment(const char *cursor)
{
  for (;; ++cursor) {
    if (!has_part(static_cast<unsigned char>(*cursor), stops_line)) continue;
    if (*cursor == '\n') return cursor;
    if (!is_harmless(cursor)) return nullptr;
  }
}

} // namespace

void place_in_text()
{
  scanner.token.position = srcpos_current();
}

const PpToken &comment_in_block(TDMInputRecord &record)
{
  const char *begin = record.cursor;
  std::uint32_t lines = 0;
  const char *line_start = begin;
  const char *end = nullptr;
  if (begin[1] == '*')
    end = end_of_comment(begin, lines, line_start);
  else if (scanner.line_comments)
    end = end_of_line_comment(begin);
  if (end == nullptr) return by_character();
  place_at_next(record);
  scanner.token.number = tCOMMENT;
  if (scanner.keep_comments)
    set_text(begin, static_cast<std::size_t>(end - begin));
  else
    set_table_text(tCOMMENT);
  if (lines > 0) {
    record.physical_line += lines;
    record.presumed_line += lines - 1;
    input_note_line(record); // of the line that was left last
    ++record.presumed_line;
    record.column = 0;
    record.cursor = line_start;
  }
  return pass(record, end);
}

const PpToken &punctuator_in_block(TDMInputRecord &record)
{
  BlockSource source{record.cursor};
  const int at = match(source);
  if (at == 0) {
    place_at_next(record);
    scanner.token.number = tERROR;
    set_interned({record.cursor, 1});
    return pass(record, record.cursor + 1);
  }
  const int number = recogniser.token[static_cast<std::size_t>(at)];
  if (number == tFCON) read_number(source, false, true);
  const bool undecided = recogniser.goes_on[static_cast<std::size_t>(at)] || number == tFCON;
  if ((undecided && needs_other_road(source.cursor)) || (number == tLT && scanner.header_mode))
    return by_character();
  place_at_next(record);
  scanner.token.number = without_digraph(number);
  if (number == tFCON || number == tWHITE)
    set_interned({record.cursor, static_cast<std::size_t>(source.cursor - record.cursor)});
  else
    set_table_text(number);
  return pass(record, source.cursor);
}

const PpToken &quoted_in_block(TDMInputRecord &record, std::size_t prefix)
{
  const char *begin = record.cursor;
  const bool is_string = begin[prefix] == '"';
  const bool is_file_name = scanner.header_mode && is_string && prefix == 0;
  const char *end = is_file_name ? end_of_file_name(begin) : end_of_quoted(begin + prefix);
  if (end == nullptr) return by_character();
  place_at_next(record);
  if (is_file_name)
    scanner.token.number = tFILE;
  else if (prefix == 0)
    scanner.token.number = is_string ? tSTRING : tCHAR;
  else
    scanner.token.number = is_string ? tWSTRING : tWCHAR;
  const std::string_view text(begin, static_cast<std::size_t>(end - begin));
  if (scanner.token.number == tSTRING && scanner.want_text && !scanner.intern_strings)
    set_text(keep_unindexed(text), text.size());
  else
    set_interned(text);
  return pass(record, end);
}

const PpToken &long_number_in_block(TDMInputRecord &record)
{
  BlockSource source{record.cursor + 1};
  const int number = read_number(source, *record.cursor == '0', false);
  if (needs_other_road(source.cursor)) return by_character();
  place_at_next(record);
  scanner.token.number = number;
  set_interned({record.cursor, static_cast<std::size_t>(source.cursor - record.cursor)});
  return pass(record, source.cursor);
}

void scanner_start()
{
  for (const TokenRow &row : token_table)
    scanner.texts[row.number] =
        intern(!row.pattern.empty() && row.number > tFCON && row.number != tWHITE
                   ? row.pattern
                   : std::string_view(row.display));
  scanner.no_text = intern("");
  scanner.token = {};
  scanner.header_mode = false;
  scanner.keep_comments = option_get_bool(optCOMMENT);
  scanner.kanji = option_get_bool(optA_KANJI);
  scanner.line_comments = option_get_integer(optISO) != 90 || option_get_bool(optA_CPP);
  scanner.want_text = true;
  // Nearly all strings of a text are there once. But who reads a text again and again doesn't
  // gather copies of them.
  scanner.intern_strings = scanner.last_pool == string_pool_number();
  scanner.last_pool = string_pool_number();
}

void scanner_stop()
{
  scanner.buffer.free();
  scanner.token = {};
}

const char *token_text(int number)
{
  return scanner.texts[number];
}

void keep_text(PpToken &token)
{
  if (token.number == tCOMMENT || token.number == tSTRING || token.number == tWHITE)
    token.text = intern(token.view());
}

void scanner_scan_text(std::string_view text, std::vector<PpToken> &tokens)
{
  const PpToken outer = scanner.token;
  input_push_isolated(text);
  for (;;) {
    PpToken token = scanner_next_token();
    if (token.number == tEOF) break;
    keep_text(token);
    tokens.push_back(token);
  }
  input_pop_isolated();
  scanner.token = outer;
}

} // namespace tdm

const tdm::PpToken &scanner_next_token(bool want_text)
{
  using namespace tdm;
  scanner.want_text = want_text;
  if (record_with_block() == nullptr) return by_character();
  TDMInputRecord &record = *record_with_block();
  switch (start_of(*record.cursor)) {
  case Start::name:
    return name_in_block(record);
  case Start::blank:
    return blanks_in_block(record);
  case Start::single:
    return single_in_block(record);
  case Start::newline:
    return newline_in_block(record);
  case Start::number:
    return number_in_block(record);
  case Start::quote:
    return quoted_in_block(record);
  case Start::slash:
    if (record.cursor[1] == '*' || record.cursor[1] == '/') return comment_in_block(record);
    return punctuator_in_block(record);
  case Start::other:
    return punctuator_in_block(record);
  case Start::special:
    if (input_leave_ended_files()) return scanner_next_token(want_text);
    break;
  }
  return by_character();
}

void scanner_set_header_mode()
{
  tdm::scanner.header_mode = true;
}

void scanner_push_back(std::string_view text)
{
  input_push_text(text);
}
