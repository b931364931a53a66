// Tokens: what they are made of, where they stand, and what is reported about them.
#include <gtest/gtest.h>

#include "preprocess.h"

namespace {

using namespace std::string_literals;
using tdm_test::Outcome;
using tdm_test::preprocess;
using tdm_test::repeated;

struct Row {
  std::string source;
  std::string tokens;
  const char *messages;
};

TEST(Scanner, RecognisesTokens)
{
  const Row rows[] = {
      {"a _b c9 L Lx", "7@1:1<a> 7@1:3<_b> 7@1:6<c9> 7@1:9<L> 7@1:11<Lx>", ""},
      {"0 12 0x1e+1 1e+1 1.5 .5 1..4 0x1p-2 3u 1e+e-",
       "9@1:1<0> 9@1:3<12> 9@1:6<0x1e> 37@1:10<+> 9@1:11<1> 10@1:13<1e+1> 10@1:18<1.5> "
       "10@1:22<.5> 10@1:25<1..4> 10@1:30<0x1p-2> 9@1:37<3u> 10@1:40<1e+e->",
       ""},
      {"\"s\" 'c' L\"w\" L'x' \"a?b\" \"'\" '\"'",
       "11@1:1<\"s\"> 12@1:5<'c'> 5@1:9<L\"w\"> 6@1:14<L'x'> 11@1:19<\"a?b\"> 11@1:25<\"'\"> "
       "12@1:29<'\"'>",
       ""},
      {"[<:]:>(){<%}%>",
       "19@1:1<[> 19@1:2<<:> 21@1:4<]> 21@1:5<:>> 23@1:7<(> 24@1:8<)> 25@1:9<{> "
       "25@1:10<<%> 27@1:12<}> 27@1:13<%>>",
       ""},
      {". .. ... -> ++ -- & * + - ~ !",
       "29@1:1<.> 30@1:3<..> 31@1:6<...> 32@1:10<->> 33@1:13<++> 34@1:16<--> 35@1:19<&> 36@1:21<*> "
       "37@1:23<+> 38@1:25<-> 39@1:27<~> 40@1:29<!>",
       ""},
      {"/ % << >> < <= > >= == != ^ | && || ? : =",
       "41@1:1</> 42@1:3<%> 43@1:5<<<> 44@1:8<>>> 45@1:11<<> 46@1:13<<=> 47@1:16<>> 48@1:18<>=> "
       "49@1:21<==> 50@1:24<!=> 51@1:27<^> 52@1:29<|> 53@1:31<&&> 54@1:34<||> 55@1:37<?> "
       "56@1:39<:> 57@1:41<=>",
       ""},
      {"x*= /= %= += -= <<= >>= &= ^= |= , x# %: %:% ## %:%: ;",
       "7@1:1<x> 58@1:2<*=> 59@1:5</=> 60@1:8<%=> 61@1:11<+=> 62@1:14<-=> 63@1:17<<<=> "
       "64@1:21<>>=> 65@1:25<&=> 66@1:28<^=> 67@1:31<|=> 68@1:34<,> 7@1:36<x> 69@1:37<#> "
       "69@1:39<%:> 71@1:42<%:%> 72@1:46<##> 72@1:49<%:%:> 74@1:54<;>",
       ""},
      {"@ ` $ \x01 \x80\xff", "1@1:1<@> 1@1:3<`> 1@1:5<$> 1@1:7<\x01> 1@1:9<\x80> 1@1:10<\xff>",
       ""},
      {"a\0b \"c\0d /*\0*/ e"s,
       "7@1:1<a> 1@1:2<\0> 7@1:3<b> 11@1:5<\"c\"> 1@1:7<\0> 7@1:8<d> 7@1:16<e>"s,
       "1:5 E941 unterminated string constant\n"},
      {"a\\b \\ \\u00e9x y\\U000000A0z",
       "7@1:1<a> 1@1:2<\\> 7@1:3<b> 1@1:5<\\> 7@1:7<\\u00e9x> 7@1:15<y\\U000000A0z>", ""},
      {"a /* b\n */ c // d\ne", "7@1:1<a> 7@2:5<c> 7@3:1<e>", ""},
      {"a\\\nb c\\\n\\\nd /* \\\n */ e", "7@1:1<ab> 7@2:3<cd> 7@5:5<e>", ""},
      {"a\rb\x1a\r\nc", "7@1:1<ab> 7@2:1<c>", ""},
      {"a?b a?\?b ?\?x",
       "7@1:1<a> 55@1:2<?> 7@1:3<b> 7@1:5<a> 55@1:6<?> 55@1:7<?> 7@1:8<b> "
       "55@1:10<?> 55@1:11<?> 7@1:12<x>",
       ""},
      {"?\?( ?\?) ?\?< ?\?> ?\?! ?\?' ?\?- ?\?/x",
       "19@1:3<[> 21@1:7<]> 25@1:11<{> 27@1:15<}> 52@1:19<|> 51@1:23<^> 39@1:27<~> 1@1:31<\\> "
       "7@1:32<x>",
       "1:1 W976 trigraph sequence ?\?( replaced by [\n1:5 W976 trigraph sequence ?\?) replaced by "
       "]\n"
       "1:9 W976 trigraph sequence ?\?< replaced by {\n1:13 W976 trigraph sequence ?\?> replaced "
       "by "
       "}\n1:17 W976 trigraph sequence ?\?! replaced by |\n1:21 W976 trigraph sequence ?\?' "
       "replaced "
       "by ^\n1:25 W976 trigraph sequence ?\?- replaced by ~\n1:29 W976 trigraph sequence ?\?/ "
       "replaced by \\\n"},
      {"\"a?\?/\nb\" ?\?\?=", "11@1:1<\"ab\"> 55@2:4<?> 69@2:7<#>",
       "1:3 W976 trigraph sequence ?\?/ replaced by \\\n"
       "2:5 W976 trigraph sequence ?\?= replaced by #\n"},
      {"\"abc\n'd\nL\"e\nL'f\n\"g\\\"",
       "11@1:1<\"abc\"> 12@2:1<'d'> 5@3:1<L\"e\"> 6@4:1<L'f'> "
       "11@5:1<\"g\\\"\">",
       "1:1 E941 unterminated string constant\n2:1 E938 unterminated character constant\n"
       "3:1 E941 unterminated string constant\n4:1 E938 unterminated character constant\n"
       "5:1 E941 unterminated string constant\n"},
      {"\"\\a\\b\\t\\n\\v\\f\\r\\\"\\'\\?\\\\\\17\\xaF\\u0024\\U0001F600\"",
       "11@1:1<\"\\a\\b\\t\\n\\v\\f\\r\\\"\\'\\?\\\\\\17\\xaF\\u0024\\U0001F600\">", ""},
      {"\"\\[\\q\\1239\\18\\x\\u12\\u0041\\uD800\\U00000060\"",
       "11@1:1<\"\\[\\q\\1239\\18\\x\\u12\\u0041\\uD800\\U00000060\">",
       "1:2 W971 illegal escape sequence\n1:4 W971 illegal escape sequence\n"
       "1:6 W977 octal escape sequence terminated by decimal digit\n"
       "1:11 W977 octal escape sequence terminated by decimal digit\n"
       "1:14 E927 no hex digits following \\x\n1:16 E945 invalid universal character name\n"
       "1:20 E945 invalid universal character name\n1:26 E945 invalid universal character name\n"},
      {"a\\\\\nu00e9 b\\\\\n\\\nU000000e9 c\\\\\nx",
       "7@1:1<a\\u00e9> 7@2:7<b\\U000000e9> 7@4:11<c> 1@4:12<\\> 7@5:1<x>", ""},
      {"ab\\u12x", "7@1:1<ab\\u12x>", "1:3 E945 invalid universal character name\n"},
      {"/* a /* b */ c /*/**/ d", "7@1:14<c> 7@1:23<d>",
       "1:6 W979 \"/*\" inside comment\n1:18 W979 \"/*\" inside comment\n"},
      {"/* /\\\n* */ a", "7@2:6<a>", "1:4 W979 \"/*\" inside comment\n"},
      {"a\n  /* b\n", "7@1:1<a>", "2:3 E939 unterminated comment\n"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.source);
    const Outcome outcome = preprocess(row.source);
    EXPECT_EQ(outcome.tokens, row.tokens);
    EXPECT_EQ(outcome.messages, row.messages);
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
