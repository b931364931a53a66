// The lexer: types, texts and places of tokens, and what it refuses.
#include <gtest/gtest.h>

#include <antlr/CharScanner.hpp>
#include <antlr/TokenStreamRecognitionException.hpp>

#include <sstream>

#include "language/lexer.h"
#include "language/token.h"
#include "preprocessor/string_pool.h"
#include "text_stream.h"

namespace {

/// Each token as `type:text@line/column`, EOF as `1@...`; a failure ends the list.
std::string lex(std::string_view text)
{
  TextStream stream(text);
  TDMLexer lexer(stream);
  std::string result;
  try {
    for (int type = 0; type != TDMTokenTypes::EOF_;) {
      const antlr::RefToken token = lexer.nextToken();
      type = token->getType();
      result += (result.empty() ? "" : " ") + std::to_string(type);
      if (type != TDMTokenTypes::EOF_) result += ':' + token->getText();
      result += '@' + std::to_string(token->getLine()) + '/' + std::to_string(token->getColumn());
    }
  } catch (const antlr::TokenStreamRecognitionException &failure) {
    result += (result.empty() ? "" : " ") + failure.getMessage() + '@' +
              std::to_string(failure.getLine()) + '/' + std::to_string(failure.getColumn());
  }
  return result;
}

struct Row {
  std::string text;
  std::string expected;
};

class Lexer : public testing::Test {
protected:
  void SetUp() override { tdm::string_pool_start(); }

  static void expect(const std::vector<Row> &rows)
  {
    for (const Row &row : rows) EXPECT_EQ(lex(row.text), row.expected) << row.text;
  }
};

TEST_F(Lexer, KeywordsHaveTheirTypesInOrder)
{
  std::istringstream words(
      "memory type reserved mau size speed priority exec_priority write_mode setuptime "
      "holdtime cycles area read_ports write_ports readwrite_ports write_unit rom ram nvram "
      "blockram bus address_width wishbone width map dest dest_dbits dest_offset src_dbits "
      "src_offset bank dest_bank space low_to_high high_to_low architecture extends page "
      "direction address_literal_space id align page_size stack heap copytable direct_init "
      "vector_table fill min_size grows fixed copy_unit table symbol vector_size "
      "id_symbol_prefix run_addr template template_symbol vector_prefix no_inline copy "
      "vector optional loop stub switch args prefix endianness core copytable_space import "
      "space_id_offset derivative processor start_address section_layout group "
      "allow_cross_references create_section attributes nocopy load_addr clustered "
      "contiguous ordered overlay mem section struct select ref_tree blocksize overflow if "
      "else alloc_allowed absolute ranged memcopy section_setup modify "
      "prohibit_references_to input addressof defined exists max min sizeof checksum crc32w "
      "sect big little crc32 tag");
  int type = 56;
  for (std::string word; words >> word; ++type) {
    EXPECT_EQ(lex(word),
              std::to_string(type) + ':' + word + "@1/1 1@1/" + std::to_string(word.size() + 1));
    EXPECT_EQ(tdm::token_names()[type], '"' + word + '"');
    EXPECT_EQ(lex(word + "_").substr(0, 3), "48:") << word;
  }
  EXPECT_EQ(type, 176);
}

TEST_F(Lexer, DisplayStrings)
{
  const char *const names[] = {"<0>", "EOF", "<2>", "NULL_TREE_LOOKAHEAD", "WS", "LBRACK"};
  for (int type = 0; type < 6; ++type) EXPECT_STREQ(tdm::token_names()[type], names[type]);
  const std::pair<int, const char *> others[] = {{7, "{"},          {10, ")"},
                                                 {11, "EQUALS"},    {20, "COMPARE_EQUAL"},
                                                 {31, "LESS"},      {41, "DOLLAR"},
                                                 {45, "KIBI"},      {48, "an identifier"},
                                                 {49, "KEY_RANGE"}, {53, "quoted string"},
                                                 {55, "ML_COMMENT"}};
  for (const auto &[type, name] : others) EXPECT_STREQ(tdm::token_names()[type], name);
}

TEST_F(Lexer, WordsAndSuffixes)
{
  expect({
      {"memory Memory memory.xx memory2",
       "56:memory@1/1 48:Memory@1/8 48:memory.xx@1/15 48:memory2@1/25 1@1/32"},
      {"aa.bb core.cpu_1 _aa", "48:aa.bb@1/1 48:core.cpu_1@1/7 48:_aa@1/18 1@1/21"},
      {"kk k1 k_ k.xx", "48:kk@1/1 48:k1@1/4 48:k_@1/7 48:k.xx@1/11 1@1/14"},
      {"4k 4 M k1g;", "51:4@1/1 45:k@1/3 51:4@1/5 46:M@1/7 48:k1g@1/8 38:;@1/12 1@1/12"},
      {"k;k", "45:k@1/1 38:;@1/3 48:k@1/3 1@1/4"},
      {"k", "48:k@1/1 1@1/2"},
      {"gg g+m", "48:gg@1/1 47:g@1/5 13:+@1/6 48:m@1/7 1@1/7"},
      {"aa..bb", "unexpected char: '.'@1/4"},
      {"aa.1", "unexpected char: '1'@1/4"},
      {"aa ..bb", "48:aa@1/1 49:..@1/4 48:bb@1/6 1@1/8"},
      {"a.", "unexpected char: EOF@1/3"},
  });
}

TEST_F(Lexer, Numbers)
{
  expect({
      {"0 00 007 08", "50:0@1/1 50:00@1/3 50:007@1/6 50:0@1/10 51:8@1/12 1@1/12"},
      {"10 0129 16k", "51:10@1/1 50:012@1/4 51:9@1/8 51:16@1/9 48:k@1/12 1@1/12"},
      {"0x1F 0XaBg", "52:0x1F@1/1 52:0XaB@1/6 48:g@1/11 1@1/11"},
      {"0xg", "unexpected char: 'g'@1/3"},
      {"0x", "unexpected char: EOF@1/3"},
      {"1..4", "51:1@1/1 49:..@1/2 51:4@1/4 1@1/5"},
      {"1k..2k", "51:1@1/1 unexpected char: '.'@1/5"},
  });
}

TEST_F(Lexer, OperatorsTakeTheLongestFirst)
{
  expect({
      {"= == = = === =",
       "11:=@1/1 20:==@1/3 11:=@1/7 11:=@1/9 20:==@1/10 11:=@1/12 11:=@1/15 1@1/15"},
      {":= : += + -= - *= * /= / != !",
       "12::=@1/1 37::@1/5 14:+=@1/6 13:+@1/10 16:-=@1/11 15:-@1/15 17:*=@1/16 25:*@1/20 "
       "18:/=@1/21 26:/@1/25 19:!=@1/26 39:!@1/30 1@1/30"},
      {"|| | && & ~ % ^",
       "21:||@1/1 35:|@1/5 22:&&@1/6 23:&@1/10 24:~@1/12 27:%@1/14 34:^@1/16 1@1/16"},
      {">> > >= << < <= >>= <<=", "28:>>@1/1 30:>@1/5 32:>=@1/6 29:<<@1/9 31:<@1/13 33:<=@1/14 "
                                  "28:>>@1/17 11:=@1/19 29:<<@1/21 11:=@1/23 1@1/24"},
      {"[ ] { } ( ) , ; ? $", "5:[@1/1 6:]@1/4 7:{@1/6 8:}@1/8 9:(@1/10 10:)@1/12 36:,@1/14 "
                              "38:;@1/16 40:?@1/18 41:$@1/20 1@1/20"},
      {".. .", "49:..@1/1 expecting ''.'', found 'EOF'@1/6"},
      {"--1", "15:-@1/1 15:-@1/3 51:1@1/4 1@1/4"},
      {"a:b=c", "48:a@1/1 37::@1/3 48:b@1/4 11:=@1/5 48:c@1/6 1@1/6"},
  });
}

TEST_F(Lexer, Strings)
{
  expect({
      {"\"\" \"a\\\"b\" \"\\\\\" \"\\[\\]\\'\"",
       "53:\"\"@1/1 53:\"a\\\"b\"@1/4 53:\"\\\\\"@1/11 53:\"\\[\\]\\'\"@1/16 1@1/24"},
      {"\"a\tb\"", "53:\"a\tb\"@1/1 1@1/6"},
      {"\"a\\b\"", "expecting ''\"'', found ''\\''@1/3"},
      {"\"abc", "expecting ''\"'', found 'EOF'@1/5"},
      {"\"ab\n\"", "expecting ''\"'', found '0x0A'@1/4"},
      {"\"ab\\", "expecting ''\"'', found ''\\''@1/4"},
      {"\"a\303\"", "expecting ''\"'', found '0xC3'@1/3"},
      {std::string("\"a\0b\"", 5), std::string("53:\"a\0b\"@1/1 1@1/6", 18)},
  });
}

TEST_F(Lexer, WhiteSpaceAndComments)
{
  expect({
      {"aa\nbb\r\ncc\rdd", "48:aa@1/1 48:bb@2/1 48:cc@3/1 48:dd@3/4 1@3/6"},
      {"aa \t\f bb", "48:aa@1/1 48:bb@1/7 1@1/9"},
      {"aa /* b\n * / */ cc", "48:aa@1/1 48:cc@2/9 1@2/11"},
      {"// aa\nbb", "48:bb@2/1 1@2/3"},
      {"/**/aa/***/bb", "48:aa@1/5 48:bb@1/12 1@1/14"},
      {"aa /* bb", "48:aa@1/1 expecting ''*'', found 'EOF'@1/10"},
      {"aa /* *", "48:aa@1/1 expecting ''/'', found 'EOF'@1/9"},
      {"aa // bb", "48:aa@1/1 unexpected char: EOF@1/9"},
      {"// \303\naa", "48:aa@2/1 1@2/3"},
      {"/* \303 */", "expecting ''*'', found '0xC3'@1/4"},
      {"aa /* b /* c */ dd */", "48:aa@1/1 48:dd@1/17 25:*@1/21 26:/@1/22 1@1/22"},
  });
}

TEST_F(Lexer, OtherCharacters)
{
  expect({
      {"#", "unexpected char: '#'@1/1"},
      {"aa #", "48:aa@1/1 unexpected char: '#'@1/5"},
      {"\v", "unexpected char: 0x0B@1/1"},
      {"'", "unexpected char: '''@1/1"},
      {"@", "unexpected char: '@'@1/1"},
      {"`", "unexpected char: '`'@1/1"},
      {"\\ ", "unexpected char: '\\'@1/1"},
      {"\303\266", "unexpected char: 0xC3@1/1"},
      {"\377", "unexpected char: 0xFF@1/1"},
      {std::string("\0", 1), "unexpected char: 0x00@1/1"},
      {"\001", "unexpected char: 0x01@1/1"},
  });
}

} // namespace
