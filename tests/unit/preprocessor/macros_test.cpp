// Macros: definitions, expansion, # and ##, and every message that they can provoke.
#include <gtest/gtest.h>

#include <ctime>

#include "preprocess.h"

namespace {

using tdm_test::Outcome;
using tdm_test::preprocess;
using tdm_test::repeated;
using tdm_test::squeezed;

struct Row {
  const char *source;
  const char *text;     ///< with white space squeezed
  const char *messages; ///< complete
};

void check(const Row &row)
{
  SCOPED_TRACE(row.source);
  const Outcome outcome = preprocess(row.source);
  EXPECT_EQ(squeezed(outcome.text), row.text);
  EXPECT_EQ(outcome.messages, row.messages);
}

TEST(Macros, ExpandAsTheStandardHasIt)
{
  const Row rows[] = {
      {"#define A 1\nA B", "1 B", ""},
      {"#define A\nx A y", "x y", ""},
      {"#define A B\n#define B C\n#define C 3\nA", "3", ""},
      {"#define a a\na", "a", ""},
      {"#define a b\n#define b a\na b", "a b", ""},
      {"#define foo foo + 1\n#define f(x) x\nf(foo) f(f)(1)", "foo + 1 f(1)", ""},
      {"#define f(x) x\nf(f)(1)", "f(1)", ""},
      {"#define f(x) x\nf f(1) f\n\n(2) f + f", "f 1 2 f + f", ""},
      {"#define f(x) x\nf(f(f(1)))", "1", ""},
      {"#define f(x) [x]\n#define g f\ng(1) g (2)", "[1] [2]", ""},
      {"#define f(x) x f\nf(1)(2)(3)", "1 f(2)(3)", ""},
      {"#define c(p) [p]\n#define L (1)\n#define i(p) p\n#define n(p) (p L)\n"
       "i(c L) i(i(c c L)) n(n(c)) i(c i L) i(i(c)(2)) i(1 2 3 4 5 c L 1 2 3 4 5 c)(6)",
       "[1] c [1] (([1]) (1)) c i (1) [2] 1 2 3 4 5 [1] 1 2 3 4 5 [6]", ""},
      {"#define g(x) g(x+1)\ng(g(1))", "g(g(1+1)+1)", ""},
      {"#define f(x,y) y x\nf((1,2), (3))", "(3) (1,2)", ""},
      {"#define f(x,y) <x|y>\nf(,) f( , ) f(1,)", "<|> <|> <1|>", ""},
      {"#define f() 7\nf() f( ) f (\n)", "7 7 7", ""},
      {"#define f(x) x\nf(a /* c */ b\n   c)", "a b c", ""},
      {"#define p(x, ...) x[__VA_ARGS__]\np(1) p(1,2) p(1, 2, (3,4))", "1[] 1[2] 1[2, (3,4)]", ""},
      {"#define p(x, r...) x[r]\np(1, 2, 3)", "1[2, 3]", ""},
      {"#define p(...) #__VA_ARGS__\np() p(a, b)", "\"\" \"a, b\"", ""},
      {"#define d(x) x\n#define e d\ne d (1) d e(2)", "d 1 d 2", ""},
      {"#define x 3\n#define f(a) f(x * (a))\n#undef x\n#define x 2\n#define g f\n#define z z[0]\n"
       "#define h g(~\n#define m(a) a(w)\n#define w 0,1\n#define t(a) a\n#define p() int\n"
       "#define q(x) x\n#define r(x,y) x ## y\n#define str(x) # x\n"
       "f(y+1) + f(f(z)) % t(t(g)(0) + t)(1);\n"
       "g(x+(3,4)-w) | h 5) & m\n(f)^m(m);\n"
       "p() i[q()] = { q(1), r(2,3), r(4,), r(,5), r(,) };\n"
       "char c[2][6] = { str(hello), str() };",
       "f(2 * (y+1)) + f(2 * (f(2 * (z[0])))) % f(2 * (0)) + t(1); "
       "f(2 * (2+(3,4)-0,1)) | f(2 * (~ 5)) & f(2 * (0,1))^m(0,1); "
       "int i[] = { 1, 23, 4, 5, }; char c[2][6] = { \"hello\", \"\" };",
       ""},
      {"#define str(s) # s\n#define xstr(s) str(s)\n#define debug(s, t) p(\"x\" # s \"= %d, x\" # "
       "t "
       "\"= %s\", x ## s, x ## t)\n#define INCFILE(n) vers ## n\n#define glue(a, b) a ## b\n"
       "#define xglue(a, b) glue(a, b)\n#define HIGHLOW \"hello\"\n#define LOW LOW \", world\"\n"
       "debug(1, 2);\nf(str(strncmp(\"abc\\0d\", \"abc\", '\\4') // no\n== 0) str(: @\\n), s);\n"
       "xstr(INCFILE(2).h)\nglue(HIGH, LOW);\nxglue(HIGH, LOW)",
       "p(\"x\" \"1\" \"= %d, x\" \"2\" \"= %s\", x1, x2); "
       "f(\"strncmp(\\\"abc\\\\0d\\\", \\\"abc\\\", '\\\\4') == 0\" \": @\\n\", s); "
       "\"vers2.h\" \"hello\"; \"hello\" \", world\"",
       ""},
      {"#define d(...) p(e, __VA_ARGS__)\n#define s(...) puts(#__VA_ARGS__)\n"
       "#define r(test, ...) ((test)?puts(#test): p(__VA_ARGS__))\n"
       "d(\"Flag\"); d(\"X = %d\\n\", x); s(The first, second, and third items.);\n"
       "r(x>y, \"x is %d but y is %d\", x, y);",
       "p(e, \"Flag\"); p(e, \"X = %d\\n\", x); puts(\"The first, second, and third items.\"); "
       "((x>y)?puts(\"x>y\"): p(\"x is %d but y is %d\", x, y));",
       ""},
      {"#define O (1-1)\n#define O /* a */ (1-1) /* b */\n#define F(a) ( a )\n"
       "#define F( a )( /* c */ \\\n a /* d\n */ )\nO F(2)",
       "(1-1) ( 2 )", ""},
      {"#define hash_hash # ## #\n#define mkstr(a) # a\n#define in_between(a) mkstr(a)\n"
       "#define join(c, d) in_between(c hash_hash d)\njoin(x, y)",
       "\"x ## y\"", ""},
      {"#define t(x,y,z) x ## y ## z\nt(1,2,3) t(,4,5) t(6,,7) t(8,9,) t(10,,) t(,11,) t(,,12) "
       "t(,,)|",
       "123 45 67 89 10 11 12 |", ""},
      {"#define s(x) #x\ns( a  b ) s(\"a\\n\") s('\"') s(\n) s(a /* */ b) s(L\"x\")",
       "\"a b\" \"\\\"a\\\\n\\\"\" \"'\\\"'\" \"\" \"a b\" \"L\\\"x\\\"\"", ""},
      {"#define c(a,b) a##b\nc(+,+) c(1e,3) c(L,\"x\") c(<,<=) c(a,1) c(0x,F)|c(,)|",
       "++ 1e3 L\"x\" <<= a1 0xF||", ""},
      {"#define A(x) x ## 1 ## x ## _\nA(v) A(2)", "v1v_ 212_", ""},
      {"#define A ab ## cd\n#define abcd yes\nA", "yes", ""},
      {"#define c(a,b) a ## b\n#define xy 5\nc(x,y) c(x y, z)", "5 x yz", ""},
      {"#define f(x) #x x\n#define y 1\nf(y)", "\"y\" 1", ""},
      {"#define f(x) 1\n#if 1\nf(\n#define y 2\ny\n)y\n#endif", "12", ""},
      {"#define f(x) x\nf\n#define g 3\n(g) f\n#undef g\ng", "3 f g", ""},
      {"#define f(x) x\nf(1\n#ifdef no\n2\n#else\n3\n#endif\n)", "1 3", ""},
      {"#define L __LINE__\n#define f(x) x L\nf(__LINE__\n__LINE__\nL)\n\nL", "3 4 5 3 7", ""},
      {"#line 7 \"a\\\\b\\\"c\"\n__FILE__ __LINE__", "\"a\\\\b\\\"c\" 7", ""},
      {"__STDC__ __STDC_HOSTED__ __STDC_VERSION__ __BUILD__ __VERSION__ __REVISION__ __CORVANE__",
       "1 0 199901L 0 0 0 1", ""},
      {"#define e(x, ...) [x, ## __VA_ARGS__]\ne(1)", "[1]", ""},
      // What comes to nothing at an end of an argument that was expanded before.
      {"#define E\n#define c(a,b) a##b\n#define l(x) c(x,1)\n#define r(x) c(1,x)\n"
       "#define n(...) [0,##__VA_ARGS__]\n#define o(x) n(x)\n#define z() 0\n#define y(x) z(x)\n"
       "l(a b c d e E) r(E a b c d e) o(E E E E E E) y(E E E E E E)",
       "a b c d e1 1a b c d e [0] 0", ""},
      {"#define _(x) defined x\n_(y)\n__FUNCTION__", "defined y __FUNCTION__", ""},
  };
  for (const Row &row : rows) check(row);
}

TEST(Macros, ReportFaults)
{
  const Row rows[] = {
      {"#define\n#define 5\n#define \"x\" 1\nA", "A",
       "1:1 E954 missing identifier after #define\n2:1 E954 missing identifier after #define\n"
       "3:1 E954 missing identifier after #define\n"},
      {"#define defined 1\n#undef defined", "",
       "1:9 E916 invalid macro name \"defined\"\n2:8 E916 invalid macro name \"defined\"\n"},
      {"#define __FILE__ 1\n#define __STDC__\n#undef __LINE__\n#undef no\n__LINE__ __STDC__", "5 1",
       "1:9 E917 macro \"__FILE__\" cannot be defined\n"
       "2:9 E917 macro \"__STDC__\" cannot be defined\n"
       "3:8 E918 macro \"__LINE__\" cannot be undefined\n"},
      {"#undef\n#undef 5 6\n#define A 1\n#undef A B C\nA", "A",
       "1:1 E925 missing identifier after #undef\n2:1 E925 missing identifier after #undef\n"
       "4:10 W974 unexpected text after preprocessing directive\n"},
      {"#define A 1\n#define A 2\nA", "2",
       "2:9 W972 macro \"A\" redefined\n1:9 I981 previous definition of macro \"A\"\n"},
      {"#define A 1\n#define A(x) 2\nA(0)", "2",
       "2:9 E946 \"A\" redefined as a different kind of macro\n"
       "1:9 I981 previous definition of macro \"A\"\n"},
      {"#define A x  + y\n#define A   x /* c */ + y  \n#define A x +y\nA", "x +y",
       "3:9 W972 macro \"A\" redefined\n1:9 I981 previous definition of macro \"A\"\n"},
      {"#define A 1 ##\n#define A 1\n#define f(x) a #b x\n#define f(x) a b x\nf(A)", "a b 1",
       "1:13 E947 '##' at the end of a macro definition\n"
       "3:16 E904 '#' not followed by macro parameter\n"},
      {"#define f(x,y) x\n#define f(x,y) x\n#define f(y,x) x\n#define f(y,x...) x", "",
       "3:9 W972 macro \"f\" redefined\n1:9 I981 previous definition of macro \"f\"\n"
       "4:9 W972 macro \"f\" redefined\n3:9 I981 previous definition of macro \"f\"\n"},
      {"#define A+1\n#define B\"x\"\n#define C\nA B C", "+1 \"x\"",
       "1:10 W975 white-space separator required before replacement list\n"
       "2:10 W975 white-space separator required before replacement list\n"},
      {"#define f(x\n#define g(1) 2\n#define h(x y) 1\n#define i(..., x) 1\n#define j(x,) 1\n"
       "#define k(x ...) 1\nf g(1)",
       "f g(1)",
       "1:12 E931 syntax error in #define\n2:11 E931 syntax error in #define\n"
       "3:13 E931 syntax error in #define\n4:14 E931 syntax error in #define\n"
       "5:13 E931 syntax error in #define\n6:13 E931 syntax error in #define\n"},
      {"#define f(x,y,x) x\nf(1,2,3)", "1", "1:9 E951 duplicate macro argument\n"},
      {"#define f(x) #y #x\n#define o # y\nf(1) o", "y \"1\" # y",
       "1:14 E904 '#' not followed by macro parameter\n"},
      {"#define f(x) x ##\n#define g(x) ## x\n#define A ## 1 ##\n#define B ##\nf(1) g(2) A B.",
       "1 2 1 .",
       "1:16 E947 '##' at the end of a macro definition\n"
       "2:14 E953 '##' at the start of a macro definition\n"
       "3:11 E953 '##' at the start of a macro definition\n"
       "3:16 E947 '##' at the end of a macro definition\n"
       "4:11 E953 '##' at the start of a macro definition\n"},
      {"#define f(x) ## #y x ##\n#define g(x) x ## #\n#define h(x) x ## ## y\nf(1) g(2) h(3)",
       "y 1 2 3## y",
       "1:14 E953 '##' at the start of a macro definition\n"
       "1:17 E904 '#' not followed by macro parameter\n"
       "1:22 E947 '##' at the end of a macro definition\n"
       "2:19 E904 '#' not followed by macro parameter\n"
       "4:11 W978 '##' does not produce a valid preprocessing token\n"},
      {"#define f() 1\nf(x) f(,)", "1 1",
       "2:1 E907 arguments given to macro \"f\"\n2:6 E907 arguments given to macro \"f\"\n"},
      {"#define f(x,y,z) [x|y|z]\nf(1) f(1,2)", "[1||] [1|2|]",
       "2:4 E920 missing argument for \"y\" parameter\n"
       "2:4 E920 missing argument for \"z\" parameter\n"
       "2:11 E920 missing argument for \"z\" parameter\n"},
      {"#define f(x) [x]\nf(1,2,(3,4),5) f(f(6,7))", "[1] [[6]]",
       "2:4 E935 too many macro arguments\n2:21 E935 too many macro arguments\n"},
      {"#define f(x) x\na f(1, (2)\nb", "a",
       "2:6 E935 too many macro arguments\n"
       "2:3 E930 runaway macro argument\n"},
      {"#define f(x) x\n#if f(1\n2\n#endif\nf(3)", "2 3",
       "2:5 E930 runaway macro argument\n2:8 E932 syntax error in #if/#elif expression\n"},
      {"#define g(x) x\n#define f(x) g(x\n#define h(x) x\nh(f(1)) f(2))", "2",
       "4:3 E930 runaway macro argument\n"},
      {"#define c(a,b) a##b\n c(.,/) c(1,+) c(-,>=)", "./ 1+ ->=",
       "2:2 W978 '##' does not produce a valid preprocessing token\n"
       "2:9 W978 '##' does not produce a valid preprocessing token\n"},
      {"#define e(x, ...) [x, ## __VA_ARGS__]\ne(1,2)", "[1,2]",
       "2:1 W978 '##' does not produce a valid preprocessing token\n"},
      {"#define c(a,b) a##b\nc(/,/) x\nc(/,*) y", "// x /**/ y", "3:6 E939 unterminated comment\n"},
  };
  for (const Row &row : rows) check(row);
}

TEST(Macros, DefinitionsFromOutside)
{
  tdm_test::Settings settings;
  settings.defines = {"A=1", "B", "C=", "f(x)=<x>", "1x", "", "-y=2", "D=1", "D=2", "E=a=b"};
  const Outcome outcome = preprocess({{"main", "A B C f(2) D E"}}, settings);
  EXPECT_EQ(squeezed(outcome.text), "1 1 <2> 2 a=b");
  EXPECT_EQ(outcome.messages, "0:0 E943 illegal macro name in option: \"-D1x\"\n"
                              "0:0 E943 illegal macro name in option: \"-D\"\n"
                              "0:0 E943 illegal macro name in option: \"-D-y=2\"\n"
                              "0:0 W972 macro \"D\" redefined\n");
}

TEST(Macros, DateAndTimeAreThoseOfTheParse)
{
  const std::time_t before = std::time(nullptr);
  const std::string text = squeezed(preprocess("__DATE__ __TIME__").text);
  const std::time_t after = std::time(nullptr);
  bool found = false;
  for (std::time_t t = before; t <= after; ++t) {
    char expected[64];
    std::strftime(expected, sizeof expected, "\"%b %e %Y\" \"%H:%M:%S\"", std::localtime(&t));
    found = found || text == squeezed(expected);
  }
  EXPECT_TRUE(found) << text;
}

TEST(Macros, NestWithoutLimit)
{
  constexpr std::size_t depth = 100000;
  const auto nested = [](const char *definition, const char *open, const char *close) {
    return preprocess(std::string(definition) + "\n" + repeated(open, depth) + "1" +
                      repeated(close, depth));
  };
  EXPECT_EQ(squeezed(nested("#define f(x) x", "f(", ")").text), "1");
  EXPECT_EQ(squeezed(nested("#define f(x) (x+1)", "f(", ")").text),
            repeated("(", depth) + "1" + repeated("+1)", depth));
  EXPECT_EQ(squeezed(nested("#define g f\n#define f(x,y) y x g", "g(", ",+)").text),
            repeated("+ ", depth) + "1" + repeated(" f", depth));
  std::string chain;
  for (std::size_t i = 0; i < depth; ++i)
    chain += "#define A" + std::to_string(i) + " A" + std::to_string(i + 1) + "\n";
  EXPECT_EQ(squeezed(preprocess(chain + "A0").text), "A" + std::to_string(depth));
  EXPECT_EQ(preprocess("#define f(a) " + repeated("a##", depth) + "a\nf(x)").text,
            "\n" + repeated("x", depth + 1) + "\n");
}

TEST(Macros, GrowthBeyondReasonIsCutOff)
{
  std::string empty = "#define a0\n";
  std::string twice = "#define b0 1;\n";
  for (int i = 0; i < 40; ++i) {
    const std::string n = std::to_string(i), next = std::to_string(i + 1);
    empty += "#define a" + next + " a" + n + " a" + n + "\n";
    twice += "#define b" + next + "(x) b" + n + "(x) b" + n + "(x)\n";
  }
  const std::string limit = " E955 macro expansion is too large, the limit is 4194304 tokens\n";
  Outcome outcome = preprocess(empty + "a40 x\na1 y");
  EXPECT_EQ(outcome.messages, "42:1" + limit);
  EXPECT_EQ(squeezed(outcome.text), "x a1 y");
  outcome = preprocess("#define f(x) x x\n" + repeated("f(", 60) + "1" + repeated(")", 60) + "\ny");
  EXPECT_EQ(outcome.messages, "2:1" + limit);
  EXPECT_EQ(squeezed(outcome.text).back(), 'y');
}

} // namespace
