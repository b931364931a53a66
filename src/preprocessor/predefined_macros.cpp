// __FILE__ and __LINE__ have no body: expansion makes their tokens from the position of the name.
// All others are object-like macros of one token.
#include "preprocessor/predefined_macros.h"

#include <ctime>
#include <locale.h>
#include <string>
#include <string_view>

#include "preprocessor/c_opt.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

// Where the value comes from.
enum class Source { text, time_format, file_name, line_number };

struct PredefinedRow {
  const char *name;
  int token;
  const char *value;
  Source source;
  int iso; ///< the value of the option ISO that it holds for; 0 for all
};

constexpr PredefinedRow rows[] = {
    {"__DATE__", tSTRING, "\"%b %d %Y\"", Source::time_format, 0},
    {"__FILE__", tSTRING, nullptr, Source::file_name, 0},
    {"__LINE__", tICON, "0", Source::line_number, 0},
    {"__STDC__", tICON, "1", Source::text, 0},
    {"__STDC_HOSTED__", tICON, "0", Source::text, 0},
    {"__STDC_VERSION__", tICON, "199409L", Source::text, 90},
    {"__STDC_VERSION__", tICON, "199901L", Source::text, 99},
    {"__TIME__", tSTRING, "\"%H:%M:%S\"", Source::time_format, 0},
    {"__BUILD__", tICON, "0", Source::text, 0},
    {"__VERSION__", tICON, "0", Source::text, 0},
    {"__REVISION__", tICON, "0", Source::text, 0},
};

std::tm time_of_parse()
{
  std::tm parts = {};
  if (option_get_bool(optDETERMINISTIC)) {
    const std::time_t epoch = 0;
    gmtime_r(&epoch, &parts);
    return parts;
  }
  const std::time_t now = std::time(nullptr);
  localtime_r(&now, &parts);
  return parts;
}

std::string formatted(const PredefinedRow &row, const std::tm &now)
{
  constexpr std::size_t day_place = 5; // of `"Nov 05 2026"`
  char text[64];
  const locale_t plain = newlocale(LC_TIME_MASK, "C", locale_t{}); // not the host's month names
  std::string value(text, strftime_l(text, sizeof text, row.value, &now, plain));
  freelocale(plain);
  if (std::string_view(row.name) == "__DATE__" && value[day_place] == '0') value[day_place] = ' ';
  return value;
}

void define_one(const char *name, int token, const std::string &value)
{
  PpToken body;
  body.number = token;
  body.text = intern(value);
  body.length = value.size();
  macro_define(intern(name), nullptr, {body}, {}, true);
}

} // namespace

void define_predefined_macros()
{
  const std::tm now = time_of_parse();
  for (const PredefinedRow &row : rows) {
    if (row.iso != 0 && row.iso != option_get_integer(optISO)) continue;
    if (row.source == Source::file_name)
      define_builtin(intern(row.name), MacroKind::file_name);
    else if (row.source == Source::line_number)
      define_builtin(intern(row.name), MacroKind::line_number);
    else
      define_one(row.name, row.token,
                 row.source == Source::time_format ? formatted(row, now) : row.value);
  }
  if (option_get_bool(optFLOAT)) define_one("__SINGLE_FP__", tICON, "1");
}

const char *file_name_string(const char *file)
{
  std::string_view name = file == nullptr ? "" : file;
  if (option_get_bool(optDETERMINISTIC)) name.remove_prefix(name.rfind('/') + 1);
  std::string text = "\"";
  for (const char c : name) {
    if (c == '\\' || c == '"') text += '\\';
    text += c;
  }
  return intern(text += '"');
}

} // namespace tdm
