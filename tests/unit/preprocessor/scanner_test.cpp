// Tokens: what they are made of, where they stand, and what is reported about them.
#include <gtest/gtest.h>

#include "preprocess.h"
#include "unit/rows.h"

namespace {

using tdm_test::Outcome;
using tdm_test::preprocess;
using tdm_test::repeated;
using tdm_test::Row;
using tdm_test::rows;

TEST(Scanner, RecognisesTokens)
{
  for (const Row &row : rows("preprocessor/tokens.json", "RecognisesTokens")) {
    SCOPED_TRACE(row[0]);
    const Outcome outcome = preprocess(row[0]);
    EXPECT_EQ(outcome.tokens, row[1]);
    EXPECT_EQ(outcome.messages, row[2]);
  }
}

// Blocks end where they end: a token that crosses the border of two is the same token.
TEST(Scanner, BlocksLeaveNoTrace)
{
  const std::string line = "ab 12 \"s?\" /* c\n */ <<= y? z\\w \\\n x ?\?( // d\n";
  const Outcome expected = preprocess(line);
  for (std::size_t shift = 32768 - line.size(); shift <= 32768; ++shift) {
    const Outcome outcome = preprocess(std::string(shift - 1, ' ') + "\n" + line);
    ASSERT_EQ(outcome.text.substr(shift), expected.text) << shift;
    ASSERT_NE(
        outcome.tokens.find(
            "63@3:5<<<=> 7@3:9<y> 55@3:10<?> 7@3:12<z> 1@3:13<\\> 7@3:14<w> 7@4:2<x> 19@4:6<[>"),
        std::string::npos)
        << outcome.tokens;
  }
}

TEST(Scanner, LongTokensAreWhole)
{
  const std::string long_text(100000, 'x');
  for (const std::string &token :
       {long_text, "\"" + long_text + "\"", "/*" + repeated("ab\n", 50000) + "*/", "//" + long_text,
        "0x" + std::string(100000, 'a'), std::string(100000, ' '), "a" + repeated("\\\n", 50000)})
    EXPECT_EQ(preprocess(token + "\n;").text.size(), token.front() == 'a' ? 4 : token.size() + 3)
        << token.substr(0, 10);
}

} // namespace
