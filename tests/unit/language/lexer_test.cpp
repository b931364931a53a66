// The lexer: types, texts and places of tokens, and what it refuses.
#include <gtest/gtest.h>

#include <antlr/CharScanner.hpp>
#include <antlr/TokenStreamRecognitionException.hpp>

#include <sstream>

#include "language/lexer.h"
#include "language/token.h"
#include "preprocessor/string_pool.h"
#include "text_stream.h"
#include "unit/rows.h"

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

class Lexer : public testing::Test {
protected:
  void SetUp() override { tdm::string_pool_start(); }
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

TEST_F(Lexer, Tokens)
{
  for (const char *table : {"WordsAndSuffixes", "Numbers", "OperatorsTakeTheLongestFirst",
                            "Strings", "WhiteSpaceAndComments", "OtherCharacters"})
    for (const tdm_test::Row &row : tdm_test::rows("language/tokens.json", table))
      EXPECT_EQ(lex(row[0]), row[1]) << row[0];
}

} // namespace
