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
#include <set>
#include <sstream>

#include "language/lexer.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/preprocessor.h"
#include "preprocessor/source_files.h"
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

// What the preprocessor tells of its files, and its messages.
std::string notes()
{
  std::ostringstream out;
  for (const tdm::SourceFile &file : tdm::source_files())
    out << "\nfile " << file.name << " of " << file.includer << ':' << file.include.line
        << " skips " << file.skip_from << '-' << file.skip_to;
  for (const tdm::DiagReport &report : tdm::diag_reports())
    out << "\nmessage "
        << tdm::diag_list(report.letter)[static_cast<std::size_t>(report.index)].text;
  return out.str();
}

std::string read(const std::string &file, bool characters_only)
{
  tdm::preprocessor_start();
  std::string result;
  std::set<std::string> dependencies;
  {
    TDMPreprocessedFileInputStream stream({file}, &dependencies);
    CharactersOnly characters(stream);
    result = characters_only ? tokens_of(characters) : tokens_of(stream);
  }
  result += notes();
  for (const std::string &name : dependencies) result += "\ndepends on " + name;
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

unsigned chosen_seed()
{
  const char *const wanted = std::getenv("TDM_SEED");
  const unsigned seed = wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 0))
                                          : std::random_device()();
  std::printf("seed %u\n", seed);
  return seed;
}

TEST(WholeTokens, AgreeWithCharactersOnRandomTexts)
{
  const unsigned seed = chosen_seed();
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

/// Writes headers with guards of all kinds, most of them plain, and files that include them.
class RandomHeaders {
public:
  explicit RandomHeaders(unsigned seed) : random_(seed) { fs::create_directory(folder_ + "/sub"); }
  ~RandomHeaders() { fs::remove_all(folder_); }

  std::string write()
  {
    for (int i = 0; i < 4; ++i) write_header("sub/h" + std::to_string(i), i);
    std::string main;
    for (std::size_t length = 4 + random_() % 12; length > 0; --length)
      main += one_of({include("sub/"), include("sub/"), include("sub/"), include("./sub/../sub/"),
                      include("nowhere/"), "a 1\n", "#undef G" + digit() + "\n",
                      "#line 1 \"" + folder_ + "/sub/h" + digit() + "\"\n", "#define G1\n",
                      "F(1,\n" + include("sub/") + "2)\n", "\n  \n", "#pragma once\n",
                      "F(1,\n" + include("sub/") + include("sub/") + "2)\n"});
    return put("main", "#define F(x, y) x y\n" + main);
  }

private:
  std::string one_of(std::vector<std::string> all) { return all[random_() % all.size()]; }
  // The first one as a rule.
  std::string mostly(std::vector<std::string> all)
  {
    return random_() % 3 != 0 ? all.front() : one_of(std::move(all));
  }
  std::string digit() { return std::to_string(random_() % 4); }
  std::string include(const std::string &folder)
  {
    return "#include \"" + folder + "h" + digit() + "\"" + mostly({"", " // c", " x"}) + "\n";
  }

  void write_header(const std::string &name, int number)
  {
    const std::string guard = "G" + std::to_string(number);
    const std::string before = mostly(
        {"", "/* c */\n", "// c\n\n", "/* a\n b */ ", " \t\n", "b\n", "/* /* */\n", "// c \\\n\n",
         "#define Q\n", "/* a ?\?/\n */\n", "/*/ */\n", "// \xe4\n", "/* \xc3\xa4 */ "});
    const std::string opening =
        mostly({"#ifndef ", " # ifndef ", "#ifndef/**/", "#ifndef \\\n", "#if !defined "});
    const std::string rest = mostly({"\n", " // c\n", " /* c\n */\n", " x\n", "/* */ /* */\n"});
    const std::string body = mostly({"#define " + guard + "\n" + include(""), "c\n",
                                     "#define " + guard + "\n#if 0\nd\n#else\ne\n#endif\n"});
    const std::string closing =
        mostly({"#endif\n", "#endif /* G */\n", "\t#endif // G\n", "#endif x\n",
                "#else\nf\n#endif\n", "#endif", "#endif /* a\n */\n", "#elif 0\n#endif\n"});
    const std::string behind =
        mostly({"", "\n\n", "/* c\n */\n", "// c", "g\n", "// c\n", "#undef " + guard + "\n",
                "#ifndef Q\nr\n#endif\n", "/* \xff */\n"});
    put(name, before + opening + guard + rest + body + closing + behind);
  }

  std::string put(const std::string &name, const std::string &text)
  {
    const std::string file = folder_ + "/" + name;
    std::ofstream(file, std::ios::binary) << text;
    return file;
  }

  std::mt19937 random_;
  std::string pattern_ = testing::TempDir() + "headersXXXXXX";
  std::string folder_ = ::mkdtemp(pattern_.data());
};

// Behind white space the short road leaves headers out that would give nothing.
TEST(WholeTokens, AgreeWithCharactersOnGuardedHeaders)
{
  RandomHeaders headers(chosen_seed());
  for (int round = 0; round < 600 && !HasFailure(); ++round) compare(headers.write());
}

} // namespace
