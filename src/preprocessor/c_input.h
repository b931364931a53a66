// c-input: the stack of open inputs, files and texts, and the characters that they deliver.
//
// The top record is read until it ends and leaves the stack; then reading goes on in the one below.
// Delivery takes out trigraphs and line splices and counts lines and columns, so whoever reads here
// sees logical characters only. Carriage returns and the byte 0x1A are dropped as blocks are read.
// The scanner reads most tokens straight from a record's block instead, and then keeps the counts
// itself. What the characters mean is none of this module's business.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tdm {
struct KeptText;
}

struct TDMInputRecord {
  enum Kind : int { file = 1, text = 2 };

  Kind kind;
  bool at_line_start;    ///< the character last delivered was a newline, or there was none yet
  bool isolated;         ///< a text whose end is the end of input, raw: no splices, no trigraphs
  bool exhausted;        ///< of a file: the last block has been read
  const char *cursor;    ///< next byte; `end` has a NUL, so that no loop runs past it
  const char *end;       ///< behind the bytes at hand
  const char *file_name; ///< the name under which the file was opened, null for a text
  const char *directory; ///< of that name, a text of the pool, with the "/" at its end
  const char *presumed_name; ///< the name that positions show
  std::uint32_t physical_line;
  std::uint32_t presumed_line;
  std::uint32_t column; ///< of the character last delivered
  std::uint32_t serial; ///< different for all records of a stream
  int handle;
  std::int32_t source;  ///< of a file: its index among the source files
  char *buffer;         ///< the block of a file, the characters of a text; null if they are kept
  tdm::KeptText *kept;  ///< whose text it is, if that is kept for the next time
  TDMInputRecord *next; ///< the record below
};

namespace tdm {

constexpr int input_end = -1;

/// The ends of the stack, for the scanner. Only this module changes them.
struct InputStack {
  TDMInputRecord *top = nullptr;
  TDMInputRecord *innermost_file = nullptr;
  bool has_unread = false; ///< a character that was given back waits outside the blocks
};
[[gnu::visibility("hidden")]] extern InputStack input_stack;

/// Makes the stack. The environment variable `<TOOL NAME>INC` names directories for the search.
void input_start(std::string_view tool_name);

/// Closes all inputs. No listener may be left.
void input_stop();

/// The next logical character, 0 to 255, or input_end.
[[nodiscard]] int input_next_char();

/// Gives the character just delivered back, to be delivered again.
void input_unread(int c);

/// The byte behind the character just delivered and a splice or two, without delivering it; 0 if
/// there is none in the same record.
[[nodiscard]] int input_peek_byte();

/// Puts what was given back on the stack as a text of its own, so that texts and files that are
/// pushed now are read before it.
void input_flush_unread();

/// Pushes a text that ends the input for its reader, until input_pop_isolated. It is delivered raw.
/// The text must stay until then, and have a NUL behind it.
void input_push_isolated(std::string_view text);
void input_pop_isolated();

/// Counts a line of the record as begun, if the last character delivered was a newline.
inline void input_begin_line(TDMInputRecord &record)
{
  if (!record.at_line_start) return;
  ++record.physical_line;
  ++record.presumed_line;
  record.column = 0;
  record.at_line_start = false;
}

/// The innermost file of which something has been read, or null: what an #include stands in.
[[nodiscard]] const TDMInputRecord *reading_file();
/// Its index among the source files, or -1.
[[nodiscard]] std::int32_t reading_source();
/// The name of the file that is being opened, which may take its time; null for none.
[[nodiscard]] const char *opening_file();

/// What #line has to do with the position of the end of input.
struct MainFile {
  const char *name = nullptr;     ///< the first one that #line gave
  std::uint32_t highest_line = 0; ///< so far, under this name
};
[[gnu::visibility("hidden")]] extern MainFile main_file;

/// To be called when the newline of a line has been delivered.
inline void input_note_line(const char *presumed_name, std::uint32_t presumed_line)
{
  if (presumed_name == main_file.name && presumed_line > main_file.highest_line)
    main_file.highest_line = presumed_line;
}
inline void input_note_line(const TDMInputRecord &record)
{
  input_note_line(record.presumed_name, record.presumed_line);
}

/// The effect of #line on the innermost file: the line that begins next has this number. A null
/// name leaves the name.
void input_set_presumed(const char *name, std::uint32_t line);

/// Reads over whole lines of the top file, until the line with this physical number begins.
void input_skip_to_line(std::uint32_t physical_line);

/// The same where that place is known.
void input_jump_to_line(std::uint32_t physical_line, const char *place);

/// Takes files that have been read to their end off the stack, as reading on would do; false if the
/// top isn't one, or is the last.
[[nodiscard]] bool input_leave_ended_files();

} // namespace tdm

/// Pushes a text; a newline is supplied at the end of the bottom record only.
void input_push_text(std::string_view text);

/// Opens one file and pushes it. False if it doesn't exist, in silence, or can't be read, with a
/// message. The name must be interned.
bool input_open_file(const char *name);

/// Tries the directories in their order: that of the innermost file; the include directories and
/// those of the environment; "../include/". True when a file was opened.
bool input_search_file(std::string_view name, bool search_local, bool search_paths,
                       bool search_default);

/// Adds a function that is called with the name of each file that the system opens, once or more
/// often if it is included again; null drops the one that was added last.
using InputListener = void (*)(const char *name);
void input_add_listener(InputListener listener);
