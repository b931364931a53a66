// The read step, the table of directives, and the handlers that are short.
#include "preprocessor/directives.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/condition.h"
#include "preprocessor/conditionals.h"
#include "preprocessor/escapes.h"
#include "preprocessor/macro_lists.h"
#include "preprocessor/macros.h"
#include "preprocessor/scanner_block.h"
#include "preprocessor/source_directives.h"
#include "preprocessor/source_files.h"
#include "preprocessor/string_pool.h"
#include "preprocessor/text_directives.h"

namespace tdm {

namespace {

struct {
  int depth; ///< of calls of the read step
  bool at_line_start;
  bool in_directive;
  bool line_ended;  ///< the newline of the directive line has been read
  PpToken token;    ///< handed out when it isn't the scanner's
  PpToken line_end; ///< what ended the directive line
  PpToken forwarding_hash;
  bool forwards;          ///< the directive just read goes to the lexer
  tdm_srcpos position;    ///< of the "#" of the directive
  DirectivePlace place;   ///< the same in the real file
  PpToken name;           ///< of the directive, as it was written
  bool opens_conditional; ///< the directive has opened one
  bool passing_blanks;    ///< who reads leaves white space out
} state;

// ---- handlers ----

void handle_condition()
{
  conditional_decide(conditional_wants_condition() && pp_eval_condition());
  skip_memo_close(state.place);
}

void handle_if()
{
  conditional_push(state.position);
  handle_condition();
}

void handle_name_test(DiagMessage bad, bool wants_defined)
{
  const PpToken &name = pp_next_significant(false);
  if (name.number != tIDENT) diag_at(bad, state.position);
  conditional_push(state.position);
  const bool defined = macro_lookup(name.text) != nullptr;
  conditional_decide(defined == wants_defined);
  expect_line_end();
}

void handle_ifdef()
{
  handle_name_test(E_bad_ifdef, true);
}

void handle_ifndef()
{
  handle_name_test(E_bad_ifndef, false);
}

void handle_else()
{
  conditional_else();
  expect_line_end();
  skip_memo_close(state.place);
}

void handle_endif()
{
  expect_line_end();
  skip_memo_close(state.place);
  conditional_pop();
}

// ---- the table ----

struct DirectiveRow {
  std::string_view name;
  unsigned mask;
  void (*handler)();
};

constexpr DirectiveRow rows[] = {
    {"if", allows_if, handle_if},
    {"ifdef", allows_if, handle_ifdef},
    {"ifndef", allows_if, handle_ifndef},
    {"elif", allows_elif, handle_condition},
    {"else", allows_else, handle_else},
    {"endif", allows_endif, handle_endif},
    {"include", group_active, handle_include},
    {"define", group_active, macro_parse_define},
    {"undef", group_active, macro_parse_undef},
    {"line", group_active, handle_line},
    {"", group_active, handle_line_marker},
    {"error", group_active, handle_error},
    {"warning", group_active, handle_warning},
    {"pragma", group_active, handle_pragma},
};

/// The names of the rows as texts of the pool.
const char *row_names[std::size(rows)];

const DirectiveRow *find_directive(const char *name)
{
  const auto *const found = std::find(std::begin(row_names), std::end(row_names), name);
  if (found == std::end(row_names)) return nullptr;
  const DirectiveRow *const row = rows + (found - row_names);
  return row->handler == handle_warning && !option_get_bool(optA_GCC) ? nullptr : row;
}

// The group that the directive begins or ends is skipped.
void note_skipping(bool begins)
{
  const std::int32_t file = reading_source();
  if (file >= 0) source_file_skips(file, static_cast<std::uint32_t>(state.position.line), begins);
}

void run_directive(const PpToken &name)
{
  const DirectiveRow *row = find_directive(name.number == tICON ? intern("") : name.text);
  if (row == nullptr) {
    if (conditional_active()) diag_at(E_undefined_directive, name.position, name.view());
    return;
  }
  if ((conditional_top->flags & row->mask) == 0) {
    if (row->mask != group_active) diag_at(E_unexpected_directive, name.position, name.view());
    return;
  }
  const bool active = conditional_active();
  row->handler();
  if (conditional_active() != active) note_skipping(active);
  state.opens_conditional = row->mask == allows_if;
}

DirectivePlace current_place()
{
  const TDMInputRecord *input = input_stack.top;
  if (input == nullptr || input->kind != TDMInputRecord::file) return {nullptr, 0, 0};
  return {input->file_name, input->physical_line, input->serial};
}

// Reads a directive line, behind its "#".
void read_directive(const tdm_srcpos &position)
{
  state.position = position;
  state.place = current_place();
  state.in_directive = true;
  state.line_ended = false;
  state.forwards = false;
  state.opens_conditional = false;
  state.name = pp_next_significant(false);
  const PpToken &name = state.name;
  if (name.number == tIDENT || name.number == tICON)
    run_directive(name);
  else if (name.number != tNEWLINE && name.number != tEOF)
    diag_at(E_syntax_directive, name.position);
  while (!state.line_ended) pp_next_token(false);
  state.in_directive = false;
  if (state.opens_conditional) skip_memo_open(state.place);
}

// Universal character names in a name are checked once, when it leaves the preprocessor.
void check_universal_names(const PpToken &name)
{
  const char *end = name.text + name.length;
  for (const char *cursor = name.text; cursor != end;) {
    if (*cursor++ != '\\') continue;
    tdm_srcpos position = name.position;
    position.column += static_cast<int>(cursor - 1 - name.text);
    static_cast<void>(escape_check(cursor, end, position, true));
  }
}

bool wants_text()
{
  return state.in_directive || conditional_active();
}

// Gives the token out of the module's own record, which may then be changed.
PpToken &own(const PpToken &token)
{
  if (&token != &state.token) state.token = token;
  return state.token;
}

// What the outermost caller sees of a name.
const PpToken &finished_name(const PpToken &name)
{
  if ((pooled(name.text).marks & mark_has_backslash) != 0) check_universal_names(name);
  if (name.number == tIDENT) return name;
  own(name).number = tIDENT;
  return state.token;
}

const PpToken *start_directive(const PpToken &hash)
{
  read_directive(hash.position);
  state.at_line_start = true;
  if (state.line_end.number == tEOF) conditionals_end_of_input();
  if (!state.forwards) return &state.line_end;
  state.forwarding_hash.position = state.position;
  return &state.forwarding_hash;
}

void note_line_end(const PpToken &token)
{
  state.at_line_start = true;
  if (!state.in_directive) return;
  state.line_ended = true;
  state.line_end = token;
}

// Most names are no macros, and this tells without a search.
bool may_expand(const PpToken &name)
{
  constexpr std::size_t builtin_length = std::string_view("__FUNCTION__").size();
  return (pooled(name.text).marks & marks_of_preprocessor) != 0 || name.length == builtin_length;
}

// What a token that came from the list stack or the scanner leads to; null when it was dropped or
// has been replaced.
const PpToken *treat(const PpToken *token, bool from_list, bool expand)
{
  switch (token->number) {
  case tIDENT: {
    state.at_line_start = false;
    if (!expand || (from_list && list_forwarding()) || !wants_text() || !may_expand(*token)) break;
    PpToken name = *token;
    if (macro_expand(name)) return nullptr;
    token = &own(name);
    break;
  }
  case tNEWLINE:
    note_line_end(*token);
    return token;
  case tEOF:
    // A directive may end with the input; its conditional is still at work then.
    if (!from_list && !state.in_directive) conditionals_end_of_input();
    note_line_end(*token);
    return token;
  case tWHITE:
  case tCOMMENT:
    break;
  case tHASH:
    if (state.at_line_start && !from_list && !state.in_directive) return start_directive(*token);
    [[fallthrough]];
  default:
    state.at_line_start = false;
  }
  return conditional_active() || state.in_directive ? token : nullptr;
}

const PpToken *read_round(bool expand)
{
  if (!list_stack_empty() && (list_next_plain(state.token) || list_next(state.token)))
    return treat(&state.token, true, expand);
  const PpToken &token = scanner_next_token(wants_text());
  expansion_work.allowed += expansion_per_token;
  return treat(&token, false, expand);
}

// The whole read step, perhaps with a token that has been taken already.
const PpToken &read_on(const PpToken *token, bool from_list, bool expand)
{
  ++state.depth;
  if (token != nullptr) token = treat(token, from_list, expand);
  while (token == nullptr) token = read_round(expand);
  if (--state.depth == 0 && (token->number == tIDENT || token->number == tIDENT2))
    token = &finished_name(*token);
  return *token;
}

// Most tokens of an active group need no more than this.
inline bool passes(const PpToken &token, bool from_list, bool expand)
{
  switch (token.number) {
  case tIDENT:
    if (expand && may_expand(token)) return false;
    state.at_line_start = false;
    return true;
  case tNEWLINE:
    state.at_line_start = true;
    return true;
  case tWHITE:
  case tCOMMENT:
    return true;
  case tHASH:
    if (!from_list) return false;
    break;
  case tIDENT2:
  case tEOF:
    return false;
  default:
    break;
  }
  state.at_line_start = false;
  return true;
}

// Makes of a token of the scanner what an active group hands out for it.
const PpToken &pass_on(const PpToken &token, bool expand)
{
  return passes(token, false, expand) ? token : read_on(&token, false, expand);
}

// Names and blanks are most of what a directive line is made of.
const PpToken &scan_in_directive()
{
  TDMInputRecord *const record = record_with_block();
  if (record == nullptr || record->kind != TDMInputRecord::file) return scanner_next_token();
  const Start start = start_of(*record->cursor);
  if (start == Start::blank) return blanks_in_block(*record);
  if (start != Start::name) return scanner_next_token();
  scanner.want_text = true;
  return name_in_block(*record);
}

// The read step in a directive line, without a list.
[[gnu::noinline]] const PpToken &next_in_directive(bool expand)
{
  expansion_work.allowed += expansion_per_token;
  const PpToken &token = scan_in_directive();
  switch (token.number) {
  case tNEWLINE:
    note_line_end(token);
    return token;
  case tWHITE:
  case tCOMMENT:
    return token;
  case tIDENT:
    if (!expand || !may_expand(token)) break;
    [[fallthrough]];
  case tEOF:
    return read_on(&token, false, expand);
  default:
    break;
  }
  state.at_line_start = false;
  return token;
}

// The read step while there is a list.
[[gnu::noinline]] const PpToken &next_of_list(bool expand)
{
  if (state.in_directive || !conditional_active() || !list_next_plain(state.token))
    return read_on(nullptr, false, expand);
  return passes(state.token, true, expand) ? state.token : read_on(&state.token, true, expand);
}

[[gnu::noinline]] const PpToken &next_of_input(bool expand)
{
  expansion_work.allowed += expansion_per_token;
  return pass_on(scanner_next_token(), expand);
}

// The read step for what doesn't lie whole in a block, or isn't text of an active group.
[[gnu::noinline]] const PpToken &next_on_other_road(bool expand)
{
  if (!list_stack_empty()) return next_of_list(expand);
  if (state.in_directive) return next_in_directive(expand);
  return conditional_active() ? next_of_input(expand) : read_on(nullptr, false, expand);
}

// Apart, each of them, so that the read step itself needs no registers to be saved.
[[gnu::noinline]] const PpToken &next_name(TDMInputRecord &record, bool expand)
{
  scanner.want_text = true;
  const PpToken &name = name_in_block(record);
  if (name.number != tIDENT || (expand && may_expand(name))) return pass_on(name, expand);
  state.at_line_start = false;
  return name;
}

[[gnu::noinline]] const PpToken &next_number(TDMInputRecord &record)
{
  scanner.want_text = true;
  return number_in_block(record);
}

[[gnu::noinline]] const PpToken &next_punctuator(TDMInputRecord &record, bool expand)
{
  const PpToken *const token = short_punctuator_in_block(record);
  if (token == nullptr) return pass_on(scanner_next_token(), expand);
  if (token->number == tHASH) return pass_on(*token, expand);
  state.at_line_start = false;
  return *token;
}

[[gnu::noinline]] const PpToken &next_other(bool expand)
{
  return pass_on(scanner_next_token(), expand);
}

// The top file, if what comes next can be taken from its block as text of an active group.
inline TDMInputRecord *block_of_active_text()
{
  TDMInputRecord *const record = record_with_block();
  return !list_stack_empty() || record == nullptr || record->kind != TDMInputRecord::file ||
                 state.in_directive || !conditional_active()
             ? nullptr
             : record;
}

[[gnu::always_inline]] inline const PpToken &next_in_block(TDMInputRecord &record, bool expand)
{
  expansion_work.allowed += expansion_per_token;
  switch (start_of(*record.cursor)) {
  case Start::blank:
    return blanks_in_block(record);
  case Start::newline:
    state.at_line_start = true;
    return newline_in_block(record);
  case Start::single:
    state.at_line_start = false;
    return single_in_block(record);
  case Start::name:
    return next_name(record, expand);
  case Start::number:
    state.at_line_start = false;
    return next_number(record);
  case Start::other:
    return next_punctuator(record, expand);
  default:
    return next_other(expand);
  }
}

// Reads over blanks and newlines without making tokens of them.
inline void pass_blanks(TDMInputRecord &record)
{
  for (;; expansion_work.allowed += expansion_per_token) {
    const Start start = start_of(*record.cursor);
    if (start != Start::blank && start != Start::newline) return;
    input_begin_line(record);
    if (start == Start::newline) {
      pass_newline(record);
      state.at_line_start = true;
      continue;
    }
    const char *end = record.cursor + 1;
    while (start_of(*end) == Start::blank) ++end;
    pass(record, end);
  }
}

// Reads a directive line that comes next, as the read step would, perhaps behind the end of a file;
// gives what ended the line, or null if none comes for sure.
[[gnu::noinline]] const PpToken *pass_directive(TDMInputRecord *record)
{
  if (*record->cursor == 0 && input_leave_ended_files()) record = input_stack.top;
  if (*record->cursor != '#' || record->kind != TDMInputRecord::file) return nullptr;
  const PpToken *token = short_punctuator_in_block(*record);
  if (token == nullptr) return nullptr;
  expansion_work.allowed += expansion_per_token;
  ++state.depth;
  state.passing_blanks = true;
  token = start_directive(*token);
  state.passing_blanks = false;
  --state.depth;
  return token;
}

} // namespace

void directives_start()
{
  state.depth = 0;
  state.at_line_start = true;
  state.passing_blanks = false;
  state.in_directive = state.line_ended = state.forwards = false;
  state.forwarding_hash.number = tHASH;
  state.forwarding_hash.text = token_text(tHASH);
  state.forwarding_hash.length = 1;
  for (std::size_t i = 0; i < std::size(rows); ++i) row_names[i] = intern(rows[i].name);
  conditionals_start();
}

void directives_stop()
{
  conditionals_stop();
}

bool pp_in_directive()
{
  return state.in_directive;
}

bool pp_passing_blanks()
{
  return state.passing_blanks;
}

bool pp_line_ended()
{
  return state.line_ended;
}

void pp_reopen_line()
{
  state.line_ended = false;
}

void pp_forward_line()
{
  state.forwards = true;
}

const tdm_srcpos &directive_position()
{
  return state.position;
}

const PpToken &directive_name()
{
  return state.name;
}

const PpToken &pp_next_significant(bool expand)
{
  for (;;) {
    const PpToken &token = next_on_other_road(expand);
    if (!is_white(token.number)) return token;
  }
}

void expect_line_end()
{
  if (state.line_ended) return;
  const PpToken &token = pp_next_significant(false);
  if (token.number != tNEWLINE && token.number != tEOF) diag_at(W_unexpected_text, token.position);
}

} // namespace tdm

const tdm::PpToken &pp_next_token(bool expand)
{
  using namespace tdm;
  TDMInputRecord *const record = block_of_active_text();
  return record == nullptr ? next_on_other_road(expand) : next_in_block(*record, expand);
}

const tdm::PpToken &pp_next_behind_blanks(bool expand)
{
  using namespace tdm;
  for (;;) {
    TDMInputRecord *const record = block_of_active_text();
    if (record == nullptr) return next_on_other_road(expand);
    pass_blanks(*record);
    const bool may_begin_directive = *record->cursor == '#' || *record->cursor == 0;
    if (!may_begin_directive || !state.at_line_start) return next_in_block(*record, expand);
    const PpToken *const token = pass_directive(record);
    if (token == nullptr) return pp_next_token(expand);
    if (token->number != tNEWLINE) return *token;
  }
}
