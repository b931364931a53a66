// Texts that are pushed last are read first: the macros of the language, DEFINE, UNDEF, the end.
#include "preprocessor/predefinition.h"

#include <string_view>

#include "preprocessor/c_buffer.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_opt.h"

namespace tdm {

namespace {

constexpr std::size_t usual_length = 256;

struct LanguageMacro {
  const char *name;
  const char *value;
  const char *(*function)(); ///< gives the value where that is null
};

constexpr LanguageMacro language_macros[] = {
    {"__CORVANE__", "1", nullptr},
};

bool begins_name(std::string_view text)
{
  if (text.empty()) return false;
  const char c = text.front();
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool accepts(char letter, std::string_view value)
{
  if (begins_name(value)) return true;
  diag_plain(E_illegal_macro_name, letter, value);
  return false;
}

void push_undefinitions()
{
  TextBuffer text(usual_length);
  for (int i = 0; i < option_count(optUNDEF); ++i) {
    const std::string_view name = option_get_string(optUNDEF, i);
    if (!accepts('U', name)) continue;
    text.append("#undef ");
    text.append(name);
    text.append('\n');
  }
  input_push_text(text.view());
}

void push_definitions()
{
  TextBuffer text(usual_length);
  for (int i = 0; i < option_count(optDEFINE); ++i) {
    const std::string_view value = option_get_string(optDEFINE, i);
    if (!accepts('D', value)) continue;
    const std::size_t equals = value.find('=');
    text.append("#define ");
    text.append(value.substr(0, equals));
    text.append(' ');
    text.append(equals == value.npos ? std::string_view("1") : value.substr(equals + 1));
    text.append('\n');
  }
  input_push_text(text.view());
}

void push_language_macros()
{
  TextBuffer text(usual_length);
  for (const LanguageMacro &macro : language_macros) {
    text.append("#define ");
    text.append(std::string_view(macro.name));
    text.append(' ');
    text.append(std::string_view(macro.value != nullptr ? macro.value : macro.function()));
    text.append('\n');
  }
  input_push_text(text.view());
}

} // namespace

void push_predefinitions()
{
  input_push_text(";/*predef-end*/\n");
  push_undefinitions();
  push_definitions();
  push_language_macros();
}

} // namespace tdm
