// The quick road to a token: from the bytes at hand, if the token lies in them whole. Whatever
// these functions can't decide they hand over to by_character().
#include "preprocessor/c_scanner.h"

#include "preprocessor/c_input.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_pragma.h"
#include "preprocessor/c_srcpos.h"
#include "preprocessor/scanner_parts.h"

namespace tdm {

ScannerState scanner;

namespace {

// Blanks and tabs come in runs; a longer one makes several tokens.
constexpr std::size_t longest_run = 32;
constexpr char blanks[] = "                                ";
constexpr char tabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
static_assert(sizeof blanks == longest_run + 1 && sizeof tabs == longest_run + 1);

/// Bytes of a block. The NUL behind the block belongs to no token, so no bound is needed.
struct BlockSource {
  const char *cursor;

  [[nodiscard]] int peek() const { return static_cast<unsigned char>(*cursor); }
  void take() { ++cursor; }
};

inline void place_at_next(TDMInputRecord &record)
{
  input_begin_line(record);
  if (record.kind != TDMInputRecord::file) {
    scanner.token.position = srcpos_current();
    return;
  }
  tdm_srcpos &position = scanner.token.position;
  position.file = record.presumed_name;
  position.line = static_cast<int>(record.presumed_line);
  position.column = static_cast<int>(record.column + 1);
  position.pragmas = pragma_vector_current();
}

bool needs_other_road(const char *cursor)
{
  return start_of(*cursor) == Start::special;
}

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

// Ends a token of one line: the record stands behind it.
inline const PpToken &pass(TDMInputRecord &record, const char *end)
{
  record.column += static_cast<std::uint32_t>(end - record.cursor);
  record.cursor = end;
  return scanner.token;
}

[[gnu::noinline]] const PpToken &comment_in_block(TDMInputRecord &record)
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

[[gnu::noinline]] const PpToken &punctuator_in_block(TDMInputRecord &record)
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

[[gnu::noinline]] const PpToken &name_in_block(TDMInputRecord &record)
{
  const char *begin = record.cursor;
  const char *end = begin + 1;
  while (has_part(static_cast<unsigned char>(*end), in_name)) ++end;
  if (needs_other_road(end)) return by_character();
  int number = tIDENT;
  if (start_of(*end) == Start::quote && *begin == 'L' && end == begin + 1) {
    if ((end = end_of_quoted(end)) == nullptr) return by_character();
    number = begin[1] == '"' ? tWSTRING : tWCHAR;
  }
  place_at_next(record);
  scanner.token.number = number;
  set_interned({begin, static_cast<std::size_t>(end - begin)});
  return pass(record, end);
}

[[gnu::noinline]] const PpToken &number_in_block(TDMInputRecord &record)
{
  BlockSource source{record.cursor + 1};
  const int number = read_number(source, *record.cursor == '0', false);
  if (needs_other_road(source.cursor)) return by_character();
  place_at_next(record);
  scanner.token.number = number;
  set_interned({record.cursor, static_cast<std::size_t>(source.cursor - record.cursor)});
  return pass(record, source.cursor);
}

[[gnu::noinline]] const PpToken &quoted_in_block(TDMInputRecord &record)
{
  const char *end = end_of_quoted(record.cursor);
  if (end == nullptr) return by_character();
  place_at_next(record);
  scanner.token.number = *record.cursor == '"' ? tSTRING : tCHAR;
  set_interned({record.cursor, static_cast<std::size_t>(end - record.cursor)});
  return pass(record, end);
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
  const auto c = static_cast<std::size_t>(*record.cursor);
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

} // namespace

void scanner_start()
{
  for (const TokenRow &row : token_table)
    scanner.texts[row.number] =
        intern(row.pattern.size() > 0 && row.number > tFCON && row.number != tWHITE
                   ? row.pattern
                   : std::string_view(row.display));
  scanner.no_text = intern("");
  scanner.token = {};
  scanner.header_mode = false;
  scanner.keep_comments = option_get_bool(optCOMMENT);
  scanner.kanji = option_get_bool(optA_KANJI);
  scanner.line_comments = option_get_integer(optISO) != 90 || option_get_bool(optA_CPP);
  scanner.want_text = true;
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
  if (token.number == tCOMMENT) token.text = intern(token.view());
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
  if (input_stack.top == nullptr || input_stack.has_unread) return by_character();
  TDMInputRecord &record = *input_stack.top;
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
    break;
  }
  return by_character();
}

std::size_t scanner_pass_blanks(bool &newline)
{
  using namespace tdm;
  if (input_stack.top == nullptr || input_stack.has_unread) return 0;
  TDMInputRecord &record = *input_stack.top;
  for (std::size_t passed = 0;; ++passed) {
    const Start start = start_of(*record.cursor);
    if (start != Start::blank && start != Start::newline) return passed;
    input_begin_line(record);
    if (start == Start::newline) {
      pass_newline(record);
      newline = true;
      continue;
    }
    const char *end = record.cursor + 1;
    while (start_of(*end) == Start::blank) ++end;
    pass(record, end);
  }
}

void scanner_set_header_mode()
{
  tdm::scanner.header_mode = true;
}

void scanner_push_back(std::string_view text)
{
  input_push_text(text);
}
