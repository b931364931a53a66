// The thorough road to a token: by logical characters, through splices, trigraphs and the borders
// of blocks and files. All messages about tokens come from here.
#include <vector>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/c_srcpos.h"
#include "preprocessor/escapes.h"
#include "preprocessor/scanner_parts.h"

namespace tdm {

namespace {

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
    scanner.buffer.append(static_cast<char>(ahead));
    holds = false;
  }
};

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
  diag_at(E_unterminated_filename, scanner.token.position);
  scanner.buffer.append(closer);
}

bool leads_double_byte(int c)
{
  return scanner.kanji && ((c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xEF));
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
    if (c == '\\') escapes.push_back({scanner.buffer.length() + 1, srcpos_current()});
    source.take();
    if ((c == '\\' || double_byte) && !ends_line(source.peek())) source.take();
  }
  const std::string_view text = scanner.buffer.view();
  for (const Escape &escape : escapes) {
    const char *cursor = text.data() + escape.offset;
    static_cast<void>(escape_check(cursor, text.data() + text.size(), escape.position, true));
  }
  if (c == quote) {
    source.take();
    return;
  }
  diag_at(unterminated, scanner.token.position);
  scanner.buffer.append(quote);
}

// The rest of a name; gives its number. A backslash is part of it only in front of a "u" or "U".
int read_name(CharacterSource &source)
{
  const auto opens_universal = [] { return (input_peek_byte() | 0x20) == 'u'; };
  if (scanner.buffer.view() == "\\" && (source.peek() | 0x20) != 'u') return tERROR;
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
  tdm_srcpos slash = {};
  for (;;) {
    const int c = source.peek();
    if (c == input_end || current_file() != file) {
      diag_at(E_unterminated_comment, scanner.token.position);
      if (!last) scanner.buffer.append("*/");
      return;
    }
    if (previous == '/' && c == '*') diag_at(W_nested_comment, slash);
    if (c == '/') slash = srcpos_current();
    source.take();
    if (previous == '*' && c == '/') return;
    previous = c;
  }
}

// Finishes a token by its number so far; its first characters are in the buffer.
int finish(CharacterSource &source, int number)
{
  const char first = scanner.buffer.length() == 0 ? '\0' : scanner.buffer.view().front();
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
  const std::string_view text = scanner.buffer.view();
  if (number == tCOMMENT) {
    if (scanner.keep_comments)
      set_text(text.data(), text.size());
    else
      set_table_text(tCOMMENT);
    return;
  }
  if (number == tNEWLINE) {
    set_table_text(tNEWLINE); // comes out of skipped groups, too
    return;
  }
  set_interned(text);
  if (number == tIDENT && scanner.want_text && text.find('\\') != text.npos)
    pooled(scanner.token.text).marks |= mark_has_backslash;
}

bool is_header_opener(int number)
{
  return number == tSTRING || number == tLT;
}

} // namespace

const PpToken &by_character()
{
  CharacterSource source;
  scanner.buffer.clear();
  const int first = source.peek();
  scanner.token.position = srcpos_current();
  if (first == input_end) {
    scanner.token.number = tEOF;
    set_text(scanner.no_text, 0);
    return scanner.token;
  }
  const int at = match(source);
  int number = recogniser.token[static_cast<std::size_t>(at)];
  if (at == 0) {
    source.take();
    number = tERROR;
  } else if (number == tCPPCMNT && !scanner.line_comments) {
    scanner.buffer.clear();
    scanner.buffer.append('/');
    input_unread('/');
    number = tDIV;
  } else if (number == tNEWLINE) {
    scanner.header_mode = false;
  }
  if (scanner.header_mode && is_header_opener(number)) {
    read_header_name(source, number == tSTRING ? '"' : '>');
    number = number == tSTRING ? tFILE : tHEADER;
  } else {
    number = finish(source, number);
  }
  set_buffer_text(number);
  scanner.token.number = number;
  if (source.holds) input_unread(source.ahead);
  return scanner.token;
}

} // namespace tdm
