// The pragma table, the slots of the vector, and the interned vectors.
#include "preprocessor/c_pragma.h"

#include <cstdint>
#include <cstring>
#include <iterator>

#include "preprocessor/c_memory.h"
#include "preprocessor/hashtab.h"
#include "preprocessor/orderly_stop.h"

namespace tdm {

const void *pragma_vector = nullptr;

namespace {

struct PragmaRow {
  Option option;
  const char *name;
  const char *restore;
  const char *help;
};

constexpr PragmaRow rows[] = {
    {optNOMACRO, "macro", nullptr, "no opttool warnings\n"},
    {optNOMACRO, "nomacro", "restore", "no opttool warnings\n"},
    {optPREDEF, "predef", nullptr, "no opttool warnings\n"},
    {optSTDINC, "stdinc", nullptr, "use only system include paths\n"},
    {optNOWARNP, "warning", nullptr,
     "Without arguments, this pragma disables all warning messages.\n"
     "Alternatively, you can specify a comma-separated list of warning\n"
     "numbers to disable, just like the -w command line option.\n"},
};

constexpr int option_limit = 30;
constexpr int most_slots = 8;
using Word = std::uintptr_t;

struct Slot {
  int index; ///< in the vector, or -1
  char type; ///< b, i or s
};

struct {
  MemoryArena arena;
  hashtab names;
  hashtab vectors;
  Slot slots[option_limit];
  int slot_count;
} state;

const void *name_of(const void *row)
{
  return static_cast<const PragmaRow *>(row)->name;
}

char type_letter(Option option)
{
  switch (option_type(option)) {
  case otBOOL:
    return 'b';
  case otINTEGER:
    return 'i';
  default:
    return 's';
  }
}

Word table_value(Option option)
{
  switch (state.slots[option].type) {
  case 'b':
    return option_get_bool(option);
  case 'i':
    return static_cast<Word>(option_get_integer(option));
  default:
    return reinterpret_cast<Word>(option_get_string(option));
  }
}

void enter_rows()
{
  for (Slot &slot : state.slots) slot = {-1, 0};
  for (const PragmaRow &row : rows) {
    Slot &slot = state.slots[row.option];
    if (slot.index < 0) {
      slot = {state.slot_count++, type_letter(row.option)};
      internal_check(state.slot_count <= most_slots);
      option_bind_to_pragma(row.option, true);
    }
    if (hashtab_lookup(&state.names, row.name) == nullptr)
      hashtab_insert(&state.names, const_cast<PragmaRow *>(&row));
  }
}

const Word *intern_vector(const Word *vector)
{
  if (void *known = hashtab_lookup(&state.vectors, vector)) return static_cast<const Word *>(known);
  const std::size_t bytes = sizeof(Word) * static_cast<std::size_t>(state.slot_count);
  void *copy = state.arena.allocate(bytes);
  std::memcpy(copy, vector, bytes);
  hashtab_insert(&state.vectors, copy);
  return static_cast<const Word *>(copy);
}

} // namespace

void pragma_start()
{
  pragma_end();
  state.names.key = name_of;
  enter_rows();
  state.vectors.key_length = static_cast<int>(sizeof(Word)) * state.slot_count;

  Word first[most_slots] = {};
  option_allow_pragma_bound(true);
  for (const PragmaRow &row : rows) first[state.slots[row.option].index] = table_value(row.option);
  option_allow_pragma_bound(false);
  pragma_vector = intern_vector(first);
}

void pragma_end()
{
  for (const PragmaRow &row : rows) option_bind_to_pragma(row.option, false);
  hashtab_free(state.names);
  hashtab_free(state.vectors);
  state.arena.clear();
  state.slot_count = 0;
  pragma_vector = nullptr;
}

bool pragma_known(const char *name)
{
  return hashtab_lookup(&state.names, name) != nullptr;
}

} // namespace tdm

bool pragma_get(const void *vector, tdm::Option option)
{
  const tdm::Slot &slot = tdm::state.slots[option];
  tdm::internal_check(slot.index >= 0 && slot.type == 'b');
  return static_cast<const tdm::Word *>(vector)[slot.index] != 0;
}
