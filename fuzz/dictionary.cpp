// Writes the fuzzers' dictionary: the words and signs of both token tables, and the directives.
#include <iostream>

#include "language/token_types.h"
#include "preprocessor/token_table.h"

int main()
{
  const auto entry = [](std::string_view text) {
    std::cout << '"';
    for (const char c : text) std::cout << (c == '"' || c == '\\' ? "\\" : "") << c;
    std::cout << "\"\n";
  };
  for (int type = TDMTokenTypes::KEY_memory; type < TDMTokenTypes::NUMBER_OF_TYPES; ++type)
    std::cout << tdm::token_names()[type] << '\n';
  for (const tdm::TokenRow &row : tdm::token_table)
    if (!row.pattern.empty() && row.pattern.front() > ' ' && !row.pattern.starts_with('['))
      entry(row.pattern);
  for (const char *text : {"#define ", "#undef ",   "#include ",   "#if ",    "#ifdef ",
                           "#ifndef ", "#elif ",    "#else",       "#endif",  "#line ",
                           "#error ",  "#warning ", "#pragma ",    "defined", "__VA_ARGS__",
                           "__LINE__", "__FILE__",  "__COUNTER__", "_Pragma", "\\",
                           "?\?/",     "?\?=",      "L'",          "\\u0041", "0x7FFFFFFFFFFFFFFF",
                           "//+++ ",   "//>>> "})
    entry(text);
}
