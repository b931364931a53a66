// Macros: definitions, expansion, # and ##, and every message that they can provoke.
#include <gtest/gtest.h>

#include <ctime>

#include "preprocess.h"
#include "unit/rows.h"

namespace {

using tdm_test::Outcome;
using tdm_test::preprocess;
using tdm_test::repeated;
using tdm_test::Row;
using tdm_test::rows;
using tdm_test::squeezed;

/// Source, the text with white space squeezed, the messages.
void check(const Row &row)
{
  SCOPED_TRACE(row[0]);
  const Outcome outcome = preprocess(row[0]);
  EXPECT_EQ(squeezed(outcome.text), row[1]);
  EXPECT_EQ(outcome.messages, row[2]);
}

TEST(Macros, ExpandAsTheStandardHasIt)
{
  for (const Row &row : rows("preprocessor/macros.json", "ExpandAsTheStandardHasIt")) check(row);
}

TEST(Macros, ReportFaults)
{
  for (const Row &row : rows("preprocessor/macros.json", "ReportFaults")) check(row);
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

// A list of arguments that is done with is kept in one piece, whose parenthesis a name in front of
// it may still find.
TEST(Macros, ListsThatMacrosMakeAreArguments)
{
  const std::string definitions = "#define nest(p) [p]\n#define id(p) nest(p)\n"
                                  "#define twice(p) {id(p)}\n#define ends(a,b,c,d) <a d>\n"
                                  "#define LIST (1, 2, 3, 4)\n";
  const auto expanded = [&](const char *call) {
    const Outcome outcome = preprocess(definitions + call);
    EXPECT_EQ(outcome.messages, "");
    return squeezed(outcome.text);
  };
  EXPECT_EQ(expanded("nest(ends LIST)"), "[<1 4>]");
  EXPECT_EQ(expanded("id(ends LIST)"), "[<1 4>]");
  EXPECT_EQ(expanded("twice(ends LIST - ends LIST)"), "{[<1 4> - <1 4>]}");
  EXPECT_EQ(expanded("twice( (ends LIST) ends  LIST )"), "{[(<1 4>) <1 4>]}");
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

  // A string that doubles with each #, made one of a hundred thousand of them.
  outcome = preprocess("#define S(x) #x\n#define r(x) S(x)\n#define d(x) x x x x x x x x x x\nr(" +
                       repeated("d(", 5) + repeated("r(", 18) + "1" + repeated(")", 24) + "\ny");
  EXPECT_EQ(outcome.messages, "4:1" + limit);
  EXPECT_EQ(squeezed(outcome.text), "y");
}

} // namespace
