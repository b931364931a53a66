// The records of the stack and the delivery of characters.
#include "preprocessor/c_input.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_input_files.h"
#include "preprocessor/c_memory.h"
#include "preprocessor/c_srcpos.h"
#include "preprocessor/orderly_stop.h"
#include "preprocessor/source_files.h"
#include "preprocessor/string_pool.h"

namespace tdm {

InputStack input_stack;
MainFile main_file;

namespace {

constexpr std::size_t block_size = 32768;
constexpr std::size_t longest_look =
    8; ///< bytes that a new block is read behind, with room to spare
constexpr std::string_view supplied_newline = "\n";

struct {
  MemoryArena arena;
  std::uint32_t serial;
  int unread;           ///< a character given back that isn't in a block, if there is one
  bool last_plain;      ///< the last character was one byte of the top record
  bool last_began_line; ///< delivering it began a line
} state;

// The third character of a trigraph, and what the three stand for.
constexpr char trigraphs[][2] = {{'=', '#'}, {'(', '['}, {'/', '\\'}, {')', ']'}, {'\'', '^'},
                                 {'<', '{'}, {'!', '|'}, {'>', '}'},  {'-', '~'}};

char trigraph(char third)
{
  for (const auto &[key, value] : trigraphs)
    if (key == third) return value;
  return 0;
}

void find_innermost_file()
{
  TDMInputRecord *record = input_stack.top;
  while (record != nullptr && record->kind != TDMInputRecord::file) record = record->next;
  input_stack.innermost_file = record;
}

void store_end(const TDMInputRecord &last)
{
  if (main_file.name != nullptr)
    srcpos_set_end(main_file.name, static_cast<int>(main_file.highest_line + 1), 1);
  else
    srcpos_set_end(last.presumed_name, static_cast<int>(last.presumed_line), 1);
}

void pop_record()
{
  TDMInputRecord *record = input_stack.top;
  if (record->kind == TDMInputRecord::file)
    input_close_file(record->handle, record->buffer, record->kept);
  else
    std::free(record->buffer);
  input_stack.top = record->next;
  if (input_stack.top == nullptr) store_end(*record);
  if (record == input_stack.innermost_file) find_innermost_file();
  state.arena.release(record, sizeof *record);
}

// Reads the next block behind the bytes that are left of the last one. The byte in front of them
// stays, too, since it may be given back. A read error ends the file.
void read_block(TDMInputRecord &record)
{
  const auto left = static_cast<std::size_t>(record.end - record.cursor);
  if (record.cursor != record.buffer) record.buffer[0] = record.cursor[-1];
  char *begin = record.buffer + 1;
  if (left > 0) std::memmove(begin, record.cursor, left);
  char *fresh = begin + left;
  char *end = fresh;
  while (end == fresh && !record.exhausted) {
    const ssize_t count = ::read(record.handle, fresh, block_size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) diag_at(F_open_failed, srcpos_current(), record.file_name);
    if (count <= 0)
      record.exhausted = true;
    else
      end = fresh + input_drop_unwanted(fresh, static_cast<std::size_t>(count));
  }
  *end = 0;
  record.cursor = begin;
  record.end = end;
}

// Makes bytes available at the cursor, as many as there are up to `count`.
std::size_t have(TDMInputRecord &record, std::size_t count)
{
  while (static_cast<std::size_t>(record.end - record.cursor) < count &&
         record.kind == TDMInputRecord::file && !record.exhausted)
    read_block(record);
  return static_cast<std::size_t>(record.end - record.cursor);
}

// At the end of the bytes of the top record: supplies a missing newline, or pops the record. False
// when nothing is left to read.
bool go_on_behind_end(TDMInputRecord &record)
{
  if (record.isolated) return false;
  const bool needs_newline = record.kind == TDMInputRecord::file || record.next == nullptr;
  if (needs_newline && !record.at_line_start) {
    record.cursor = supplied_newline.data();
    record.end = record.cursor + supplied_newline.size();
    return true;
  }
  input_begin_line(record); // the attempt to read on counts for the position of the end
  pop_record();
  return input_stack.top != nullptr;
}

TDMInputRecord *new_record(TDMInputRecord::Kind kind)
{
  auto *record = static_cast<TDMInputRecord *>(state.arena.allocate(sizeof(TDMInputRecord)));
  record->kind = kind;
  record->at_line_start = true;
  record->serial = ++state.serial;
  return record;
}

void push_record(TDMInputRecord *record)
{
  record->next = input_stack.top;
  input_stack.top = record;
  if (record->kind == TDMInputRecord::file) input_stack.innermost_file = record;
}

// Delivers the newline's part of the counting.
int deliver(TDMInputRecord &record, unsigned char c)
{
  if (c == '\n') {
    input_note_line(record);
    record.at_line_start = true;
  }
  return c;
}

} // namespace

void input_start(std::string_view tool_name)
{
  state.serial = 0;
  input_stack.has_unread = false;
  state.last_plain = false;
  main_file = {};
  input_files_start(tool_name);
}

void input_stop()
{
  while (input_stack.top != nullptr) pop_record();
  state.arena.clear();
  main_file = {};
  input_files_stop();
}

int input_next_char()
{
  if (input_stack.has_unread) {
    input_stack.has_unread = false;
    state.last_plain = false;
    return state.unread;
  }
  for (;;) {
    TDMInputRecord *record = input_stack.top;
    if (record == nullptr) return input_end;
    if (have(*record, 1) == 0) {
      if (!go_on_behind_end(*record)) return input_end;
      continue;
    }
    state.last_began_line = record->at_line_start;
    input_begin_line(*record);
    ++record->column;
    state.last_plain = true;
    char c = *record->cursor++;
    if (record->isolated || (c != '?' && c != '\\'))
      return deliver(*record, static_cast<unsigned char>(c));
    if (c == '?' && have(*record, 2) >= 2 && record->cursor[0] == '?') {
      if (const char meant = trigraph(record->cursor[1]); meant != 0) {
        const char sequence[] = {'?', '?', record->cursor[1], 0};
        diag_at(W_trigraph, srcpos_current(), sequence, meant);
        record->column += 2;
        record->cursor += 2;
        state.last_plain = false;
        c = meant;
      }
    }
    if (c == '\\' && have(*record, 1) != 0 && *record->cursor == '\n') {
      input_note_line(*record);
      ++record->cursor;
      ++record->physical_line;
      ++record->presumed_line;
      record->column = 0;
      continue;
    }
    return static_cast<unsigned char>(c);
  }
}

void input_unread(int c)
{
  if (c == input_end) return;
  if (!state.last_plain) {
    state.unread = c;
    input_stack.has_unread = true;
    return;
  }
  TDMInputRecord &record = *input_stack.top;
  --record.cursor;
  --record.column;
  record.at_line_start = false;
  if (state.last_began_line) {
    --record.physical_line;
    --record.presumed_line;
    record.at_line_start = true;
  }
  state.last_plain = false;
}

int input_peek_byte()
{
  if (input_stack.top == nullptr) return 0;
  TDMInputRecord &record = *input_stack.top;
  const std::size_t length = have(record, longest_look);
  std::string_view ahead(record.cursor, length);
  for (bool spliced = !record.isolated; spliced;) {
    spliced = false;
    for (const std::string_view splice : {"\\\n", "?\?/\n"}) {
      if (!ahead.starts_with(splice)) continue;
      ahead.remove_prefix(splice.size());
      spliced = true;
    }
  }
  return ahead.empty() ? 0 : static_cast<unsigned char>(ahead.front());
}

void input_flush_unread()
{
  if (!input_stack.has_unread) return;
  const char c = static_cast<char>(state.unread);
  input_stack.has_unread = false;
  input_push_text({&c, 1});
}

void input_push_isolated(std::string_view text)
{
  input_flush_unread();
  TDMInputRecord *record = new_record(TDMInputRecord::text);
  record->isolated = true;
  record->presumed_name = intern("");
  record->cursor = text.data();
  record->end = text.data() + text.size();
  push_record(record);
}

void input_pop_isolated()
{
  internal_check(input_stack.top != nullptr && input_stack.top->isolated);
  TDMInputRecord *record = input_stack.top;
  input_stack.top = record->next;
  state.arena.release(record, sizeof *record);
}

const TDMInputRecord *reading_file()
{
  const TDMInputRecord *record = input_stack.innermost_file;
  while (record != nullptr && (record->kind != TDMInputRecord::file || record->physical_line == 0))
    record = record->next;
  return record;
}

// Carriage returns and 0x1A are no part of any text.
std::size_t input_drop_unwanted(char *begin, std::size_t length)
{
  if (length == 0) return 0;
  if (std::memchr(begin, '\r', length) == nullptr && std::memchr(begin, 0x1A, length) == nullptr)
    return length;
  const char *end =
      std::remove_if(begin, begin + length, [](char c) { return c == '\r' || c == 0x1A; });
  return static_cast<std::size_t>(end - begin);
}

void input_push_file(const OpenedFile &file)
{
  std::int32_t source = -1;
  try {
    source = source_file_opened(file.name, reading_source());
  } catch (...) { // no memory: nobody else has the file yet
    input_close_file(file.handle, file.buffer, file.kept);
    throw;
  }
  TDMInputRecord *record = new_record(TDMInputRecord::file);
  record->file_name = record->presumed_name = file.name;
  record->directory = file.directory;
  record->handle = file.handle;
  record->buffer = file.buffer;
  record->cursor = file.text.data();
  record->end = file.text.data() + file.text.size();
  record->exhausted = file.exhausted;
  record->source = source;
  record->kept = file.kept;
  push_record(record);
}

std::int32_t reading_source()
{
  const TDMInputRecord *record = reading_file();
  return record != nullptr ? record->source : -1;
}

std::size_t input_buffer_size()
{
  return longest_look + block_size + 1;
}

void input_set_presumed(const char *name, std::uint32_t line)
{
  TDMInputRecord *record = input_stack.innermost_file;
  if (record == nullptr) {
    record = input_stack.top;
    while (record != nullptr && record->next != nullptr) record = record->next;
  }
  if (name != nullptr && main_file.name == nullptr) main_file.name = name;
  if (record == nullptr) return;
  if (name != nullptr) {
    record->presumed_name = name;
    if (record->kind == TDMInputRecord::file) source_file_renamed(record->source, name);
  }
  record->presumed_line = line - 1;
  record->column = 0;
  input_note_line(*record);
}

void input_skip_to_line(std::uint32_t physical_line)
{
  TDMInputRecord &record = *input_stack.top;
  while (record.physical_line + 1 < physical_line && have(record, 1) != 0) {
    // One line of the block after the other, with the counts brought up to date at its end.
    const char *cursor = record.cursor;
    std::uint32_t lines = physical_line - record.physical_line - 1;
    const std::uint32_t wanted = lines;
    for (; lines > 0; --lines) {
      const auto left = static_cast<std::size_t>(record.end - cursor);
      const auto *newline = static_cast<const char *>(std::memchr(cursor, '\n', left));
      if (newline == nullptr) break;
      cursor = newline + 1;
    }
    if (lines < wanted) {
      record.physical_line += wanted - lines;
      record.presumed_line += wanted - lines;
      record.at_line_start = true;
      input_note_line(record);
    }
    if (lines > 0 && cursor != record.end) {
      cursor = record.end;
      record.at_line_start = false;
    }
    record.cursor = cursor;
  }
}

void input_jump_to_line(std::uint32_t physical_line, const char *place)
{
  TDMInputRecord &record = *input_stack.top;
  if (record.physical_line + 1 >= physical_line) return;
  const std::uint32_t lines = physical_line - record.physical_line - 1;
  record.physical_line += lines;
  record.presumed_line += lines;
  record.at_line_start = true;
  input_note_line(record);
  record.cursor = place;
}

bool input_leave_ended_files()
{
  const TDMInputRecord *const before = input_stack.top;
  for (;;) {
    TDMInputRecord *const record = input_stack.top;
    if (record->kind != TDMInputRecord::file || record->cursor != record->end ||
        !record->exhausted || !record->at_line_start || record->next == nullptr)
      return record != before;
    input_begin_line(*record); // the attempt to read on counts
    pop_record();
  }
}

} // namespace tdm

void input_push_text(std::string_view text)
{
  tdm::input_flush_unread();
  TDMInputRecord *record = tdm::new_record(TDMInputRecord::text);
  record->buffer = static_cast<char *>(std::malloc(text.size() + 1));
  if (record->buffer == nullptr) tdm::stop_no_memory("c-memory.c: Cannot allocate memory.\n");
  if (!text.empty()) std::memcpy(record->buffer, text.data(), text.size());
  record->buffer[text.size()] = 0;
  record->cursor = record->buffer;
  record->end = record->buffer + text.size();
  record->presumed_name =
      tdm::input_stack.top == nullptr ? tdm::intern("") : tdm::input_stack.top->presumed_name;
  tdm::push_record(record);
}
