// A thousand times from start to end, good and bad inputs by turns: nothing stays behind, and equal
// inputs have equal answers, whatever went before.
#include <filesystem>
#include <map>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "counting.h"
#include "use.h"

namespace {

std::size_t open_files()
{
  const std::filesystem::directory_iterator handles("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(handles), end(handles)));
}

/// The whole text cut short, or with a character changed: most of these fail somewhere.
std::vector<std::string> inputs()
{
  const std::string whole = whole_text;
  std::vector<std::string> texts = {whole, broken_text, "", "#if 1\narchitecture"};
  std::mt19937 random(20);
  for (int i = 0; i < 30; ++i) {
    std::string text = whole;
    const std::size_t at = random() % text.size();
    if (i % 2 == 0)
      text.resize(at);
    else
      text[at] = "{};=(#\"0"[random() % 8];
    texts.push_back(text);
  }
  return texts;
}

TEST(Cycles, AThousandLeaveNothingAndAnswerAlike)
{
  std::vector<std::string> files;
  for (const std::string &text : inputs())
    files.push_back(written(("tdm_cycle" + std::to_string(files.size()) + "_").c_str(), text));
  // The first use makes what stays as long as the process does.
  tdm_init(nullptr);
  for (const std::string &file : files) {
    Answers told;
    parse_and_ask(file.c_str(), told);
  }
  tdm_cleanup();
  std::map<std::size_t, std::uint64_t> known;
  std::mt19937 random(1);
  const std::size_t handles = open_files();
  for (int cycle = 0; cycle < 1000; ++cycle) {
    const std::size_t before = counting::live();
    std::size_t used[3];
    std::uint64_t answers[3];
    tdm_init(nullptr);
    for (int i = 0; i < 3; ++i) {
      used[i] = random() % 3 == 0 ? 0 : random() % files.size();
      Answers told;
      parse_and_ask(files[used[i]].c_str(), told);
      answers[i] = told.value();
      // Messages go on from parse to parse, so that only the first one's answers are its own.
    }
    tdm_cleanup();
    const std::size_t after = counting::live();
    ASSERT_EQ(after, before) << "cycle " << cycle << ", input " << used[0];
    const auto [entry, is_new] = known.emplace(used[0], answers[0]);
    ASSERT_EQ(entry->second, answers[0]) << "input " << used[0] << ", cycle " << cycle;
  }
  EXPECT_EQ(open_files(), handles);
  EXPECT_EQ(known.size(), files.size());
  for (const std::string &file : files) std::filesystem::remove(file);
}

/// Texts that a parse has put into the pool are there for the next one.
TEST(Cycles, AFileThatIsReadAgainTakesNoMoreMemory)
{
  std::string text = whole_text;
  text += "section_layout p:c:lin {";
  for (int i = 0; i < 5000; ++i) text += "select \".text.function" + std::to_string(i) + "\";\n";
  const std::string file = written("tdm_again_", text + "}");
  tdm_init(nullptr);
  std::size_t live = 0;
  for (int i = 0; i < 8; ++i) {
    Answers told;
    parse_and_ask(file.c_str(), told);
    if (i == 2) live = counting::live();
  }
  EXPECT_EQ(counting::live(), live);
  tdm_cleanup();
  std::filesystem::remove(file);
}

} // namespace
