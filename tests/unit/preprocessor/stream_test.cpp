// The stream as a whole: which files are found, in what order they come, what the lexer sees of
// them, and that one input leaves nothing behind for the next.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

#include "common/failures.h"
#include "preprocess.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/conditionals.h"
#include "preprocessor/path_join.h"
#include "preprocessor/preprocessed_file_input_stream.h"
#include "preprocessor/preprocessor.h"
#include "preprocessor/source_files.h"
#include "unit/rows.h"

namespace {

using namespace std::string_literals;
using tdm_test::Outcome;
using tdm_test::preprocess;
using tdm_test::Settings;
using tdm_test::squeezed;

TEST(PathJoin, FollowsItsRules)
{
  for (const tdm_test::Row &row : tdm_test::rows("preprocessor/paths.json", "FollowsItsRules"))
    EXPECT_EQ(path_join(row[0], row[1]), row[2]) << row[0] << " + " << row[1];
}

TEST(Stream, ReadsFilesInOrderAsOneInput)
{
  Settings settings;
  settings.inputs = {"a", "empty", "b", "c"};
  settings.positions_with_file = true;
  const Outcome outcome = preprocess({{"a", "#define A 1\n#if A\nx"},
                                      {"empty", ""},
                                      {"b", "A\n#include \"d\"\n/*"},
                                      {"c", "y"},
                                      {"d", "z\n#endif"}},
                                     settings);
  EXPECT_EQ(outcome.text, "\n\nx\n1\n\nz\n\n/*\n*/y\n");
  EXPECT_EQ(outcome.tokens, "7@a:3:1<x> 9@b:1:1<1> 7@d:1:1<z> 7@c:1:1<y>");
  EXPECT_EQ(outcome.messages, "b:3:1 E939 unterminated comment\n");
  EXPECT_EQ(outcome.dependencies, (std::vector<std::string>{"a", "b", "c", "d", "empty"}));
}

TEST(Stream, FailsBeforeTheFirstFileIsReadWhenOneIsMissing)
{
  Settings settings;
  settings.inputs = {"a", "none"};
  Outcome outcome = preprocess({{"a", "#error no\n"}}, settings);
  EXPECT_EQ(outcome.failure, "cannot open \"none\"");
  EXPECT_EQ(outcome.messages, "");
  EXPECT_TRUE(outcome.dependencies.empty());
  settings.inputs = {"d"};
  outcome = preprocess({{"d/x", ""}}, settings);
  EXPECT_EQ(outcome.failure, "cannot open \"d\"");
  EXPECT_NE(outcome.messages.find("E982 the file d could not be opened"), std::string::npos);
}

// The memo that passes over known groups changes no token and no line number, however often.
TEST(Stream, ReadsAGuardedFileTenThousandTimes)
{
  const std::vector<tdm_test::File> files = {
      {"main", tdm_test::repeated("#include \"g\"\nm __LINE__\n", 10000)},
      {"g",
       "#ifndef G\n#define G 1\n/* c\n */ x\n#if 0\ny\\\n#else\nz\n#endif\n#endif\n__LINE__\n"}};
  Settings settings;
  settings.positions_with_file = true;
  const Outcome with = preprocess(files, settings);
  tdm::skip_memo_enable(false);
  const Outcome without = preprocess(files, settings);
  tdm::skip_memo_enable(true);
  EXPECT_TRUE(with.tokens == without.tokens); // too long to be shown
  EXPECT_TRUE(with.tokens.ends_with(" 9@g:11:1<11> 7@main:20000:1<m> 9@main:20000:3<20000>"));
}

TEST(Stream, FilesThatMultiplyComeToAnEnd)
{
  const std::size_t limit = std::exchange(tdm::source_files_limit, 100);
  const Outcome outcome = preprocess("#include \"main\"\nx\n#include \"main\"\n");
  tdm::source_files_limit = limit;
  EXPECT_EQ(outcome.messages, "1:1 E957 too many files included, the limit is 100\n");
  EXPECT_EQ(std::count(outcome.text.begin(), outcome.text.end(), 'x'), 100);
}

// Reads one file to its end; all of its text.
std::string read_all(const std::string &name)
{
  std::string text;
  try {
    TDMPreprocessedFileInputStream stream({name}, nullptr);
    for (int c; (c = stream.getChar()) != -1;) text += static_cast<char>(c);
  } catch (TDMFileException *failure) {
    text = failure->text();
    delete failure;
  }
  return text;
}

class StreamInDirectory : public testing::Test {
protected:
  StreamInDirectory()
  {
    std::string pattern = (std::filesystem::temp_directory_path() / "tdm_ppXXXXXX").string();
    directory_ = ::mkdtemp(pattern.data());
    for (const char *name : {"one", "two", "three"})
      std::filesystem::create_directory(directory_ + "/" + name);
    tdm::preprocessor_start();
  }
  ~StreamInDirectory() override
  {
    tdm::preprocessor_end();
    ::unsetenv("TDM PARSERINC");
    std::filesystem::remove_all(directory_);
  }

  void write(const std::string &name, const std::string &content) const
  {
    std::ofstream(directory_ + "/" + name, std::ios::binary) << content;
  }

  std::string directory_;
};

TEST_F(StreamInDirectory, SearchesDirectoriesInOrder)
{
  write("one/a", "1");
  write("two/a", "2");
  write("two/b", "3");
  write("three/c", "4");
  EXPECT_EQ(read_all("a"), "cannot open \"a\"");
  EXPECT_EQ(read_all(directory_ + "/one/a"), "1\n");
  ::setenv("TDM PARSERINC", (directory_ + "/two;;" + directory_ + "/three,nowhere").c_str(), 1);
  EXPECT_EQ(read_all("a"), "2\n");
  EXPECT_EQ(read_all("c"), "4\n");
  option_set_string(tdm::optINCDIR, directory_ + "/one");
  EXPECT_EQ(read_all("a"), "1\n");
  EXPECT_EQ(read_all("b"), "3\n");
  EXPECT_EQ(read_all("../two/b"), "3\n");

  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::create_directory(directory_ + "/include");
  write("include/d", "5");
  write("one/e", "6");
  std::filesystem::current_path(directory_ + "/one");
  EXPECT_EQ(read_all("d"), "5\n");
  tdm::option_start();
  EXPECT_EQ(read_all("e"), "cannot open \"e\"");
  std::filesystem::current_path(before);
}

// A short file is read once: all of an input sees one state of it, and the next input a new one.
TEST_F(StreamInDirectory, ReadsAShortFileOnce)
{
  write("one/g", "one __LINE__\n");
  write("main", "#include \"one/g\"\n1\n#include \"one/g\"\n");
  {
    std::string text;
    TDMPreprocessedFileInputStream stream({directory_ + "/main"}, nullptr);
    for (int c; (c = stream.getChar()) != -1;) {
      text += static_cast<char>(c);
      if (text.ends_with("1\n1")) write("one/g", "another\n");
    }
    EXPECT_EQ(tdm_test::squeezed(text), "one 1 1 one 1");
  }
  EXPECT_EQ(tdm_test::squeezed(read_all(directory_ + "/main")), "another 1 another");
}

// What one input sets up goes with it; messages and option values go on.
TEST_F(StreamInDirectory, InputsDoNotSeeEachOther)
{
  option_set_string(tdm::optINCDIR, directory_);
  option_set_string(tdm::optDEFINE, "X=7");
  write("a",
        "X A B __FILE__\n#define A 1\n#define B(x) x\n#if 1\n#line 5 \"n\"\n#define C(x) x\nC(1");
  const std::string first = read_all("a");
  EXPECT_EQ(read_all("a"), first);
  EXPECT_EQ(read_all("none"), "cannot open \"none\"");
  {
    TDMPreprocessedFileInputStream stream({"a"}, nullptr); // left in the middle of a call
    for (int i = 0; i < 3; ++i) stream.getChar();
  }
  EXPECT_EQ(read_all("a"), first);
  EXPECT_EQ(tdm::diag_error_count(), 6); // three times E930 and E928
  EXPECT_EQ(tdm::diag_list('E').size(), 6U);
  tdm::preprocessor_end();
  tdm::preprocessor_start();
  EXPECT_EQ(tdm::diag_error_count(), 0);
  EXPECT_EQ(read_all("a"), "cannot open \"a\"");
}

// The lexer takes the position of a token when its first character has been handed out.
TEST_F(StreamInDirectory, PositionIsThatOfTheTokenAtHand)
{
  write("a", "ab  c;\n\t\xff\x80\0d"s);
  TDMPreprocessedFileInputStream stream({directory_ + "/a"}, nullptr);
  const struct {
    int line, column, character;
  } rows[] = {{1, 1, 'a'}, {1, 1, 'b'},  {1, 3, ' '},  {1, 4, ' '}, {1, 5, 'c'},
              {1, 6, ';'}, {1, 7, '\n'}, {2, 1, '\t'}, {2, 2, 255}, {2, 3, -128},
              {2, 4, 0},   {2, 5, 'd'},  {2, 6, '\n'}, {3, 1, -1},  {3, 1, -1}};
  for (const auto &row : rows) {
    EXPECT_EQ(stream.getLine(), row.line);
    EXPECT_EQ(stream.getColumn(), row.column);
    EXPECT_EQ(stream.getFile(), directory_ + "/a");
    EXPECT_EQ(stream.getChar(), row.character);
  }
}

TEST_F(StreamInDirectory, TheEndStandsBehindTheNameThatLineGaveFirst)
{
  write("a", "#line 100 \"n\"\nx\ny\n#line 7 \"m\"\nz");
  TDMPreprocessedFileInputStream stream({directory_ + "/a"}, nullptr);
  while (stream.getChar() != -1) {
  }
  EXPECT_STREQ(stream.getFile(), "n");
  EXPECT_EQ(stream.getLine(), 103);
  EXPECT_EQ(stream.getColumn(), 1);
}

} // namespace
