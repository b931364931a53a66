// What the parts of macro expansion share: the list stack, the calls at work and their arguments.
// Only macro_expand.cpp, macro_arguments.cpp and macro_substitute.cpp look in here, and the read
// step, which takes tokens from the list on top.
#pragma once

#include <cstddef>
#include <vector>

#include "preprocessor/c_buffer.h"
#include "preprocessor/macro_expand.h"
#include "preprocessor/macros.h"
#include "preprocessor/token_list.h"

namespace tdm {

/// One list of the list stack.
struct OpenList {
  const PpToken *cursor;
  const PpToken *end;
  TDMMacro *macro;        ///< whose expansion this is, busy until the list is popped; or null
  tdm_srcpos position;    ///< what all its tokens take, if `positioned`
  TokenMemory::Mark mark; ///< what is above it can go with the list
  bool positioned = false;
  bool barrier = false; ///< an argument on its own: nothing below is read before it is popped
  bool linked = false;  ///< parentheses and commas carry links
  bool forwarded = false;
  bool part = false; ///< a part of the list below, which goes on behind it
};

/// An argument of a call.
struct MacroArgument {
  const PpToken *begin; ///< as it stands, no white space at either end; equal to `end` if empty
  const PpToken *end;
  const PpToken *expanded;
  std::size_t expanded_count;
  const char *string; ///< what # makes of it, once it has been asked for
  std::size_t string_length;
};

/// A call whose arguments have been collected.
struct MacroCall {
  TDMMacro *macro;
  PpToken name;
  std::size_t first_argument; ///< in `arguments`
  std::size_t next;           ///< the argument to look at next
  std::size_t output_start;   ///< of the argument that is being expanded, in `output`
  bool reading;               ///< an argument is being expanded
  TokenMemory::Mark mark;
};

struct ExpansionState {
  std::vector<OpenList> lists;
  std::vector<MacroCall> calls;
  std::vector<MacroArgument> arguments; ///< of all calls, the innermost call's last
  std::vector<PpToken> output;          ///< what has come out of arguments being expanded, likewise
  std::vector<PpToken> result;          ///< scratch: of the substitution or argument at work
  TokenMemory memory;
  bool forwarding;
  bool exhausted; ///< the limit was met: nothing is expanded any more
  int collecting; ///< arguments are being collected: memory of popped lists is still needed
  TokenMemory::Mark lowest; ///< of the lists popped meanwhile
};
[[gnu::visibility("hidden")]] extern ExpansionState expansion;

enum class Read { token, barrier, end };

/// Which parts come out whole; all others are opened and come out token by token.
enum class Parts { none, done, neutral };

/// The next item of the list stack, up to a barrier.
Read read_item(PpToken &item, Parts whole);

void push_list(const OpenList &list);
void pop_list();

/// The limit has been met: reports it, unless that has been done; false when it reports.
bool refuse_work(const tdm_srcpos &position);

/// Counts tokens made or read; false, once, when the limit is met. Expansion then stops as soon as
/// it can, for the rest of the input.
inline bool count_work(std::size_t tokens, const tdm_srcpos &position)
{
  expansion_work.done += tokens;
  return expansion_work.done <= expansion_work.allowed || refuse_work(position);
}

/// Strings that macros have made can be long, and be read any number of times.
inline std::uint64_t reading_work(const PpToken &item)
{
  return 1 + item.length / 256;
}

/// Takes the next token of the list on top, which must exist, if that has one at hand and the limit
/// is far; else false, and nothing has been done.
inline bool list_next_plain(PpToken &token)
{
  OpenList &list = expansion.lists.back();
  if (list.cursor == list.end || list.cursor->number == item_part) return false;
  const std::uint64_t done = expansion_work.done + reading_work(*list.cursor);
  if (done > expansion_work.allowed) return false;
  expansion_work.done = done;
  token = *list.cursor++;
  if (list.positioned) token.position = list.position;
  expansion.forwarding = list.forwarded;
  return true;
}

/// Whether the next token that isn't white is a "(". Tokens that must be read from the input for
/// that are put back.
[[nodiscard]] bool next_is_parenthesis();

/// Reads the arguments of a call, from its "(" on, and pushes one for each parameter. False when
/// the call isn't complete; a message tells.
[[nodiscard]] bool collect_arguments(const TDMMacro &macro, const PpToken &name);

/// Builds the list that replaces the call, unless the limit is met.
[[nodiscard]] TokenSpan substitute(const MacroCall &call);

void substitution_stop();

} // namespace tdm
