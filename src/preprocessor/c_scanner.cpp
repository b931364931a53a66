// Two roads to a token: the functions ..._in_block take it from the bytes at hand, by_character()
// asks for logical characters. The former hand over to the latter whatever they can't decide.
#include "preprocessor/c_scanner.h"

#include <array>

#include "preprocessor/c_buffer.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_pragma.h"
#include "preprocessor/c_srcpos.h"
#include "preprocessor/escapes.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

// How a token begins, by its first byte.
enum class Start : std::uint8_t {
  other,
  name,
  number,
  blank,
  newline,
  quote,
  slash,
  single, // a punctuator that begins no other one
  special // may be or begin a splice, a trigraph or the end of the block
};

// What a byte may be part of.
enum Part : std::uint8_t {
  in_name = 1,       // letters, digits, "_"
  is_digit = 2,      //
  stops_string = 4,  // quotes, newline, and what needs the other road
  stops_comment = 8, // "*", "/", and what needs a look or the other road
  stops_line = 16,   // newline, and what needs the other road
};

struct ByteTables {
  std::array<Start, 256> start{};
  std::array<std::uint8_t, 256> part{};
};

constexpr ByteTables make_byte_tables()
{
  ByteTables tables;
  const auto set = [&tables](std::string_view bytes, Start start, int part) {
    for (const char c : bytes) {
      tables.start[static_cast<unsigned char>(c)] = start;
      tables.part[static_cast<unsigned char>(c)] |= static_cast<std::uint8_t>(part);
    }
  };
  set("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_", Start::name, in_name);
  set("0123456789", Start::number, in_name | is_digit);
  set(" \t", Start::blank, 0);
  set("\n", Start::newline, stops_string | stops_line);
  set("\"'", Start::quote, stops_string);
  set("()[]{},;~", Start::single, 0);
  set("*", Start::other, stops_comment);
  set("/", Start::slash, stops_comment);
  set(std::string_view("\\?\0", 3), Start::special, stops_string | stops_comment | stops_line);
  return tables;
}

constexpr ByteTables byte_tables = make_byte_tables();

Start start_of(char c)
{
  return byte_tables.start[static_cast<unsigned char>(c)];
}

bool has_part(int c, int part)
{
  return c >= 0 && (byte_tables.part[static_cast<std::size_t>(c)] & part) != 0;
}

// Blanks and tabs come in runs; a longer one makes several tokens.
constexpr std::size_t longest_run = 32;
constexpr char blanks[] = "                                ";
constexpr char tabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
static_assert(sizeof blanks == longest_run + 1 && sizeof tabs == longest_run + 1);

struct {
  PpToken token;
  TextBuffer buffer{100};
  const char *texts[token_count];
  const char *no_text;
  bool header_mode;
  bool keep_comments;
  bool kanji;
  bool line_comments;
  bool want_text;
} state;

// ---- what both roads share ----

/// Bytes of a block. The NUL behind the block belongs to no token, so no bound is needed.
struct BlockSource {
  const char *cursor;

  [[nodiscard]] int peek() const { return static_cast<unsigned char>(*cursor); }
  void take() { ++cursor; }
};

/// Logical characters; those taken go to the buffer. One character is read ahead, but only when it
/// is asked for.
struct CharacterSource {
  int ahead = 0;
  bool holds = false;

  int peek()
  {
    if (!holds) {
      ahead = input_next_char();
      holds = true;
    }
    return ahead;
  }
  void take()
  {
    peek();
    state.buffer.append(static_cast<char>(ahead));
    holds = false;
  }
};

// Follows the transition table; gives the state reached. A state that doesn't go on ends the match
// without a look at the next character.
template <class Source> int match(Source &source)
{
  int at = 0;
  do {
    const int c = source.peek();
    if (c < 0 || c > 127) break;
    const int next = recogniser.next[static_cast<std::size_t>(at)][static_cast<std::size_t>(c)];
    if (next == 0) break;
    source.take();
    at = next;
  } while (recogniser.goes_on[static_cast<std::size_t>(at)]);
  return at;
}

bool is_hex_digit(int c)
{
  return has_part(c, is_digit) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// The rest of a number, behind its first digit or "." and digit; gives tICON or tFCON.
template <class Source> int read_number(Source &source, bool leading_zero, bool seen_dot)
{
  bool hex = false;
  int last = 0;
  if (leading_zero && (source.peek() | 0x20) == 'x') {
    source.take();
    hex = true;
  }
  int c = source.peek();
  for (; (hex ? is_hex_digit(c) : has_part(c, is_digit)) || c == '.'; c = source.peek()) {
    if (c == '.') seen_dot = true;
    last = c;
    source.take();
  }
  const int exponent = hex ? 'p' : 'e';
  const int number = seen_dot || (c >= 0 && (c | 0x20) == exponent) ? tFCON : tICON;
  for (; has_part(c, in_name) || c == '.' || ((c == '+' || c == '-') && (last | 0x20) == exponent);
       c = source.peek()) {
    last = c;
    source.take();
  }
  return number;
}

int without_digraph(int number)
{
  switch (number) {
  case tLSQB2:
  case tRSQB2:
  case tLBRA2:
  case tRBRA2:
  case tHASH2:
  case tCONCAT2:
    return number - 1;
  default:
    return number;
  }
}

void set_text(const char *text, std::size_t length)
{
  state.token.text = text;
  state.token.length = length;
}

void set_interned(std::string_view text)
{
  if (state.want_text)
    set_text(intern(text), text.size());
  else
    set_text(state.no_text, 0);
}

void set_table_text(int number)
{
  set_text(state.texts[number], token_table[number].pattern.size());
}

// ---- tokens that lie in a block ----

inline void place_at_next(TDMInputRecord &record)
{
  input_begin_line(record);
  if (record.kind != TDMInputRecord::file) {
    state.token.position = srcpos_current();
    return;
  }
  tdm_srcpos &position = state.token.position;
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
  if (state.kanji || state.header_mode) return nullptr;
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
  return state.token;
}

const PpToken &by_character();

const PpToken &comment_in_block(TDMInputRecord &record)
{
  const char *begin = record.cursor;
  std::uint32_t lines = 0;
  const char *line_start = begin;
  const char *end = nullptr;
  if (begin[1] == '*')
    end = end_of_comment(begin, lines, line_start);
  else if (state.line_comments)
    end = end_of_line_comment(begin);
  if (end == nullptr) return by_character();
  place_at_next(record);
  state.token.number = tCOMMENT;
  if (state.keep_comments)
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
    state.token.number = tERROR;
    set_interned({record.cursor, 1});
    return pass(record, record.cursor + 1);
  }
  const int number = recogniser.token[static_cast<std::size_t>(at)];
  if (number == tFCON) read_number(source, false, true);
  const bool undecided = recogniser.goes_on[static_cast<std::size_t>(at)] || number == tFCON;
  if ((undecided && needs_other_road(source.cursor)) || (number == tLT && state.header_mode))
    return by_character();
  place_at_next(record);
  state.token.number = without_digraph(number);
  if (number == tFCON || number == tWHITE)
    set_interned({record.cursor, static_cast<std::size_t>(source.cursor - record.cursor)});
  else
    set_table_text(number);
  return pass(record, source.cursor);
}

const PpToken &name_in_block(TDMInputRecord &record)
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
  state.token.number = number;
  set_interned({begin, static_cast<std::size_t>(end - begin)});
  return pass(record, end);
}

const PpToken &number_in_block(TDMInputRecord &record)
{
  BlockSource source{record.cursor + 1};
  const int number = read_number(source, *record.cursor == '0', false);
  if (needs_other_road(source.cursor)) return by_character();
  place_at_next(record);
  state.token.number = number;
  set_interned({record.cursor, static_cast<std::size_t>(source.cursor - record.cursor)});
  return pass(record, source.cursor);
}

const PpToken &quoted_in_block(TDMInputRecord &record)
{
  const char *end = end_of_quoted(record.cursor);
  if (end == nullptr) return by_character();
  place_at_next(record);
  state.token.number = *record.cursor == '"' ? tSTRING : tCHAR;
  set_interned({record.cursor, static_cast<std::size_t>(end - record.cursor)});
  return pass(record, end);
}

inline const PpToken &blanks_in_block(TDMInputRecord &record)
{
  const char first = *record.cursor;
  const char *end = record.cursor + 1;
  while (*end == first && end != record.cursor + longest_run) ++end;
  place_at_next(record);
  state.token.number = tWHITE;
  set_text(first == ' ' ? blanks : tabs, static_cast<std::size_t>(end - record.cursor));
  return pass(record, end);
}

inline const PpToken &single_in_block(TDMInputRecord &record)
{
  const auto c = static_cast<std::size_t>(*record.cursor);
  const int number = recogniser.token[recogniser.next[0][c]];
  place_at_next(record);
  state.token.number = number;
  set_text(state.texts[number], 1);
  return pass(record, record.cursor + 1);
}

inline const PpToken &newline_in_block(TDMInputRecord &record)
{
  place_at_next(record);
  state.token.number = tNEWLINE;
  set_text(state.texts[tNEWLINE], 1);
  input_note_line(record);
  record.at_line_start = true;
  state.header_mode = false;
  return pass(record, record.cursor + 1);
}

// ---- tokens read character by character ----

bool ends_line(int c)
{
  return c == '\n' || c == 0 || c == input_end;
}

// A file name, behind its opening character.
void read_header_name(CharacterSource &source, char closer)
{
  while (source.peek() != closer && !ends_line(source.peek())) source.take();
  if (source.peek() == closer) {
    source.take();
    return;
  }
  diag_at(E_unterminated_filename, state.token.position);
  state.buffer.append(closer);
}

bool leads_double_byte(int c)
{
  return state.kanji && ((c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xEF));
}

// A string or character constant, behind its opening quote. Escapes are checked where they stand
// once the token is whole, each at the position of its backslash.
void read_quoted(CharacterSource &source, char quote, DiagMessage unterminated)
{
  struct Escape {
    std::size_t offset;
    tdm_srcpos position;
  };
  std::vector<Escape> escapes;
  int c = source.peek();
  for (; c != quote && !ends_line(c); c = source.peek()) {
    const bool double_byte = leads_double_byte(c);
    if (c == '\\') escapes.push_back({state.buffer.length() + 1, srcpos_current()});
    source.take();
    if ((c == '\\' || double_byte) && !ends_line(source.peek())) source.take();
  }
  const std::string_view text = state.buffer.view();
  for (const Escape &escape : escapes) {
    const char *cursor = text.data() + escape.offset;
    static_cast<void>(escape_check(cursor, text.data() + text.size(), escape.position, true));
  }
  if (c == quote) {
    source.take();
    return;
  }
  diag_at(unterminated, state.token.position);
  state.buffer.append(quote);
}

// The rest of a name; gives its number. A backslash is part of it only in front of a "u" or "U".
int read_name(CharacterSource &source)
{
  const auto opens_universal = [] { return (input_peek_byte() | 0x20) == 'u'; };
  if (state.buffer.view() == "\\" && (source.peek() | 0x20) != 'u') return tERROR;
  for (int c = source.peek(); has_part(c, in_name) || (c == '\\' && opens_universal());
       c = source.peek())
    source.take();
  return tIDENT;
}

std::uint32_t current_file()
{
  return input_stack.innermost_file == nullptr ? 0 : input_stack.innermost_file->serial;
}

// A comment, behind its opener. Where it runs into the end of its file, it ends with a closer of
// ours, so that it doesn't swallow what comes behind; in the last file it stays open.
void read_comment(CharacterSource &source)
{
  const std::uint32_t file = current_file();
  const bool last = input_stack.top == nullptr || input_stack.top->next == nullptr;
  int previous = 0;
  for (;;) {
    const int c = source.peek();
    if (c == input_end || current_file() != file) {
      diag_at(E_unterminated_comment, state.token.position);
      if (!last) state.buffer.append("*/");
      return;
    }
    if (previous == '/' && c == '*') {
      tdm_srcpos inner = srcpos_current();
      --inner.column;
      diag_at(W_nested_comment, inner);
    }
    source.take();
    if (previous == '*' && c == '/') return;
    previous = c;
  }
}

// Finishes a token by its number so far; its first characters are in the buffer.
int finish(CharacterSource &source, int number)
{
  const char first = state.buffer.length() == 0 ? '\0' : state.buffer.view().front();
  switch (number) {
  case tWSTRING:
  case tSTRING:
    read_quoted(source, '"', E_unterminated_string);
    return number;
  case tWCHAR:
  case tCHAR:
    read_quoted(source, '\'', E_unterminated_char);
    return number;
  case tIDENT:
    return read_name(source);
  case tICON:
  case tFCON:
    return read_number(source, first == '0', first == '.');
  case tSPACE:
  case tTAB:
    return tWHITE;
  case tCOMMENT:
    read_comment(source);
    return tCOMMENT;
  case tCPPCMNT:
    while (source.peek() != '\n' && source.peek() != input_end) source.take();
    return tCOMMENT;
  default:
    return without_digraph(number);
  }
}

void set_buffer_text(int number)
{
  const std::string_view text = state.buffer.view();
  if (number == tCOMMENT) {
    if (state.keep_comments)
      set_text(text.data(), text.size());
    else
      set_table_text(tCOMMENT);
    return;
  }
  set_interned(text);
  if (number == tIDENT && state.want_text && text.find('\\') != text.npos)
    pooled(state.token.text).marks |= mark_has_backslash;
}

bool is_header_opener(int number)
{
  return number == tSTRING || number == tLT;
}

const PpToken &by_character()
{
  CharacterSource source;
  state.buffer.clear();
  const int first = source.peek();
  state.token.position = srcpos_current();
  if (first == input_end) {
    state.token.number = tEOF;
    set_text(state.no_text, 0);
    return state.token;
  }
  const int at = match(source);
  int number = recogniser.token[static_cast<std::size_t>(at)];
  if (at == 0) {
    source.take();
    number = tERROR;
  } else if (number == tCPPCMNT && !state.line_comments) {
    state.buffer.clear();
    state.buffer.append('/');
    input_unread('/');
    number = tDIV;
  } else if (number == tNEWLINE) {
    state.header_mode = false;
  }
  if (state.header_mode && is_header_opener(number)) {
    read_header_name(source, number == tSTRING ? '"' : '>');
    number = number == tSTRING ? tFILE : tHEADER;
  } else {
    number = finish(source, number);
  }
  set_buffer_text(number);
  state.token.number = number;
  if (source.holds) input_unread(source.ahead);
  return state.token;
}

} // namespace

void scanner_start()
{
  for (const TokenRow &row : token_table)
    state.texts[row.number] =
        intern(row.pattern.size() > 0 && row.number > tFCON && row.number != tWHITE
                   ? row.pattern
                   : std::string_view(row.display));
  state.no_text = intern("");
  state.token = {};
  state.header_mode = false;
  state.keep_comments = option_get_bool(optCOMMENT);
  state.kanji = option_get_bool(optA_KANJI);
  state.line_comments = option_get_integer(optISO) != 90 || option_get_bool(optA_CPP);
  state.want_text = true;
}

void scanner_stop()
{
  state.buffer.free();
  state.token = {};
}

const char *token_text(int number)
{
  return state.texts[number];
}

void keep_text(PpToken &token)
{
  if (token.number == tCOMMENT) token.text = intern(token.view());
}

void scanner_scan_text(std::string_view text, std::vector<PpToken> &tokens)
{
  const PpToken outer = state.token;
  input_push_isolated(text);
  for (;;) {
    PpToken token = scanner_next_token();
    if (token.number == tEOF) break;
    keep_text(token);
    tokens.push_back(token);
  }
  input_pop_isolated();
  state.token = outer;
}

} // namespace tdm

const tdm::PpToken &scanner_next_token(bool want_text)
{
  using namespace tdm;
  state.want_text = want_text;
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

void scanner_set_header_mode()
{
  tdm::state.header_mode = true;
}

void scanner_push_back(std::string_view text)
{
  input_push_text(text);
}
