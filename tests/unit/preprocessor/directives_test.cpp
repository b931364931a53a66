// Directives: conditions, conditionals, includes, lines, and every message that they can provoke.
#include <gtest/gtest.h>

#include "preprocess.h"
#include "preprocessor/conditionals.h"
#include "unit/rows.h"

namespace {

using namespace std::string_literals;
using tdm_test::File;
using tdm_test::Outcome;
using tdm_test::preprocess;
using tdm_test::repeated;
using tdm_test::Row;
using tdm_test::rows;
using tdm_test::Settings;
using tdm_test::squeezed;

void check(const Row &row)
{
  SCOPED_TRACE(row[0]);
  const Outcome outcome = preprocess(row[0]);
  EXPECT_EQ(squeezed(outcome.text), row[1]);
  EXPECT_EQ(outcome.messages, row[2]);
}

TEST(Conditions, Evaluate)
{
  // The messages stand there without the positions.
  for (const Row &row : rows("preprocessor/directives.json", "Evaluate")) {
    SCOPED_TRACE(row[0]);
    const Outcome outcome = preprocess("#if " + row[0] + "\nyes\n#else\nno\n#endif\n#if 0\n#elif " +
                                       row[0] + "\nyes\n#else\nno\n#endif");
    EXPECT_EQ(squeezed(outcome.text), row[1] == "true" ? "yes yes" : "no no");
    std::string messages;
    for (std::size_t at = 0; at < outcome.messages.size();) {
      const std::size_t begin = outcome.messages.find(' ', at) + 1;
      at = outcome.messages.find('\n', at) + 1;
      messages += outcome.messages.substr(begin, at - begin);
    }
    EXPECT_EQ(messages, repeated(row[2], 2));
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
  for (const Row &row : rows("preprocessor/directives.json", "KeepConditionals")) check(row);
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
  for (const Row &row : rows("preprocessor/directives.json", "LineChangesPositions")) {
    SCOPED_TRACE(row[0]);
    const Outcome outcome = preprocess({{"main", row[0]}}, settings);
    EXPECT_EQ(outcome.tokens, row[1]);
    EXPECT_EQ(outcome.messages, row[2]);
  }
}

// Tokens, messages, and the name and content of each file.
TEST(Directives, IncludeFiles)
{
  Settings settings;
  settings.positions_with_file = true;
  for (const Row &row : rows("preprocessor/directives.json", "IncludeFiles")) {
    SCOPED_TRACE(row[3]);
    std::vector<File> files;
    for (std::size_t i = 2; i < row.size(); i += 2) files.emplace_back(row[i], row[i + 1]);
    const Outcome outcome = preprocess(files, settings);
    EXPECT_EQ(outcome.tokens, row[0]);
    EXPECT_EQ(outcome.messages, row[1]);
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
