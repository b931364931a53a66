// How a macro is expanded.
//
// A name that is no macro stays. The name of an object-like macro is replaced by pushing the body
// as a list on the list stack; reading goes on there, so the body is scanned for further macros
// together with what follows it. While its list is on the stack the macro is *busy*, and a busy
// name that is met is marked (tIDENT2) and never expanded, not even later: that is why
// `#define a a b` ends. When the list has been read to its end it is popped, and the macro is
// no longer busy.
//
// A function-like macro needs a "(" behind the name. Then
//   1. its arguments are collected, as they stand;
//   2. each argument that the body uses expanded is expanded completely on its own: it is pushed
//      behind a barrier and read until it is used up. The macro isn't busy yet, so with
//      `#define f(x) x` a call f(f(1)) expands both;
//   3. the body is copied with the arguments in place, # and ## done (macro_substitute.cpp), and
//      pushed; from here on the macro is busy, or `#define g(x) g(x+1)` would never end.
//
// Calls nest as deep as a file likes, so step 2 doesn't recurse: calls at work stand on a stack of
// their own. And it must not take a time that grows with the square of the depth. For that
//   - a collected argument carries links from each "(" to its commas and its ")", so the arguments
//     of a call inside it are found without reading it again, and are slices of it, not copies;
//   - what has been expanded is kept as parts that further lists refer to, as reading it again
//   could
//     change nothing. Only function-like names that may meet a "(" then stay outside: with
//     `#define L (1)` the argument of f(g L) comes out as g (1), and that is a call of g.
#include "preprocessor/macro_expand.h"

#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_pragma.h"
#include "preprocessor/macro_lists.h"
#include "preprocessor/string_pool.h"

namespace tdm {

ExpansionState expansion;
ExpansionWork expansion_work;
std::size_t list_count;

namespace {

enum class Begun { nothing, list, call };

const char *word_function;

// Below this many items a copy is as cheap as a part.
constexpr std::size_t smallest_part = 5;

bool in_force(const TDMMacro &macro, const tdm_srcpos &position)
{
  return macro.kind != MacroKind::with_body || position.pragmas == nullptr ||
         !pragma_get(position.pragmas, optNOMACRO);
}

void make_builtin(const TDMMacro &macro, PpToken &name)
{
  if (macro.kind == MacroKind::file_name) {
    name.number = tSTRING;
    name.text = file_name_string(name.position.file);
  } else {
    name.number = tICON;
    name.text = intern(std::to_string(name.position.line));
  }
  name.length = pooled(name.text).length;
}

void push_expansion(TDMMacro &macro, const PpToken &name, const PpToken *items, std::size_t count,
                    TokenMemory::Mark mark)
{
  OpenList list = {};
  list.cursor = items;
  list.end = items + count;
  list.macro = &macro;
  list.position = name.position;
  list.positioned = true;
  list.mark = mark;
  macro.busy = true;
  push_list(list);
}

// The list that takes the place of a complete call.
void push_result(const MacroCall &call)
{
  const TokenSpan result = substitute(call);
  if (!expansion.exhausted)
    push_expansion(*call.macro, call.name, result.items, result.count, call.mark);
}

Begun begin_call(TDMMacro &macro, const PpToken &name)
{
  MacroCall call = {};
  call.macro = &macro;
  call.name = name;
  call.first_argument = expansion.arguments.size();

  const TokenMemory::Mark outer_lowest = expansion.lowest;
  expansion.lowest = expansion.memory.mark();
  ++expansion.collecting;
  const bool complete = collect_arguments(macro, name);
  --expansion.collecting;
  call.mark = expansion.lowest;
  expansion.lowest = outer_lowest;
  if (!complete) {
    if (expansion.arguments.size() > call.first_argument)
      expansion.arguments.resize(call.first_argument);
    return Begun::list;
  }
  expansion.calls.push_back(call);
  return Begun::call;
}

// Starts on a name. A token that stays may be changed: a busy name is marked, and a macro without a
// body gives its token at once.
Begun begin(PpToken &name)
{
  TDMMacro *macro = macro_lookup(name.text);
  if (macro == nullptr) {
    if (name.text == word_function && option_get_bool(optA_GCC)) name.number = tSTRING;
    return Begun::nothing;
  }
  if (expansion.exhausted || !in_force(*macro, name.position)) return Begun::nothing;
  if (macro->kind != MacroKind::with_body) {
    make_builtin(*macro, name);
    return Begun::nothing;
  }
  if (macro->busy) {
    name.number = tIDENT2;
    return Begun::nothing;
  }
  if (macro->function_like)
    return next_is_parenthesis() ? begin_call(*macro, name) : Begun::nothing;
  if (!macro->has_operators) {
    push_expansion(*macro, name, macro->body, macro->body_count, expansion.memory.mark());
    return Begun::list;
  }
  MacroCall call = {};
  call.macro = macro;
  call.name = name;
  call.mark = expansion.memory.mark();
  push_result(call);
  return Begun::list;
}

void describe(TokenPart &part)
{
  int depth = 0;
  part.balanced = true;
  part.has_comma = false;
  part.first = 0;
  for (const PpToken *item = part.items; item != part.items + part.count; ++item) {
    int number = item->number;
    bool comma = number == tCOMMA;
    if (number == item_part) {
      const TokenPart &inner = part_of(*item);
      number = inner.first;
      comma = inner.has_comma;
      part.balanced = part.balanced && inner.balanced;
    } else if (number == tLPAR) {
      ++depth;
    } else if (number == tRPAR && --depth < 0) {
      part.balanced = false;
    }
    if (comma && depth <= 0) part.has_comma = true;
    if (part.first == 0 && !is_white(number)) part.first = number;
  }
  if (depth != 0) part.balanced = false;
}

PpToken make_part(const PpToken *items, std::size_t count)
{
  auto *part = static_cast<TokenPart *>(expansion.memory.allocate(sizeof(TokenPart)));
  part->items = expansion.memory.copy(items, count);
  part->count = count;
  part->generation = macro_generation();
  describe(*part);
  PpToken item;
  item.number = item_part;
  item.text = reinterpret_cast<const char *>(part);
  return item;
}

// What an item begins with: the number of its first token that isn't white, or 0.
int first_number(const PpToken &item)
{
  if (item.number == item_part) return part_of(item).first;
  return is_white(item.number) ? 0 : item.number;
}

bool is_function_name(const PpToken &item)
{
  if (item.number != tIDENT) return false;
  const TDMMacro *macro = macro_lookup(item.text);
  return macro != nullptr && macro->function_like;
}

// Marks the names that may become calls when the items are read again: a function-like one that a
// "(" has come to stand behind, or nothing yet, or another name that may become a call.
void mark_loose_names(PpToken *items, std::size_t count)
{
  bool may_meet_parenthesis = true;
  for (std::size_t i = count; i-- > 0;) {
    const int number = first_number(items[i]);
    items[i].link = 0;
    if (number == 0) continue;
    if (may_meet_parenthesis && is_function_name(items[i]))
      items[i].link = 1;
    else
      may_meet_parenthesis = number == tLPAR;
  }
}

void pack_run(const PpToken *begin, const PpToken *end, std::vector<PpToken> &packed)
{
  const auto count = static_cast<std::size_t>(end - begin);
  if (count < smallest_part)
    packed.insert(packed.end(), begin, end);
  else
    packed.push_back(make_part(begin, count));
}

// The items with all that is done with in parts.
void pack(PpToken *items, std::size_t count, std::vector<PpToken> &packed)
{
  packed.clear();
  mark_loose_names(items, count);
  const PpToken *run = items;
  for (const PpToken *item = items; item != items + count; ++item) {
    if (item->link == 0) continue;
    pack_run(run, item, packed);
    packed.push_back(*item);
    packed.back().link = 0;
    run = item + 1;
  }
  pack_run(run, items + count, packed);
}

// Takes what came out of an argument off the output.
void finish_argument(MacroCall &call)
{
  MacroArgument &argument = expansion.arguments[call.first_argument + call.next - 1];
  std::vector<PpToken> &packed = expansion.result;
  pack(expansion.output.data() + call.output_start, expansion.output.size() - call.output_start,
       packed);
  argument.expanded = expansion.memory.copy(packed.data(), packed.size());
  argument.expanded_count = packed.size();
  expansion.output.resize(call.output_start);
  call.reading = false;
}

bool comes_whole(const TokenPart &part, Parts whole)
{
  switch (whole) {
  case Parts::done:
    return part.generation == macro_generation();
  case Parts::neutral:
    return part.balanced && !part.has_comma;
  case Parts::none:
    return false;
  }
  return false;
}

// Whether nothing in a short argument can be expanded, so that it comes out as it stands.
bool stays(const PpToken *begin, const PpToken *end)
{
  if (static_cast<std::size_t>(end - begin) >= smallest_part) return false;
  for (const PpToken *item = begin; item != end; ++item) {
    if (item->link != 0) return false;
    if (item->number == item_part && !comes_whole(part_of(*item), Parts::done)) return false;
    if (item->number == tIDENT &&
        (macro_lookup(item->text) != nullptr || item->text == word_function))
      return false;
  }
  return true;
}

void take_as_it_stands(MacroArgument &argument)
{
  std::uint64_t work = 0;
  for (const PpToken *item = argument.begin; item != argument.end; ++item)
    work += reading_work(*item);
  count_work(work, {});
  argument.expanded = argument.begin;
  argument.expanded_count = static_cast<std::size_t>(argument.end - argument.begin);
}

// Pushes the next argument that the body uses expanded; false when there is none left.
bool start_argument(MacroCall &call)
{
  while (call.next < call.macro->parameter_count) {
    const std::size_t index = call.next++;
    MacroArgument &argument = expansion.arguments[call.first_argument + index];
    if (!call.macro->parameters[index].expanded || argument.begin == argument.end) continue;
    if (stays(argument.begin, argument.end)) {
      take_as_it_stands(argument);
      continue;
    }
    OpenList list = {};
    list.cursor = argument.begin;
    list.end = argument.end;
    list.barrier = list.linked = true;
    list.mark = expansion.memory.mark();
    push_list(list);
    call.output_start = expansion.output.size();
    call.reading = true;
    return true;
  }
  return false;
}

// Reads the argument of the innermost call on. Ends when the argument is used up, or another call
// has begun in it.
void read_argument()
{
  PpToken item;
  for (;;) {
    const Read read = read_item(item, Parts::done);
    if (read == Read::end) return; // the limit was met
    if (read == Read::barrier) {
      pop_list();
      finish_argument(expansion.calls.back());
      return;
    }
    if (item.number == tIDENT) {
      const Begun begun = begin(item);
      if (begun == Begun::call || expansion.exhausted) return;
      if (begun == Begun::list) continue;
    }
    expansion.output.push_back(item);
  }
}

void finish_call()
{
  const MacroCall call = expansion.calls.back();
  push_result(call);
  if (expansion.exhausted) return;
  expansion.arguments.resize(call.first_argument);
  expansion.calls.pop_back();
}

void run_calls()
{
  while (!expansion.calls.empty() && !expansion.exhausted) {
    if (expansion.calls.back().reading)
      read_argument();
    else if (!start_argument(expansion.calls.back()))
      finish_call();
  }
}

void drop_everything()
{
  for (const OpenList &list : expansion.lists)
    if (list.macro != nullptr) list.macro->busy = false;
  expansion.lists.clear();
  list_count = 0;
  expansion.calls.clear();
  expansion.arguments.clear();
  expansion.output.clear();
}

} // namespace

void expansion_start()
{
  expansion_stop();
  word_function = intern("__FUNCTION__");
  expansion_work.done = 0;
  expansion_work.allowed = expansion_work.limit;
}

void expansion_stop()
{
  drop_everything();
  expansion.memory.clear();
  expansion.result = {};
  expansion.forwarding = expansion.exhausted = false;
  expansion.collecting = 0;
  substitution_stop();
}

void push_list(const OpenList &list)
{
  expansion.lists.push_back(list);
  ++list_count;
}

void pop_list()
{
  const OpenList &list = expansion.lists.back();
  if (list.macro != nullptr) list.macro->busy = false;
  if (expansion.calls.empty() && expansion.collecting == 0)
    expansion.memory.release(list.mark);
  else if (list.mark < expansion.lowest)
    expansion.lowest = list.mark;
  expansion.lists.pop_back();
  --list_count;
}

bool refuse_work(const tdm_srcpos &position)
{
  if (expansion.exhausted) return true;
  diag_at(E_expansion_limit, position, static_cast<int>(expansion_work.limit));
  expansion.exhausted = true;
  return false;
}

Read read_item(PpToken &item, Parts whole)
{
  while (!expansion.lists.empty()) {
    OpenList &list = expansion.lists.back();
    if (list.cursor == list.end) {
      if (list.barrier) return Read::barrier;
      pop_list();
      continue;
    }
    if (!count_work(reading_work(*list.cursor), list.position)) return Read::end;
    item = *list.cursor++;
    if (list.positioned) item.position = list.position;
    expansion.forwarding = list.forwarded;
    if (item.number != item_part || comes_whole(part_of(item), whole)) return Read::token;
    OpenList inner = {};
    inner.cursor = part_of(item).items;
    inner.end = inner.cursor + part_of(item).count;
    inner.position = list.position;
    inner.positioned = list.positioned;
    inner.mark = expansion.memory.mark();
    inner.part = true;
    push_list(inner);
  }
  return Read::end;
}

bool list_next(PpToken &token)
{
  if (expansion.lists.empty()) return false;
  if (read_item(token, Parts::none) == Read::token) return true;
  if (expansion.exhausted) drop_everything();
  return false;
}

bool list_has_next()
{
  for (auto list = expansion.lists.rbegin(); list != expansion.lists.rend(); ++list) {
    if (list->cursor != list->end) return true;
    if (!list->part) return false;
  }
  return false;
}

bool list_forwarding()
{
  return expansion.forwarding;
}

void list_push(const std::vector<PpToken> &tokens, bool forwarded)
{
  OpenList list = {};
  list.mark = expansion.memory.mark();
  list.cursor = expansion.memory.copy(tokens.data(), tokens.size());
  list.end = list.cursor + tokens.size();
  list.forwarded = forwarded;
  push_list(list);
}

} // namespace tdm

bool macro_expand(tdm::PpToken &name)
{
  const bool exhausted_before = tdm::expansion.exhausted;
  const tdm::Begun begun = tdm::begin(name);
  if (begun == tdm::Begun::call) tdm::run_calls();
  // Also where the limit was met in a look for a "(": parts of parts can stand for more tokens than
  // anybody will ever read.
  if (tdm::expansion.exhausted && !exhausted_before) tdm::drop_everything();
  return begun != tdm::Begun::nothing;
}
