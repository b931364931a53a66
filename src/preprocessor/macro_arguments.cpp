// Finding and collecting the arguments of a call.
//
// Arguments come from one of two places: a slice of an argument that was collected before, where
// links lead from parenthesis to comma to parenthesis, or any mixture of lists and input, which is
// read token by token into an array with links of its own.
#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/directives.h"
#include "preprocessor/macro_expand.h"
#include "preprocessor/macro_lists.h"

namespace tdm {

namespace {

bool passed_over(int number)
{
  return is_white(number) || number == tNEWLINE;
}

// A part is passed over if there is nothing but white space in it.
bool passed_over(const PpToken &item)
{
  return item.number == item_part ? part_of(item).first == 0 : passed_over(item.number);
}

// Lists have nothing left: looks in the input. All that was read is put back, but white space in
// front of a "(" is dropped. Inside a directive the look ends at the end of the line.
bool input_has_parenthesis()
{
  std::vector<PpToken> tokens;
  for (;;) {
    PpToken token = pp_next_token(false);
    if (token.number == tEOF) break;
    if (token.number == tLPAR) {
      list_push({token}, false);
      return true;
    }
    keep_text(token);
    tokens.push_back(token);
    const bool line_end = token.number == tNEWLINE && pp_in_directive();
    if (line_end) pp_reopen_line();
    if (line_end || !passed_over(token.number)) break;
  }
  list_push(tokens, false);
  return false;
}

// ---- collecting by links ----

const PpToken *skip_white(const PpToken *begin, const PpToken *end)
{
  while (begin != end && passed_over(*begin)) ++begin;
  return begin;
}

void push_argument(const PpToken *begin, const PpToken *end)
{
  begin = skip_white(begin, end);
  // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): both are null, or none
  while (begin != end && passed_over(end[-1])) --end;
  MacroArgument argument = {};
  argument.begin = begin;
  argument.end = end;
  expansion.arguments.push_back(argument);
}

bool splits_at_comma(const TDMMacro &macro, std::size_t argument)
{
  if (macro.parameter_count == 0) return false;
  return argument + 1 != macro.parameter_count || !macro.parameters[argument].variadic;
}

// Reports what is wrong with the number of arguments, and fills in the missing ones.
void complete_arguments(const TDMMacro &macro, const PpToken &name, std::size_t first,
                        const tdm_srcpos &closing)
{
  auto &arguments = expansion.arguments;
  if (macro.parameter_count == 0) {
    if (arguments.back().begin != arguments.back().end)
      diag_at(E_unexpected_arg, name.position, macro.name);
    arguments.resize(first);
    return;
  }
  for (std::size_t i = arguments.size() - first; i < macro.parameter_count; ++i) {
    const MacroParameter &parameter = macro.parameters[i];
    if (!parameter.variadic || !option_get_bool(optA_GCC))
      diag_at(E_missing_argument, closing, parameter.name);
    push_argument(nullptr, nullptr);
  }
}

// Parentheses and commas of an argument know how far it is to the next separator of their level.
bool collect_linked(const TDMMacro &macro, const PpToken &name, OpenList &list)
{
  const std::size_t first = expansion.arguments.size();
  const PpToken *separator = skip_white(list.cursor, list.end);
  const PpToken *begin = separator + 1;
  bool too_many = false;
  do {
    separator += separator->link;
    const std::size_t argument = expansion.arguments.size() - first;
    if (separator->number == tCOMMA && !splits_at_comma(macro, argument)) continue;
    if (!too_many) push_argument(begin, separator);
    begin = separator + 1;
    if (separator->number == tCOMMA && argument + 1 == macro.parameter_count && !too_many) {
      diag_at(E_too_many_arguments, separator->position);
      too_many = true;
    }
  } while (separator->number == tCOMMA);
  list.cursor = separator + 1;
  complete_arguments(macro, name, first, separator->position);
  return true;
}

// ---- collecting token by token ----

// Scratch of the calls being collected, of which there may be two: the input holds directives, and
// an #if between the parentheses of one call may hold another.
struct {
  std::vector<PpToken> tokens;
  std::vector<std::size_t> separators; ///< of the open parentheses, the last of each level
  std::vector<std::size_t> ends;       ///< of the arguments
} scratch;

// The next item of a call; false at the end of what can belong to it.
bool next_of_call(PpToken &item)
{
  if (!list_stack_empty() && list_next_plain(item)) return true;
  switch (read_item(item, Parts::neutral)) {
  case Read::token:
    return true;
  case Read::barrier:
    return false;
  case Read::end:
    break;
  }
  if (expansion.exhausted) return false;
  item = pp_next_token(false);
  if (item.number == tNEWLINE && pp_in_directive()) {
    pp_reopen_line();
    list_push({item}, false);
    return false;
  }
  return item.number != tEOF;
}

class Collector {
public:
  Collector(const TDMMacro &macro, const PpToken &name)
      : macro_(macro), name_(name), first_token_(scratch.tokens.size()),
        first_separator_(scratch.separators.size()), first_end_(scratch.ends.size())
  {
  }
  Collector(const Collector &) = delete;
  Collector &operator=(const Collector &) = delete;
  ~Collector()
  {
    scratch.tokens.resize(first_token_);
    scratch.separators.resize(first_separator_);
    scratch.ends.resize(first_end_);
  }

  // Reads from behind the "(" to the ")".
  bool collect()
  {
    PpToken item;
    while (next_of_call(item)) {
      item.link = 0;
      switch (item.number) {
      case tLPAR:
        scratch.separators.push_back(scratch.tokens.size());
        add(item);
        break;
      case tRPAR:
        if (depth() == 0) {
          end_argument();
          push_arguments(item.position);
          return true;
        }
        add_separator(item);
        scratch.separators.pop_back();
        break;
      case tCOMMA:
        add_comma(item);
        break;
      case tIDENT:
        if (const TDMMacro *macro = macro_lookup(item.text); macro != nullptr && macro->busy)
          item.number = tIDENT2;
        add(item);
        break;
      default:
        if (passed_over(item))
          add_blank(item);
        else
          add(item);
      }
    }
    if (!expansion.exhausted) diag_at(E_runaway_argument, name_.position);
    return false;
  }

private:
  [[nodiscard]] std::size_t depth() const { return scratch.separators.size() - first_separator_; }
  [[nodiscard]] std::size_t arguments() const { return scratch.ends.size() - first_end_; }

  void add(const PpToken &item)
  {
    scratch.tokens.push_back(item);
    last_is_blank_ = false;
  }

  // White space of any kind and length becomes one blank, and none at the start of an argument.
  void add_blank(PpToken &item)
  {
    if (last_is_blank_) return;
    item.number = tWHITE;
    item.text = token_text(tSPACE);
    item.length = 1;
    scratch.tokens.push_back(item);
    last_is_blank_ = true;
  }

  void add_comma(PpToken &item)
  {
    if (depth() > 0) {
      add_separator(item);
    } else if (!splits_at_comma(macro_, arguments())) {
      add(item);
    } else if (!too_many_) {
      end_argument();
      too_many_ = arguments() == macro_.parameter_count;
      if (too_many_) diag_at(E_too_many_arguments, item.position);
    }
  }

  // A comma or ")" inside parentheses; the separator in front of it on its level links to it.
  void add_separator(const PpToken &item)
  {
    const std::size_t index = scratch.tokens.size();
    std::size_t &last = scratch.separators.back();
    scratch.tokens[last].link = static_cast<std::uint32_t>(index - last);
    last = index;
    add(item);
  }

  void end_argument()
  {
    if (!too_many_) scratch.ends.push_back(scratch.tokens.size());
    last_is_blank_ = true;
  }

  void push_arguments(const tdm_srcpos &closing)
  {
    const std::size_t first = expansion.arguments.size();
    const PpToken *tokens = expansion.memory.copy(scratch.tokens.data() + first_token_,
                                                  scratch.tokens.size() - first_token_);
    std::size_t begin = first_token_;
    for (std::size_t i = first_end_; i < scratch.ends.size(); ++i) {
      const std::size_t end = scratch.ends[i];
      push_argument(tokens + (begin - first_token_), tokens + (end - first_token_));
      begin = end;
    }
    complete_arguments(macro_, name_, first, closing);
  }

  const TDMMacro &macro_;
  const PpToken &name_;
  const std::size_t first_token_;
  const std::size_t first_separator_;
  const std::size_t first_end_;
  bool last_is_blank_ = true; ///< or nothing stands in front of it in the argument
  bool too_many_ = false;
};

} // namespace

bool next_is_parenthesis()
{
  for (auto list = expansion.lists.rbegin(); list != expansion.lists.rend(); ++list) {
    if (!count_work(1, list->position)) return false;
    for (const PpToken *item = list->cursor; item != list->end; ++item) {
      const int number = item->number == item_part ? part_of(*item).first : item->number;
      if (!passed_over(*item)) return number == tLPAR;
    }
    if (list->barrier) return false;
  }
  return input_has_parenthesis();
}

bool collect_arguments(const TDMMacro &macro, const PpToken &name)
{
  while (expansion.lists.back().cursor == expansion.lists.back().end) pop_list();
  // The "(" may lie in a linked list, or else behind white space in whatever is next: a part that
  // begins with it has no link.
  OpenList &list = expansion.lists.back();
  if (list.linked) {
    const PpToken *next = skip_white(list.cursor, list.end);
    if (next != list.end && next->number == tLPAR) return collect_linked(macro, name, list);
  }
  PpToken item;
  while (read_item(item, Parts::none) == Read::token && item.number != tLPAR) {
  }
  return Collector(macro, name).collect();
}

} // namespace tdm
