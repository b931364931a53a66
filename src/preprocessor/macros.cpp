// Entering, comparing and checking definitions.
#include "preprocessor/macros.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>
#include <string_view>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/hashtab.h"
#include "preprocessor/predefined_macros.h"
#include "preprocessor/string_pool.h"
#include "preprocessor/token_list.h"

namespace tdm {

namespace {

struct {
  TokenMemory memory;               ///< of all records and what belongs to them
  std::vector<TDMMacro *> table;    ///< by the number of the name, from 1 on; null for none
  std::vector<const char *> marked; ///< the names that macros have had in this stream
  std::uint32_t generation;
  std::uint32_t undefinitions;
  const char *word_defined;
  const char *word_va_args;
  const char *ellipsis;
} state;

// Where the macro of a name is entered, or null.
TDMMacro **find_slot(const char *name)
{
  const std::uint32_t number = pooled(name).number;
  if (number == 0 || number > state.table.size()) return nullptr;
  TDMMacro **const slot = &state.table[number - 1];
  return *slot != nullptr && (*slot)->name == name ? slot : nullptr;
}

void enter(TDMMacro *macro)
{
  if (TDMMacro **const slot = find_slot(macro->name)) {
    *slot = macro;
    return;
  }
  state.table.push_back(macro);
  pooled(macro->name).number = static_cast<std::uint32_t>(state.table.size());
}

std::uint32_t hash_of_name(const void *name)
{
  return pooled(static_cast<const char *>(name)).hash;
}

// Passes over white space; tells whether there was any.
bool pass_white(const PpToken *&cursor, const PpToken *end)
{
  const PpToken *begin = cursor;
  while (cursor != end && is_white(cursor->number)) ++cursor;
  return cursor != begin;
}

// Strings aren't interned.
bool same_text(const PpToken &a, const PpToken &b)
{
  return a.text == b.text || (a.number == tSTRING && b.number == tSTRING && a.view() == b.view());
}

// Any amount of white space counts as one, and none at the ends, where a faulty # or ## may have
// left it.
bool same_body(const PpToken *a, const PpToken *a_end, const PpToken *b, const PpToken *b_end)
{
  pass_white(a, a_end);
  pass_white(b, b_end);
  while (a != a_end && b != b_end) {
    if (!same_text(*a++, *b++)) return false;
    const bool white_a = pass_white(a, a_end);
    const bool white_b = pass_white(b, b_end);
    if (white_a != white_b && a != a_end && b != b_end) return false;
  }
  return a == a_end && b == b_end;
}

bool same_definition(const TDMMacro &macro, const std::vector<MacroParameter> *parameters,
                     const std::vector<PpToken> &body)
{
  const auto same_name = [](const MacroParameter &a, const MacroParameter &b) {
    return a.name == b.name && a.variadic == b.variadic;
  };
  if (macro.function_like != (parameters != nullptr)) return false;
  if (parameters != nullptr && !std::equal(parameters->begin(), parameters->end(), macro.parameters,
                                           macro.parameters + macro.parameter_count, same_name))
    return false;
  return same_body(body.data(), body.data() + body.size(), macro.body,
                   macro.body + macro.body_count);
}

void report_redefinition(const TDMMacro &old, bool function_like, const tdm_srcpos &position)
{
  diag_at(old.function_like != function_like ? E_macro_redefined : W_macro_redefined, position,
          old.name);
  if (old.position.file != nullptr) diag_at(I_previous_macro_def, old.position, old.name);
}

template <class Item> const Item *keep_copy(const std::vector<Item> &items)
{
  if (items.empty()) return nullptr;
  void *copy = state.memory.allocate(items.size() * sizeof(Item));
  std::memcpy(copy, items.data(), items.size() * sizeof(Item));
  return static_cast<const Item *>(copy);
}

// ---- the check of a body ----

/// A parameter while its macro is being defined, to be found by name.
struct NamedParameter {
  const char *name;
  std::uint32_t index;
};
const void *name_of_parameter(const void *parameter)
{
  return static_cast<const NamedParameter *>(parameter)->name;
}

class BodyCheck {
public:
  BodyCheck(std::vector<PpToken> &body, std::vector<MacroParameter> *parameters)
      : body_(body), parameters_(parameters)
  {
    table_.key = name_of_parameter;
    table_.hash = hash_of_name;
    table_.key_length = -1;
  }
  BodyCheck(const BodyCheck &) = delete;
  BodyCheck &operator=(const BodyCheck &) = delete;
  ~BodyCheck() { hashtab_free(table_); }

  void run(const tdm_srcpos &position)
  {
    if (parameters_ != nullptr) {
      enter_parameters(position);
      link_parameters();
    }
    check_operators();
    if (parameters_ != nullptr) mark_uses();
  }

  [[nodiscard]] bool has_operators() const { return has_operators_; }

private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  void enter_parameters(const tdm_srcpos &position)
  {
    named_.resize(parameters_->size());
    for (std::size_t i = 0; i < named_.size(); ++i) {
      const char *name = (*parameters_)[i].name;
      named_[i] = {name == state.ellipsis ? state.word_va_args : name,
                   static_cast<std::uint32_t>(i + 1)};
      if (hashtab_lookup(&table_, named_[i].name) != nullptr)
        diag_at(E_duplicate_macro_arg, position);
      else
        hashtab_insert(&table_, &named_[i]);
    }
  }

  void link_parameters()
  {
    for (PpToken &token : body_)
      if (token.number == tIDENT || token.number == tIDENT2)
        if (const void *found = hashtab_lookup(&table_, token.text))
          token.link = static_cast<const NamedParameter *>(found)->index;
  }

  [[nodiscard]] std::size_t next_token(std::size_t i) const
  {
    while (++i < body_.size())
      if (!is_white(body_[i].number)) return i;
    return none;
  }

  static void make_blank(PpToken &token)
  {
    token.number = tWHITE;
    token.text = token_text(tSPACE);
    token.length = 1;
  }

  // One walk, so that the faults are reported in the order of the text.
  void check_operators()
  {
    bool in_front = false;
    for (std::size_t i = 0; i < body_.size(); ++i) {
      PpToken &token = body_[i];
      if (is_white(token.number)) continue;
      if (const auto fault = fault_at(i, in_front)) {
        diag_at(*fault, token.position);
        make_blank(token);
        continue;
      }
      if (token.number == tCONCAT || (token.number == tHASH && parameters_ != nullptr))
        has_operators_ = true;
      in_front = true;
    }
  }

  // What is wrong with the token at i, if it is a # or ##.
  [[nodiscard]] std::optional<DiagMessage> fault_at(std::size_t i, bool in_front) const
  {
    const int number = body_[i].number;
    if (number == tCONCAT && !in_front) return E_concat_at_begin;
    if (number == tCONCAT && next_token(i) == none) return E_concat_at_end;
    if (number == tHASH && parameters_ != nullptr && !is_parameter(next_token(i)))
      return E_hash_without_param;
    return std::nullopt;
  }

  [[nodiscard]] bool is_parameter(std::size_t i) const { return i != none && body_[i].link != 0; }

  // An argument is used as it stands beside a ## and behind a #, and expanded everywhere else.
  void mark_uses()
  {
    int previous = tEOF;
    for (std::size_t i = 0; i < body_.size(); ++i) {
      PpToken &token = body_[i];
      if (is_white(token.number)) continue;
      if (token.link != 0) {
        const std::size_t next = next_token(i);
        if (previous == tCONCAT || (next != none && body_[next].number == tCONCAT))
          token.link |= parameter_raw;
        else if (previous != tHASH)
          (*parameters_)[(token.link & parameter_index) - 1].expanded = true;
      }
      previous = token.number;
    }
  }

  std::vector<PpToken> &body_;
  std::vector<MacroParameter> *parameters_;
  std::vector<NamedParameter> named_;
  hashtab table_;
  bool has_operators_ = false;
};

std::vector<BodyRun> runs_of(const std::vector<PpToken> &body)
{
  std::vector<BodyRun> runs;
  std::uint32_t length = 0;
  for (const PpToken &token : body) {
    ++length;
    if (token.link == 0) continue;
    runs.push_back({length - 1, (token.link & parameter_index) - 1});
    length = 0;
  }
  return runs;
}

TDMMacro *new_macro(const char *name)
{
  auto *macro = new (state.memory.allocate(sizeof(TDMMacro))) TDMMacro{};
  macro->name = name;
  state.marked.push_back(name);
  pooled(name).marks |= mark_macro_name;
  return macro;
}

} // namespace

void macro_start()
{
  macro_stop();
  for (const char *name : state.marked) pooled(name).marks &= ~mark_macro_name;
  state.marked.clear();
  state.word_defined = intern("defined");
  state.word_va_args = intern("__VA_ARGS__");
  state.ellipsis = intern("...");
  define_predefined_macros();
}

// The names stay marked until the next stream begins: in most processes there is none.
void macro_stop()
{
  state.table.clear();
  state.memory.clear();
}

void macro_forget_names()
{
  state.table = std::vector<TDMMacro *>();
  state.marked = std::vector<const char *>();
}

std::uint32_t macro_generation()
{
  return state.generation;
}

std::uint32_t macro_undefinitions()
{
  return state.undefinitions;
}

void define_builtin(const char *name, MacroKind kind)
{
  TDMMacro *macro = new_macro(name);
  macro->kind = kind;
  macro->predefined = true;
  if (find_slot(name) == nullptr) enter(macro);
}

} // namespace tdm

void macro_define(const char *name, const std::vector<tdm::MacroParameter> *parameters,
                  std::vector<tdm::PpToken> body, const tdm_srcpos &position, bool predefined)
{
  using namespace tdm;
  if (name == state.word_defined) {
    diag_at(E_invalid_macro, position);
    return;
  }
  if (TDMMacro *old = macro_lookup(name)) {
    if (old->predefined) {
      diag_at(E_define_predefined, position, name);
      return;
    }
    if (same_definition(*old, parameters, body)) return;
    report_redefinition(*old, parameters != nullptr, position);
  }
  TDMMacro *macro = new_macro(name);
  std::vector<MacroParameter> own_parameters;
  if (parameters != nullptr) own_parameters = *parameters;
  BodyCheck check(body, parameters == nullptr ? nullptr : &own_parameters);
  check.run(position);
  macro->function_like = parameters != nullptr;
  macro->parameters = keep_copy(own_parameters);
  macro->parameter_count = own_parameters.size();
  macro->body = keep_copy(body);
  macro->body_count = body.size();
  if (parameters != nullptr) {
    const std::vector<BodyRun> runs = runs_of(body);
    macro->runs = keep_copy(runs);
    macro->run_count = runs.size();
  }
  macro->has_operators = check.has_operators();
  macro->position = position;
  macro->predefined = predefined;
  enter(macro);
  ++state.generation;
}

void macro_undefine(const char *name, const tdm_srcpos &position)
{
  using namespace tdm;
  if (name == state.word_defined) {
    diag_at(E_invalid_macro, position);
    return;
  }
  TDMMacro *macro = macro_lookup(name);
  if (macro == nullptr) return;
  if (macro->predefined) {
    diag_at(E_undef_predefined, position, name);
    return;
  }
  *tdm::find_slot(name) = nullptr;
  ++state.generation;
  ++state.undefinitions;
}

TDMMacro *macro_lookup(const char *name)
{
  TDMMacro **const slot = tdm::find_slot(name);
  return slot == nullptr ? nullptr : *slot;
}
