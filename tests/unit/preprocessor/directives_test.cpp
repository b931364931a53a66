// Directives: conditions, conditionals, includes, lines, and every message that they can provoke.
#include <gtest/gtest.h>

#include "preprocess.h"
#include "preprocessor/conditionals.h"

namespace {

using namespace std::string_literals;
using tdm_test::File;
using tdm_test::Outcome;
using tdm_test::preprocess;
using tdm_test::repeated;
using tdm_test::Settings;
using tdm_test::squeezed;

struct Row {
  const char *source;
  const char *text;
  const char *messages;
};

void check(const Row &row)
{
  SCOPED_TRACE(row.source);
  const Outcome outcome = preprocess(row.source);
  EXPECT_EQ(squeezed(outcome.text), row.text);
  EXPECT_EQ(outcome.messages, row.messages);
}

struct Condition {
  const char *text;
  bool holds;
  const char *messages = ""; ///< without the positions
};

TEST(Conditions, Evaluate)
{
  const Condition rows[] = {
      {"1", true},
      {"0", false},
      {"2 + 3 * 4 == 14", true},
      {"(2 + 3) * 4 == 20", true},
      {"20 - 5 - 3 == 12 && 100 / 10 / 5 == 2 && 17 % 10 % 4 == 3", true},
      {"1 << 2 + 1 == 8", true},
      {"1 << 63 >> 63", true},
      {"(1 << 63) < 0", true},
      {"(1 << 64) == 0", true},
      {"(1 << 80) == 1 && (5 >> 80) == 5 && (1 >> -1) == 0", false}, // -1 is 65535 as a count
      {"(1 << 80) == 1 && (5 >> 80) == 5 && (1 >> -1) == 1", true},
      {"-8 >> 1 == -4 && -7 / 2 == -3 && -7 % 2 == -1 && 7 % -2 == 1", true},
      {"~0 == -1 && !0 == 1 && !5 == 0 && - - 3 == 3 && +3 == 3 && !!7 == 1", true},
      {"(6 & 3) == 2 && (6 | 3) == 7 && (6 ^ 3) == 5", true},
      {"1 | 2 ^ 3 & 4 == 1", true},
      {"1 < 2 && 2 <= 2 && 3 > 2 && 2 >= 2 && 1 != 2", true},
      {"0x7FFFFFFFFFFFFFFF + 1 < 0", true},
      {"0xFFFFFFFFFFFFFFFF == -1", true},
      {"0xFFFFFFFFFFFFFFFFu > 0", true},
      {"18446744073709551615u / 2 == 9223372036854775807", true},
      {"0x1FFFFFFFFFFFFFFFF == -1", true}, // read in 80 bits, then cut
      {"9223372036854775807 * 2 / 2 == 9223372036854775807", true},
      {"-1 < 0u", false},
      {"-1 < 0", true},
      {"1 == 1u && -1 < 0", true},
      {"(0u - 1) > 0", true},
      {"(1 ? -1 : 0u) > 0", true},
      {"1 ? 2 : 3", true},
      {"0 ? 1 : 0", false},
      {"0 ? 1 : 0 ? 2 : 3", true},
      {"(1 ? 0 : 1) || (0 ? 1 : 0)", false},
      {"1 ? (2 ? 0 : 4) : 5", false},
      {"UNKNOWN", false},
      {"UNKNOWN == 0 && true == 0", true},
      {"defined UNKNOWN", false},
      {"!defined UNKNOWN && defined(__LINE__) && defined __FILE__", true},
      {"'ab' == 0x6162 && 'a' == 97 && '\\n' == 10 && '\\377' == 255 && L'x' == 120", true},
      {"'\\xff' == 255 && '\\'' == 39 && '\\0' == 0", true},
      {"010 == 8 && 0x10 == 16 && 0X1f == 31 && 00 == 0 && 1L == 1 && 1uLL == 1", true},
      {"0 && 1/0", false},
      {"1 || 1/0", true},
      {"0 ? 1/0 : 1", true},
      {"1 ? 1 : 1%0", true},
      {"1/0", true, "E911 division by zero\n"},
      {"0/0", false, "E911 division by zero\n"},
      {"5 % 0 == 5", true, "E911 division by zero\n"},
      {"1 ?", true, "E932 syntax error in #if/#elif expression\n"},
      {"1 ? 2", true, "E932 syntax error in #if/#elif expression\n"},
      {"1 : 2", true, "E932 syntax error in #if/#elif expression\n"},
      {"1 ? 2 ? 3 : 4 : 5", true, "E932 syntax error in #if/#elif expression\n"},
      {"(1", true, "E932 syntax error in #if/#elif expression\n"},
      {"0)", true, "E932 syntax error in #if/#elif expression\n"},
      {"", true, "E932 syntax error in #if/#elif expression\n"},
      {"0 0", true, "E932 syntax error in #if/#elif expression\n"},
      {"0 +", true, "E932 syntax error in #if/#elif expression\n"},
      {"0 = 0", true, "E932 syntax error in #if/#elif expression\n"},
      {"0 @", true, "E932 syntax error in #if/#elif expression\n"},
      {"0, 0", true, "E932 syntax error in #if/#elif expression\n"},
      {"1.0", true, "E932 syntax error in #if/#elif expression\n"},
      {"\"x\"", true, "E932 syntax error in #if/#elif expression\n"},
      {"1 /", true, "E911 division by zero\nE932 syntax error in #if/#elif expression\n"},
      {"defined", false, "E952 error in \"defined\" operator\n"},
      {"defined (", false, "E952 error in \"defined\" operator\n"},
      {"defined (x", false, "E952 error in \"defined\" operator\n"},
      {"defined 5", true,
       "E952 error in \"defined\" operator\nE932 syntax error in #if/#elif expression\n"},
      {"09 == 9 && 08", true,
       "E914 illegal digit '9' for base 8\nE914 illegal digit '8' for base 8\n"},
      {"0x", false, "E944 invalid constant\n"},
      {"0x100000000000000000000", false, "E944 invalid constant\n"},
      {"604462909807314587353087 == 604462909807314587353087", true}, // 79 bits
      {"604462909807314587353090", false, "E944 invalid constant\n"}, // 80 bits
      {"1uu", true, "E929 redundant suffix on constant: 'u'\n"},
      {"1lLl", true, "E929 redundant suffix on constant: 'l'\n"},
      {"1f + 1kR", true,
       "E950 illegal suffix on constant: 'f'\nE950 illegal suffix on constant: 'k'\n"
       "E950 illegal suffix on constant: 'R'\n"},
      {"1h + 1hl + 1H", true, "E950 illegal suffix on constant: 'h'\n"},
      {"'\\q' == 'q' && '\\x' == 'x'", true,
       "W971 illegal escape sequence\nW971 illegal escape sequence\n"
       "E927 no hex digits following \\x\nE927 no hex digits following \\x\n"},
  };
  for (const Condition &row : rows) {
    SCOPED_TRACE(row.text);
    const Outcome outcome =
        preprocess("#if "s + row.text + "\nyes\n#else\nno\n#endif\n#if 0\n#elif " + row.text +
                   "\nyes\n#else\nno\n#endif");
    EXPECT_EQ(squeezed(outcome.text), row.holds ? "yes yes" : "no no");
    std::string messages;
    for (std::size_t at = 0; at < outcome.messages.size();) {
      const std::size_t begin = outcome.messages.find(' ', at) + 1;
      at = outcome.messages.find('\n', at) + 1;
      messages += outcome.messages.substr(begin, at - begin);
    }
    EXPECT_EQ(messages, repeated(row.messages, 2));
  }
}

TEST(Conditions, NestUpToTheLimit)
{
  const auto condition = [](const std::string &text) {
    const Outcome outcome = preprocess("#if " + text + "\nyes\n#else\nno\n#endif");
    return squeezed(outcome.text) + "|" + outcome.messages;
  };
  EXPECT_EQ(condition(repeated("(", 9999) + "0" + repeated(")", 9999)), "no|");
  EXPECT_EQ(condition(repeated("(", 200000) + "0" + repeated(")", 200000)),
            "yes|1:10005 E932 syntax error in #if/#elif expression\n");
  EXPECT_EQ(condition(repeated("!", 200000) + "0"),
            "yes|1:10005 E932 syntax error in #if/#elif expression\n");
  EXPECT_EQ(condition(repeated("1+", 200000) + "0-200000"), "no|");
  EXPECT_EQ(condition(repeated("0||", 200000) + "0"), "no|");
}

TEST(Directives, KeepConditionals)
{
  const Row rows[] = {
      {"#if 0\na\n#elif 1\nb\n#elif 1\nc\n#else\nd\n#endif\ne", "b e", ""},
      {"#if 0\na\n#elif 0\nb\n#else\nc\n#endif", "c", ""},
      {"#ifdef __LINE__\na\n#endif\n#ifndef __LINE__\nb\n#else\nc\n#endif", "a c", ""},
      {"#if 1\n#if 0\na\n#else\nb\n#endif\n#else\n#if 1\nc\n#else\nd\n#endif\n#endif", "b", ""},
      {"#if 0\n#if 1\na\n#elif 1\nb\n#else\nc\n#endif\n#include \"no\"\n#foo\n#error x\n#line x\n"
       "#define X\n#pragma p\n#warning\n# 5 6\n#if 1/0\n#endif\n#endif\n#ifdef X\nd\n#endif",
       "", ""},
      {"#if 1\na\n#elif 1/0\nb\n#endif", "a", ""},
      {" # /* c */ if /* d */ 1 // e\n\ta\n # endif /* f\n */ \n#\n# // g\n%: if 0\nb\n%: endif",
       "a", ""},
      {"#if 1\na\n#else\nb\n#else\nc\n#elif 1\nd\n#endif", "a",
       "5:2 E937 unexpected preprocessing directive \"#else\"\n"
       "7:2 E937 unexpected preprocessing directive \"#elif\"\n"},
      {"#endif\n#else\n#elif 1\na", "a",
       "1:2 E937 unexpected preprocessing directive \"#endif\"\n"
       "2:2 E937 unexpected preprocessing directive \"#else\"\n"
       "3:2 E937 unexpected preprocessing directive \"#elif\"\n"},
      {"#if 1\n #ifdef X\n#ifndef X\na", "",
       "3:1 E928 no matching #endif\n2:2 E928 no matching #endif\n1:1 E928 no matching #endif\n"},
      {"#ifdef\na\n#else\nb\n#endif\n#ifndef\nc\n#endif\n#ifdef 5 x\n#endif", "b c",
       "1:1 E923 missing identifier after #ifdef\n6:1 E924 missing identifier after #ifndef\n"
       "9:1 E923 missing identifier after #ifdef\n"
       "9:10 W974 unexpected text after preprocessing directive\n"},
      {"#ifdef x y z\n#else y\n#endif z\n#ifndef x /* c */ // d\na\n#endif", "a",
       "1:10 W974 unexpected text after preprocessing directive\n"
       "2:7 W974 unexpected text after preprocessing directive\n"
       "3:8 W974 unexpected text after preprocessing directive\n"},
      {"#foo bar\n#(\n#\"x\"\n# 'a' b\na #if\nb", "a #if b",
       "1:2 E936 undefined preprocessing directive \"#foo\"\n"
       "2:2 E934 syntax error in preprocessing directive\n"
       "3:2 E934 syntax error in preprocessing directive\n"
       "4:3 E934 syntax error in preprocessing directive\n"},
      {"#define H #\nH if 0\n#define E\nE # if 0\nx", "# if 0 # if 0 x", ""},
      {"#if 0\n'a\n\"b\n/* #endif */ // #endif\n@ 0x\n#endif", "",
       "2:1 E938 unterminated character constant\n3:1 E941 unterminated string constant\n"},
      {"#if 0\n/* a\n#endif", "", "2:1 E939 unterminated comment\n1:1 E928 no matching #endif\n"},
      {"#if 1 /* a", "",
       "1:7 E939 unterminated comment\n2:1 E932 syntax error in #if/#elif expression\n"
       "1:1 E928 no matching #endif\n"},
      {"#if 1\na\n#endif /* b", "a", "3:8 E939 unterminated comment\n"},
      {"#ifdef /* a", "",
       "1:8 E939 unterminated comment\n"
       "1:1 E923 missing identifier after #ifdef\n1:1 E928 no matching #endif\n"},
      {"#error  a \"b\"  c /* d */\n#error\n # warning x  y\n#if 0\n#error z\n#endif", "",
       "1:1 E901 #error a \"b\"  c /* d */\n2:1 E901 #error \n3:2 E980 #warning x  y\n"},
      {"#define A defined B\n#define D defined\n#define B\n#if A\na\n#endif\n#if D B\nb\n#endif",
       "a b", "4:5 W969 behavior of 'defined' operator generated by a macro is undefined\n"},
      {"#define f(x) x (B)\n#if f(1 && 0 || defined)\na\n#endif", "",
       "2:5 W969 behavior of 'defined' operator generated by a macro is undefined\n"},
      {"#define X 1\n#define f(x) x + X\n#if f(1) == 2 && f\\\n(2) == 3\na\n#endif\n#if f\n#endif",
       "a", ""},
      {"#pragma A  b \"c\" A\n#define A 1\n#pragma A\nA", "#pragma A b \"c\" A #pragma A 1", ""},
      {"a\n#pragma nomisrac x\n# pragma other", "a #pragma nomisrac x #pragma other",
       "2:1 W973 ignored unrecognized \"#pragma nomisrac x\"\n"},
  };
  for (const Row &row : rows) check(row);
}

TEST(Directives, MessagesAreCutAt1024Characters)
{
  const Outcome outcome = preprocess("#error " + std::string(2000, 'x'));
  EXPECT_EQ(outcome.messages, "1:1 E901 #error " + std::string(1024 - 7, 'x') + "\n");
}

TEST(Directives, LineChangesPositions)
{
  Settings settings;
  settings.positions_with_file = true;
  struct LineRow {
    const char *source;
    const char *tokens;
    const char *messages;
  };
  const LineRow rows[] = {
      {"#line 10\na\n\nb", "7@main:10:1<a> 7@main:12:1<b>", ""},
      {"#line 10 \"x\"\na __LINE__ __FILE__", "7@x:10:1<a> 9@x:10:3<10> 11@x:10:12<\"x\">", ""},
      {"#line 0x10 <a b>\na", "7@a b:16:1<a>", ""},
      {"#line 010 L\"x\\\"y\\\\z\"\na", "7@x\"y\\z:8:1<a>", ""},
      {"#line 10u\na", "7@main:10:1<a>", ""},
      {"#define N 5 \"n\"\n#line N\na", "7@n:5:1<a>", ""},
      {"#define LT <\n#line 5 LT n>\na\n#line 6 LT m\nb", "7@ n:5:1<a> 7@ m:6:1<b>",
       " n:6:1 E919 missing '>' after header name\n"},
      {"# 10 \"b\" 3\na\n# 20\nb\n# 30 c\nd\n#5\ne\n# 6 <c\nf",
       "7@b:10:1<a> 7@b:20:1<b> 7@b:30:1<d> 7@b:5:1<e> 7@c:6:1<f>", ""},
      {"#line\n#line x\n#line \"x\"\na", "7@main:4:1<a>",
       "main:1:1 E926 missing line number after #line\nmain:2:1 E926 missing line number after "
       "#line\nmain:3:1 E926 missing line number after #line\n"},
      {"#line 10 \"b\" 3\n#line 10 junk\n#line 10 'x'\na", "7@main:4:1<a>",
       "main:1:14 E933 syntax error in #line directive\nmain:2:10 E933 syntax error in #line "
       "directive\nmain:3:10 E933 syntax error in #line directive\n"},
      {"#if 1\n#line 50 \"x\"\na", "7@x:50:1<a>", "main:1:1 E928 no matching #endif\n"},
  };
  for (const LineRow &row : rows) {
    SCOPED_TRACE(row.source);
    const Outcome outcome = preprocess({{"main", row.source}}, settings);
    EXPECT_EQ(outcome.tokens, row.tokens);
    EXPECT_EQ(outcome.messages, row.messages);
  }
}

struct IncludeRow {
  std::vector<File> files;
  const char *tokens;
  const char *messages;
};

TEST(Directives, IncludeFiles)
{
  Settings settings;
  settings.positions_with_file = true;
  const IncludeRow rows[] = {
      {{{"main", "#include \"a\"\nm"}, {"a", "x"}}, "7@a:1:1<x> 7@main:2:1<m>", ""},
      {{{"main", "#include <a>\nm"}, {"a", "x\n\ny\n"}}, "7@a:1:1<x> 7@a:3:1<y> 7@main:2:1<m>", ""},
      {{{"main", "#include \"d/a\""},
        {"d/a", "#include \"b\"\n#include \"../c\"\n#include \"./b\""},
        {"d/b", "b"},
        {"b", "wrong"},
        {"c", "c"}},
       "7@d/b:1:1<b> 7@c:1:1<c> 7@d/b:1:1<b>",
       ""},
      {{{"main", "#include \"d/a\""}, {"d/a", "#include <b>"}, {"d/b", "wrong"}, {"b", "b"}},
       "7@b:1:1<b>",
       ""},
      {{{"main", "#include \"d\\a\"\n#include \"q\\\"r\""}, {"d/a", "x"}},
       "7@d/a:1:1<x>",
       "main:2:14 W974 unexpected text after preprocessing directive\n"
       "main:2:15 E940 unterminated filename\n"
       "main:2:1 E948 cannot open #include file \"q\\\"\n"},
      {{{"main", "#define F \"a\"\n#define G <a>\n#define H < a >\n#include F\n#include G // "
                 "c\n#include H"},
        {"a", "x"}},
       "7@a:1:1<x> 7@a:1:1<x>",
       "main:6:1 E948 cannot open #include file \" a \"\n"},
      {{{"main", "#define F <a  b\t/**/c>\n#include F"}, {"a  b\t c", "x"}},
       "7@a  b\t c:1:1<x>",
       ""},
      {{{"main", "#include \"none\"\n#include <none>\nm"}},
       "7@main:3:1<m>",
       "main:1:1 E948 cannot open #include file \"none\"\n"
       "main:2:1 E948 cannot open #include file \"none\"\n"},
      {{{"main", "#include \"a\" x y\n#include\n#include 5\n#include a\n#include L\"a\""},
        {"a", "x"}},
       "7@a:1:1<x>",
       "main:1:14 W974 unexpected text after preprocessing directive\n"
       "main:2:1 E921 missing file name after #include\n"
       "main:3:1 E921 missing file name after #include\n"
       "main:4:1 E921 missing file name after #include\n"
       "main:5:1 E921 missing file name after #include\n"},
      {{{"main", "#include \"a\n#include <a\n#define L <\n#include L a"}, {"a", "x"}},
       "7@a:1:1<x> 7@a:1:1<x>",
       "main:1:10 E940 unterminated filename\nmain:2:10 E940 unterminated filename\n"
       "main:4:1 E919 missing '>' after header name\n"
       "main:4:1 E948 cannot open #include file \" a\"\n"},
      {{{"main", "#include \"d\"\nm"}, {"d/x", ""}},
       "7@main:2:1<m>",
       "main:1:13 E982 the file d could not be opened\n"
       "main:1:13 E982 the file d could not be opened\n"
       "main:1:1 E948 cannot open #include file \"d\"\n"},
      {{{"main", "#include \"a\"\nm */"}, {"a", "x\n /* y"}},
       "7@a:1:1<x> 7@main:2:1<m> 36@main:2:3<*> 41@main:2:4</>",
       "a:2:2 E939 unterminated comment\n"},
      {{{"main", "#include \"a\"\nm\n#endif\n#include \"b\"\n#include \"a\""},
        {"a", "#if 1\n"},
        {"b", "#else\nz\n#endif\n"}},
       "7@main:2:1<m> 7@b:2:1<z>",
       "b:1:2 E937 unexpected preprocessing directive \"#else\"\n"
       "b:3:2 E937 unexpected preprocessing directive \"#endif\"\na:1:1 E928 no matching #endif\n"},
      {{{"main", "#include \"a\"\nm"}, {"a", "#line 7 \"n\"\nx\n#include \"b\""}, {"b", "y"}},
       "7@n:7:1<x> 7@b:1:1<y> 7@main:2:1<m>",
       ""},
      {{{"main", "#define f(x) <x>\nf\n#include \"a\"\n(1)"}, {"a", "(2) f"}},
       "45@main:2:1<<> 9@main:2:1<2> 47@main:2:1<>> 45@a:1:5<<> 9@a:1:5<1> 47@a:1:5<>>",
       ""},
  };
  for (const IncludeRow &row : rows) {
    SCOPED_TRACE(row.files[0].second);
    const Outcome outcome = preprocess(row.files, settings);
    EXPECT_EQ(outcome.tokens, row.tokens);
    EXPECT_EQ(outcome.messages, row.messages);
  }
}

TEST(Directives, InclusionOfItselfEndsWhenNoMoreFilesCanBeOpened)
{
  const Outcome outcome = preprocess("#include \"main\"\nx\n");
  EXPECT_GT(outcome.text.size(), 100U);
  EXPECT_NE(outcome.messages.find("E982 the file main could not be opened"), std::string::npos);
  EXPECT_NE(outcome.messages.find("1:1 E948 cannot open #include file \"main\""),
            std::string::npos);
}

// Passing over groups that were met before changes no token and no position.
TEST(Directives, SkippedGroupsCanBePassedOver)
{
  const std::string guarded =
      "#ifndef G /* c\n */\n#define G\n\\\nx\n#if 0\na \\\nb\n#elif X\nc\n#else\nd\n"
      "#endif\n#include \"open\"\n#endif /* G */\nafter __LINE__\n";
  const std::string twice =
      "#include \"g\"\n#include \"g\"\n#undef G\n#include \"g\"\n#define X 1\n"
      "#undef G\n#include \"g\"\n#if 0\n#include \"open\"\n";
  const std::vector<File> files = {
      {"main", twice + repeated("#include \"open\"\nm __LINE__\n#endif\n", 3)},
      {"g", guarded},
      {"open", "#ifdef X\n1\n#else\n2\n#endif\n\n\n#if 1 /* left open */\n3\n"},
  };
  Settings settings;
  settings.positions_with_file = true;
  const Outcome with = preprocess(files, settings);
  tdm::skip_memo_enable(false);
  const Outcome without = preprocess(files, settings);
  tdm::skip_memo_enable(true);
  EXPECT_EQ(with.tokens, without.tokens);
  EXPECT_EQ(with.messages, without.messages);
  EXPECT_NE(with.tokens, "");
}

TEST(Directives, ConditionalsNestWithoutLimit)
{
  constexpr std::size_t depth = 100000;
  const Outcome outcome = preprocess(repeated("#if 1\n", depth) + "x\n#if 0\n" +
                                     repeated("#ifdef y\n#else\n#endif\n", depth) + "#endif\n" +
                                     repeated("#endif\n", depth));
  EXPECT_EQ(squeezed(outcome.text), "x");
  EXPECT_EQ(outcome.messages, "");
}

} // namespace
