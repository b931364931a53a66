// A memo of a group holds the file, the line of the opening directive and that of the directive
// that ended the group; a group that is skipped when its file is read again is passed over by
// counting newlines, and where the text of the file was kept, the place that this leads to is known
// from then on. Lines are those of one reading of one file: a conditional that is closed in
// another file than it was opened in is not remembered.
#include "preprocessor/conditionals.h"

#include "preprocessor/c_diag.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_memory.h"
#include "preprocessor/hashtab.h"
#include "preprocessor/kept_texts.h"
#include "preprocessor/macros.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr unsigned base_flags = group_active | allows_if;
constexpr unsigned new_flags = allows_if | allows_elif | allows_else | allows_endif;

struct SkipMemo {
  const char *file; ///< with `line` the key
  std::uint64_t line;
  std::uint64_t end;
  std::uint64_t text;  ///< number of the kept text that `place` lies in; 0 for none
  std::uint64_t place; ///< where the line at the end begins
};
constexpr int memo_key_length = sizeof(const char *) + sizeof(std::uint64_t);

struct {
  TDMConditional base;
  MemoryArena arena;
  hashtab memos;
} state;

} // namespace

TDMConditional *conditional_top = &state.base;

namespace {

bool memo_enabled = true;

std::uint32_t hash_of_memo(const void *key)
{
  const auto *memo = static_cast<const SkipMemo *>(key);
  return pooled(memo->file).hash + static_cast<std::uint32_t>(memo->line) * 0x9E3779B1U;
}

SkipMemo *find_memo(const char *file, std::uint32_t line)
{
  const SkipMemo key = {file, line, 0, 0, 0};
  return static_cast<SkipMemo *>(hashtab_lookup(&state.memos, &key));
}

bool enclosing_active()
{
  return (conditional_top->next->flags & group_active) != 0;
}

void set_active(bool active)
{
  if (active)
    conditional_top->flags |= group_active;
  else
    conditional_top->flags &= ~unsigned{group_active};
}

// Counts the lines the first time that a text is skipped.
void skip_group(const TDMInputRecord &input, SkipMemo &memo)
{
  const auto end = static_cast<std::uint32_t>(memo.end);
  KeptText *text = input.kept;
  if (text != nullptr && text->number == memo.text) {
    input_jump_to_line(end, text->text.data() + memo.place);
    return;
  }
  input_skip_to_line(end);
  if (text == nullptr || input.physical_line + 1 != end) return;
  memo.text = text->number;
  memo.place = static_cast<std::uint64_t>(input.cursor - text->text.data());
  // The guard's group is among the first ones that are skipped.
  if (text->guarded.opening_line != 0 || ++text->guard_searches > 4) return;
  text->guarded = find_guard(text->text, static_cast<std::uint32_t>(memo.line), memo.place, end);
  text->undefinitions = macro_undefinitions();
}

} // namespace

void conditionals_start()
{
  conditionals_stop();
  state.base = {};
  state.base.flags = base_flags;
  state.memos.hash = hash_of_memo;
  state.memos.key_length = memo_key_length;
}

void conditionals_stop()
{
  while (conditional_top != &state.base) conditional_pop();
  hashtab_free(state.memos);
  state.arena.clear();
}

void skip_memo_enable(bool enabled)
{
  memo_enabled = enabled;
}

void conditional_push(const tdm_srcpos &position)
{
  conditional_top = new TDMConditional{conditional_top, new_flags, position, 0, 0};
}

void conditional_pop()
{
  TDMConditional *conditional = conditional_top;
  conditional_top = conditional->next;
  delete conditional;
}

bool conditional_wants_condition()
{
  return enclosing_active() && (conditional_top->flags & branch_taken) == 0;
}

void conditional_decide(bool condition)
{
  const bool active = condition && conditional_wants_condition();
  if (active) conditional_top->flags |= branch_taken;
  set_active(active);
}

void conditional_else()
{
  const bool taken = (conditional_top->flags & branch_taken) != 0;
  conditional_top->flags &= ~unsigned{allows_elif | allows_else};
  set_active(!taken && enclosing_active());
}

void conditionals_end_of_input()
{
  while (conditional_top != &state.base) {
    diag_at(E_no_endif, conditional_top->position);
    conditional_pop();
  }
}

void skip_memo_open(const DirectivePlace &place)
{
  if (place.line == 0 || !memo_enabled) return;
  SkipMemo *memo = find_memo(place.file, place.line);
  if (memo == nullptr) {
    conditional_top->skip_start = place.line;
    conditional_top->file = place.serial;
    return;
  }
  const TDMInputRecord *input = input_stack.top;
  if (conditional_active() || input == nullptr || input->serial != place.serial) return;
  skip_group(*input, *memo);
}

void skip_memo_close(const DirectivePlace &place)
{
  TDMConditional &conditional = *conditional_top;
  const std::uint32_t start = conditional.skip_start;
  conditional.skip_start = 0;
  if (start == 0 || place.line == 0 || conditional.file != place.serial) return;
  if (find_memo(place.file, start) != nullptr) return;
  auto *memo = static_cast<SkipMemo *>(state.arena.allocate(sizeof(SkipMemo)));
  *memo = {place.file, start, place.line, 0, 0};
  hashtab_insert(&state.memos, memo);
}

} // namespace tdm
