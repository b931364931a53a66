// What the switches of the option table change. The library itself leaves them at their defaults.
#include <gtest/gtest.h>

#include "preprocess.h"
#include "preprocessor/c_opt.h"

namespace {

struct Row {
  const char *name;
  std::function<void()> prepare;
  const char *source;
  const char *text;
  const char *messages;
};

TEST(Dialect, FollowsTheOptions)
{
  const auto iso90 = [] { option_set_integer(tdm::optISO, 90); };
  const auto no_gcc = [] { option_set_bool(tdm::optA_GCC, false); };
  const auto kanji = [] { option_set_bool(tdm::optA_KANJI, true); };
  const auto reproducible = [] { option_set_bool(tdm::optDETERMINISTIC, true); };
  const Row rows[] = {
      {"C90", iso90, "__STDC_VERSION__ a//b\n\"\\u00e9\"", "199409L a//b \"\\u00e9\"",
       "2:2 W971 illegal escape sequence\n"},
      {"C90 without // comments",
       [&] {
         iso90();
         option_set_bool(tdm::optA_CPP, false);
       },
       "#define c x\na//b\n//\n#if 4 //c\n#endif", "a//b //",
       "4:8 E911 division by zero\n4:8 E932 syntax error in #if/#elif expression\n"},
      {"comments dropped", [] { option_set_bool(tdm::optCOMMENT, false); }, "a /* b\n */ c // d\ne",
       "a /* c /* e", ""},
      {"no extensions", no_gcc,
       "#define f(x, ...) x[__VA_ARGS__]\n#define g(x, y...) x\n#define h(x, ...) x, ## "
       "__VA_ARGS__\n"
       "f(1) h(1,) __FUNCTION__\n#warning x",
       "1[] 1, __FUNCTION__",
       "2:15 E931 syntax error in #define\n4:4 E920 missing argument for \"...\" parameter\n"
       "5:2 E936 undefined preprocessing directive \"#warning\"\n"},
      {"double bytes", kanji,
       "\"\x83\\\" '\x83\\' L\"\xe0\"\"\n#if '\x83\\' == 0x835C\ny\n#endif\n#line 5 "
       "\"\x83\\\"\n__FILE__",
       "\"\x83\\\" '\x83\\' L\"\xe0\"\" y \"\x83\\\\\"", ""},
      {"single bytes", [] {}, "\"\x83\\\"\"", "\"\x83\\\"\"", ""},
      {"reproducible", reproducible, "__DATE__ __TIME__ __FILE__",
       "\"Jan 1 1970\" \"00:00:00\" \"main\"", ""},
      {"floating-point", [] { option_set_bool(tdm::optFLOAT, true); }, "__SINGLE_FP__", "1", ""},
      {"undefined", [] { option_set_string(tdm::optUNDEF, "__CORVANE__"); }, "__CORVANE__",
       "__CORVANE__", ""},
      {"undefined in vain", [] { option_set_string(tdm::optUNDEF, "1"); }, "x", "x",
       "0:0 E943 illegal macro name in option: \"-U1\"\n"},
      {"no directories",
       [] {
         option_set_bool(tdm::optNOMACRO, true);
         option_set_bool(tdm::optSTDINC, true);
       },
       "#define A 1\n#include <main>\nA __LINE__", "A 3",
       "2:1 E948 cannot open #include file \"main\"\n"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    tdm_test::Settings settings;
    settings.prepare = row.prepare;
    const tdm_test::Outcome outcome = preprocess({{"main", row.source}}, settings);
    EXPECT_EQ(tdm_test::squeezed(outcome.text), row.text);
    EXPECT_EQ(outcome.messages, row.messages);
  }
}

} // namespace
