// The option table and its readers. Reading an option of the wrong type, or one that belongs to
// positions in the source, is a fault of our own and ends the process.
#include "preprocessor/c_opt.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <vector>

#include "preprocessor/orderly_stop.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr int attribute_count = 11;

// Four characters a name; the place of a name is its slot.
constexpr std::string_view attribute_names = "OPT HID ABB MUL DEF SEPSSEPLNOCCNOCLNOCSFUNC";
static_assert(attribute_names.size() == std::size_t{4} * attribute_count);

struct OptionRow {
  int parent;
  const char *name;
  OptionType type;
  const char *attributes;
  const char *description;
  const char *help;
};

constexpr OptionRow rows[] = {
    {0, "OPT", otSTRING, "MUL", "", ""},
    {0, "ERR", otSTRING, "MUL", "", ""},
    {0, "ARG", otSTRING, "MUL", "", ""},
    {0, "INT", otSTRING, "MUL", "", ""},
    {optINT, "ABSOLUTE", otBOOL, "DEF(F)", "absolute", ""},
    {optINT, "A_CPP", otBOOL, "DEF(T)", "// comments in ISO C90 mode", ""},
    {optINT, "A_GCC", otBOOL, "DEF(T)", "enable GCC extensions", ""},
    {optINT, "A_KANJI", otBOOL, "DEF(F)", "support for Shift JIS Kanji in strings", ""},
    {optINT, "COMMENT", otBOOL, "DEF(T)", "keep comments", ""},
    {optOPT, "DEFINE", otSTRING, "NOCC,MUL", "define preprocessor macro",
     "With this option you can define a macro and specify it to the\n"
     "preprocessor. If you only specify a macro name (no macro definition),\n"
     "the macro expands as \"1\".\n"},
    {optINT, "DETERMINISTIC", otBOOL, "DEF(F)", "make the compiler result deterministic", ""},
    {optINT, "ERRWARN", otSTRING, "", "errwarn", ""},
    {optINT, "FLOAT", otBOOL, "DEF(F)", "", ""},
    {optINT, "INCDIR", otSTRING, "NOCC,MUL(,)", "", ""},
    {optINT, "ISO", otINTEGER, "DEF(99)", "ISO C standard (90 or 99)", ""},
    {optINT, "ISUFFIX", otBOOL, "DEF(F)", "", ""},
    {optINT, "NOLINE", otBOOL, "DEF(T)", "strip #line source position info", ""},
    {optINT, "NOMACRO", otBOOL, "DEF(F)", "have macros", ""},
    {optINT, "NOSTDINC", otBOOL, "DEF(F)", "", ""},
    {optINT, "NOWARN", otSTRING, "", "nowarn", ""},
    {optINT, "NOWARNP", otSTRING, "", "nowarnp", ""},
    {optINT, "PREDEF", otBOOL, "", "true during predefinition part", ""},
    {optINT, "QUAL", otBOOL, "DEF(T)", "production compiler", ""},
    {optINT, "STDINC", otBOOL, "DEF(F)", "", ""},
    {optINT, "UNDEF", otSTRING, "", "remove preprocessor macro", ""},
};
constexpr int row_count = std::size(rows);
static_assert(row_count == optUNDEF);
static_assert(std::string_view(rows[optINCDIR - 1].name) == "INCDIR");

// What changes of a row while the library runs.
struct OptionState {
  const char *attributes[attribute_count]; ///< null: absent
  int first_child;
  int next_sibling;
  bool pragma_bound;
  int count;
  int number;                      ///< value of a switch or a number
  const char *text;                ///< value of a string option, or null
  std::vector<const char *> texts; ///< values of an option that takes several
};

struct {
  OptionState options[row_count + 1];
  bool pragma_bound_allowed;
} state;

constexpr int no_slot = -1;

int attribute_slot(std::string_view name)
{
  for (int slot = 0; slot < attribute_count; ++slot) {
    std::string_view known = attribute_names.substr(static_cast<std::size_t>(slot) * 4, 4);
    if (known.substr(0, known.find(' ')) == name) return slot;
  }
  return no_slot;
}

// "NOCC,MUL(,)": names, each with an optional value in parentheses.
void read_attributes(OptionState &option, std::string_view text)
{
  while (!text.empty()) {
    const std::size_t name_end = text.find_first_of(",(");
    const int slot = attribute_slot(text.substr(0, name_end));
    internal_check(slot != no_slot);
    std::string_view value;
    text.remove_prefix(name_end == text.npos ? text.size() : name_end);
    if (!text.empty() && text.front() == '(') {
      value = text.substr(1, text.find(')') - 1);
      text.remove_prefix(value.size() + 2);
    }
    option.attributes[slot] = intern(value);
    if (!text.empty()) text.remove_prefix(1);
  }
}

bool default_switch(const char *text)
{
  if (text == nullptr) return false;
  if (*text == 'f' || *text == 'F') return false;
  if (*text == 't' || *text == 'T') return true;
  return std::strtol(text, nullptr, 0) != 0;
}

void apply_default(OptionState &option, OptionType type)
{
  const char *text = option.attributes[attribute_slot("DEF")];
  switch (type) {
  case otBOOL:
    option.number = default_switch(text);
    break;
  case otINTEGER:
    option.number = text == nullptr ? 0 : static_cast<int>(std::strtol(text, nullptr, 0));
    break;
  default:
    option.text = text;
  }
  option.count = 0;
}

// Groups list their members in the order of the table.
void chain_to_parent(int number)
{
  int *link = &state.options[rows[number - 1].parent].first_child;
  while (*link != 0) link = &state.options[*link].next_sibling;
  *link = number;
}

OptionState &option_of(Option number)
{
  internal_check(number >= 1 && number <= row_count);
  OptionState &option = state.options[number];
  // Such a value is asked for by position; read here, it would be the wrong one.
  internal_check(!option.pragma_bound || state.pragma_bound_allowed);
  return option;
}

OptionState &string_option(Option number)
{
  const OptionType type = option_type(number);
  internal_check(type == otSTRING || type == otFLAGS || type == otOPTFILE);
  return option_of(number);
}

bool takes_several(const OptionState &option)
{
  return option.attributes[attribute_slot("MUL")] != nullptr;
}

} // namespace

void option_start()
{
  option_end();
  for (int number = 1; number <= row_count; ++number) {
    const OptionRow &row = rows[number - 1];
    OptionState &option = state.options[number];
    read_attributes(option, row.attributes);
    if (row.parent != 0) chain_to_parent(number);
    apply_default(option, row.type);
    if (takes_several(option)) option.texts.reserve(32);
  }
}

void option_end()
{
  for (OptionState &option : state.options) option = {};
  state.pragma_bound_allowed = false;
}

void option_bind_to_pragma(Option number, bool bound)
{
  state.options[number].pragma_bound = bound;
}

void option_allow_pragma_bound(bool allowed)
{
  state.pragma_bound_allowed = allowed;
}

OptionType option_type(Option number)
{
  internal_check(number >= 1 && number <= row_count);
  return rows[number - 1].type;
}

const char *option_attribute(Option number, std::string_view attribute)
{
  const int slot = attribute_slot(attribute);
  internal_check(slot != no_slot);
  return state.options[number].attributes[slot];
}

} // namespace tdm

void option_set_string(tdm::Option number, std::string_view text)
{
  tdm::OptionState &option = tdm::string_option(number);
  const char *value = tdm::intern(text);
  ++option.count;
  if (tdm::takes_several(option))
    option.texts.push_back(value);
  else
    option.text = value;
}

int option_count(tdm::Option number)
{
  return tdm::option_of(number).count;
}

const char *option_get_string(tdm::Option number, int index)
{
  const tdm::OptionState &option = tdm::string_option(number);
  if (!tdm::takes_several(option)) return option.text;
  tdm::internal_check(index >= 0 && index < option.count);
  return option.texts[static_cast<std::size_t>(index)];
}

bool option_get_bool(tdm::Option number)
{
  tdm::internal_check(tdm::option_type(number) == tdm::otBOOL);
  return tdm::option_of(number).number != 0;
}

int option_get_integer(tdm::Option number)
{
  tdm::internal_check(tdm::option_type(number) == tdm::otINTEGER);
  return tdm::option_of(number).number;
}

void option_set_bool(tdm::Option number, bool value)
{
  tdm::internal_check(tdm::option_type(number) == tdm::otBOOL);
  tdm::option_of(number).number = value;
}

void option_set_integer(tdm::Option number, int value)
{
  tdm::internal_check(tdm::option_type(number) == tdm::otINTEGER);
  tdm::option_of(number).number = value;
}
