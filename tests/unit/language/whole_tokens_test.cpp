// The lexer has a short road for whole tokens of the preprocessor. It must make no difference: here
// texts are read on both roads, and types, texts, places and failures are compared. The long road
// is taken through a stream that hands the same characters on, but no tokens.
#include <gtest/gtest.h>

#include <unistd.h>

#include <antlr/CharScanner.hpp>
#include <antlr/TokenStreamRecognitionException.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "language/lexer.h"
#include "preprocessor/preprocessor.h"
#include "unit/rows.h"

namespace {

namespace fs = std::filesystem;

class CharactersOnly final : public TDMInputBuffer {
public:
  explicit CharactersOnly(TDMInputBuffer &stream) : stream_(stream) {}
  int getChar() override { return stream_.getChar(); }
  int getLine() const override { return stream_.getLine(); }
  int getColumn() const override { return stream_.getColumn(); }
  const char *getFile() const override { return stream_.getFile(); }

private:
  TDMInputBuffer &stream_;
};

std::string tokens_of(TDMInputBuffer &stream)
{
  TDMLexer lexer(stream);
  std::ostringstream out;
  try {
    tdm::Lexeme token;
    for (int behind_end = 0; behind_end < 2; behind_end += token.type == TDMTokenTypes::EOF_) {
      lexer.scan(token);
      out << token.location.file << ':' << token.location.line << ':' << token.location.column
          << ' ' << token.type << ' ' << token.characters() << '\n';
    }
  } catch (const antlr::TokenStreamRecognitionException &failure) {
    out << failure.getFilename() << ':' << failure.getLine() << ':' << failure.getColumn() << ' '
        << failure.getMessage() << '\n';
  }
  out << "then " << stream.getLine() << ':' << stream.getColumn();
  return out.str();
}

std::string read(const std::string &file, bool characters_only)
{
  tdm::preprocessor_start();
  std::string result;
  {
    TDMPreprocessedFileInputStream stream({file}, nullptr);
    CharactersOnly characters(stream);
    result = characters_only ? tokens_of(characters) : tokens_of(stream);
  }
  tdm::preprocessor_end();
  return result;
}

/// Whether both roads agree; tells how many tokens there were.
std::size_t compare(const std::string &file)
{
  const std::string expected = read(file, true);
  EXPECT_EQ(read(file, false), expected) << file;
  return static_cast<std::size_t>(std::count(expected.begin(), expected.end(), '\n'));
}

TEST(WholeTokens, AgreeWithCharactersOnAllCasesAndExamples)
{
  std::size_t tokens = 0;
  for (const char *folder : {"/tests/cases", "/examples"})
    for (const auto &entry : fs::recursive_directory_iterator(std::string(TDM_SOURCE_DIR) + folder))
      if (entry.is_regular_file() && entry.path().extension() != ".py")
        tokens += compare(entry.path().string());
  EXPECT_GT(tokens, 20000U);
}

TEST(WholeTokens, AgreeWithCharactersOnRandomTexts)
{
  const char *const wanted = std::getenv("TDM_SEED");
  const unsigned seed = wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 0))
                                          : std::random_device()();
  std::printf("seed %u\n", seed);
  const tdm_test::Row pieces = tdm_test::rows("language/tokens.json", "Pieces").front();
  std::mt19937 random(seed);
  const std::string file =
      testing::TempDir() + "whole_tokens_" + std::to_string(::getpid()) + ".tdm";
  for (int round = 0; round < 1500 && !HasFailure(); ++round) {
    std::ofstream out(file, std::ios::binary);
    out << "#define O 12\n#define F(x) x x.x x/**/k\n#define P(x, y) x ## y x\n"
           "#define S(x) #x\n#define B(x) \"s\" 1 x\n";
    for (int length = static_cast<int>(random() % 30); length >= 0; --length) {
      // Mostly texts that can be read to their end.
      const std::string &piece = pieces[random() % pieces.size()];
      out << piece << (random() % 3 == 0 ? "" : " ");
    }
    out.close();
    compare(file);
  }
  fs::remove(file);
}

} // namespace
