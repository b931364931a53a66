// Inputs at the edges: deep nesting, long chains, numbers at the ends of 64 bits, files that are no
// text. Each is parsed on a thread with a stack of 256 KiB (8 MiB under the sanitizers, whose
// frames are several times as large), and nothing but a message or an answer may come out.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>
#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

namespace {

namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__)
constexpr size_t stack_size = 8U << 20U;
#else
constexpr size_t stack_size = 256U << 10U;
#endif

void on_small_stack(std::function<void()> work)
{
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stack_size), 0);
  pthread_t thread;
  const auto run = [](void *argument) -> void * {
    (*static_cast<std::function<void()> *>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

std::string repeated(const std::string &piece, int times)
{
  std::string text;
  text.reserve(piece.size() * static_cast<size_t>(times));
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

const std::string architecture =
    "architecture a { space s { id = 1; mau = 8; map (dest = bus:b, size = 1M); }"
    " bus b { mau = 8; width = 8; } }\n";

/// A description whose only memory has the expression as its size.
std::string sized(const std::string &size)
{
  return architecture +
         "bus far { mau = 8; width = 8; }\nmemory mem1 { mau = 8; type = ram; size = " + size +
         "; map (dest = bus:far, size = 1); }\n";
}

/// How many scopes and selections a walk of the space meets.
int walked(tdm_space *space)
{
  int count = 0;
  tdm_walk_callbacks callbacks{};
  callbacks.block_begin = [](tdm_block *, tdm_statement_env *, void *user) {
    ++*static_cast<int *>(user);
  };
  callbacks.group_begin = [](tdm_group *, tdm_statement_env *, tdm_statement_env *, void *user) {
    ++*static_cast<int *>(user);
  };
  callbacks.if_begin = [](tdm_if_statement *, tdm_statement_env *, void *user) {
    ++*static_cast<int *>(user);
  };
  callbacks.selection = [](tdm_selection_statement *, tdm_statement_env *, void *user) {
    ++*static_cast<int *>(user);
  };
  tdm_space_walk(space, &callbacks, &count, nullptr, nullptr);
  return count;
}

/// What parsing the text gives: "spec <size of memory mem1>", with what a walk of the first space
/// meets, or the message without its position.
std::string outcome(const std::string &text)
{
  const fs::path path =
      fs::temp_directory_path() / ("tdm_limits_" + std::to_string(getpid()) + ".tdm");
  std::ofstream(path, std::ios::binary) << text;
  const std::string name = path.string();
  std::string result;
  on_small_stack([&] {
    const char *file = name.c_str();
    tdm_arr files = {sizeof(char *), 1, 1, &file};
    tdm_arr none = {sizeof(char *), 0, 0, nullptr};
    tdm_init(nullptr);
    tdm_spec *spec = tdm_parse_file(&files, &none);
    if (spec == nullptr) {
      result = tdm_get_last_error();
      if (const size_t end = result.find("] "); end != std::string::npos) result.erase(0, end + 2);
    } else {
      const tdm_memory *memory = tdm_spec_get_memory(spec, "mem1");
      result = "spec " + (memory != nullptr ? std::to_string(tdm_memory_get_size(memory)) : "");
      tdm_arr *processors = tdm_spec_get_processors(spec);
      tdm_arr *cores = tdm_processor_get_cores(*static_cast<tdm_processor **>(processors->items));
      tdm_arr *spaces = tdm_core_get_spaces(*static_cast<tdm_core **>(cores->items));
      if (const int count = walked(*static_cast<tdm_space **>(spaces->items)))
        result += "walked " + std::to_string(count);
      for (tdm_arr *array : {processors, cores, spaces}) tdm_arr_del(array);
    }
    tdm_spec_free(spec);
    tdm_cleanup();
  });
  fs::remove(path);
  return result;
}

struct Row {
  const char *what;
  std::string text;
  std::string expected;
};

void PrintTo(const Row &row, std::ostream *out)
{
  *out << row.what;
}

class Limits : public ::testing::TestWithParam<Row> {};

TEST_P(Limits, EndInAMessageOrAnAnswer)
{
  EXPECT_EQ(outcome(GetParam().text), GetParam().expected);
}

const std::string too_deep = "syntax error: nested too deeply, the limit is 256";

/// derivative d (p0 = 1, p1 = p0 + 1, ...): a chain through parameters instead of operators.
std::string parameter_chain(int length)
{
  std::string list = "p0 = 1";
  for (int i = 1; i < length; ++i)
    list += ", p" + std::to_string(i) + " = p" + std::to_string(i - 1) + " + 1";
  return architecture + "derivative d (" + list +
         ") { core c { architecture = a; } bus l { mau = 8; width = 8; }" +
         " memory n { mau = 8; type = ram; size = p" + std::to_string(length - 1) +
         "; map (dest = bus:l, size = 1); } }\n";
}

std::string doubling_parameters(int length)
{
  std::string list = "p0 = 1";
  for (int i = 1; i < length; ++i) {
    const std::string before = "p" + std::to_string(i - 1);
    list += ", p" + std::to_string(i) + " = " + before + " + " + before;
  }
  return architecture + "derivative d (" + list +
         ") { core c { architecture = a; } bus l { mau = 8; width = 8; }" +
         " memory n { mau = 8; type = ram; size = p" + std::to_string(length - 1) +
         "; map (dest = bus:l, size = 1); } }\n";
}

std::string chain_of_bases(int length)
{
  std::string text = "architecture a0 { space s { id = 1; mau = 8; map (dest = bus:b, size = 1M); }"
                     " bus b { mau = 8; width = 8; } }\n";
  for (int i = 1; i < length; ++i)
    text += "architecture a" + std::to_string(i) + " extends a" + std::to_string(i - 1) + " { }\n";
  text += "derivative d0 { core c { architecture = a" + std::to_string(length - 1) + "; } }\n";
  for (int i = 1; i < length; ++i)
    text += "derivative d" + std::to_string(i) + " extends d" + std::to_string(i - 1) + " { }\n";
  return text + "processor p { derivative = d" + std::to_string(length - 1) + "; }\n";
}

/// A layout with the statements.
std::string laid_out(const std::string &statements)
{
  return architecture + "section_layout ::s { " + statements + " }\n";
}

std::vector<Row> rows()
{
  return {
      {"256 parentheses", sized(repeated("(", 255) + "7" + repeated(")", 255)), "spec 7"},
      {"too many parentheses", sized(repeated("(", 300) + "7" + repeated(")", 300)), too_deep},
      {"a million parentheses", sized(repeated("(", 1000000)), too_deep},
      {"a million signs", sized(repeated("- ", 1000000) + "1"), too_deep},
      {"a long else chain", sized(repeated("0 ? 1 : ", 1000000) + "1"), too_deep},
      {"a sum of 100,000 terms", sized("1" + repeated(" + 1", 99999)), "spec 100000"},
      {"parameters 100,000 deep", parameter_chain(100000), "spec "},
      {"parameters that double", doubling_parameters(64),
       "syntax error: expression too large, the limit is 1000000 terms"},
      {"bases 20,000 deep", chain_of_bases(20000), "spec "},
      {"a cycle of parameters",
       architecture + "derivative d (x = y, y = x) { core c { architecture = a; } bus l { mau = x; "
                      "width = 8; } }\n",
       "syntax error: TDM variable \"x\" is defined by itself"},
      {"an empty file", "", "syntax error: unexpected end of file"},
      {"the largest size", sized("0x7FFFFFFFFFFFFFFF"), "spec 9223372036854775807"},
      {"a number that saturates", sized("0xFFFFFFFFFFFFFFFF"), "spec 9223372036854775807"},
      {"a sum past the end", sized("0x7FFFFFFFFFFFFFFF + 2"),
       "syntax error: one or more mappings from memory mem1 map outside of memory address range"},
      {"the quotient that wraps", sized("(-0x7FFFFFFFFFFFFFFF - 1) / -1"),
       "syntax error: one or more mappings from memory mem1 map outside of memory address range"},
      {"groups 250 deep", laid_out(repeated("group (align = 4, priority = 2) ", 250) + "select;"),
       "spec walked 252"},
      {"groups and blocks", laid_out(repeated("group { ", 120) + "select;" + repeated("}", 120)),
       "spec walked 242"},
      {"blocks 250 deep", laid_out(repeated("{ ", 250) + repeated("}", 250)), "spec walked 251"},
      {"conditions 250 deep", laid_out(repeated("if (1) ", 250) + "select;"), "spec walked 252"},
      {"else 250 deep", laid_out(repeated("if (0) select; else ", 250) + "select;"),
       "spec walked 252"},
      {"sections 250 deep",
       laid_out("section \"x\" (size = 1) { " + repeated("{ ", 250) + repeated("} ", 250) + "}"),
       "spec walked 252"},
      {"too many groups", laid_out(repeated("group ", 100000) + "select;"), too_deep},
      {"a million blocks", laid_out(repeated("{ ", 1000000)), too_deep},
      {"a million else", laid_out(repeated("if (0) select; else ", 1000000) + "select;"), too_deep},
      {"100,000 selections", laid_out(repeated("select \"name\"; ", 100000)), "spec walked 100001"},
      {"a long condition", laid_out("if (1" + repeated(" + 1", 99999) + ") select;"),
       "spec walked 3"},
      {"a pattern of parentheses",
       laid_out("select \"" + repeated("(", 100000) + "*" + repeated(")", 100000) + "\";"),
       "spec walked 2"},
      {"a pattern of a megabyte", laid_out("select \"" + repeated("?", 1000000) + "\";"),
       "spec walked 2"},
      {"a pattern of open sets", laid_out("select \"" + repeated("[", 1000000) + "\";"),
       "syntax error: selection pattern error: unexpected end of input"},
      {"macro calls 100,000 deep",
       "#define f(x) x\n" + sized(repeated("f(", 100000) + "7" + repeated(")", 100000)), "spec 7"},
      {"conditionals 100,000 deep",
       repeated("#if 1\n", 100000) + sized("7") + repeated("#endif\n", 100000), "spec 7"},
      {"parentheses of #if",
       "#if " + repeated("(", 9999) + "0" + repeated(")", 9999) + "\n#else\n" + sized("7") +
           "#endif\n",
       "spec 7"},
      {"a million parentheses of #if", // which is a fault, and a faulty condition counts as true
       "#if " + repeated("(", 1000000) + "\n" + sized("7") + "#endif\n", "spec 7"},
      {"division by zero", sized("1 / 0"), "division by zero"},
      {"remainder by zero", sized("1 % 0"), "division by zero"},
  };
}

INSTANTIATE_TEST_SUITE_P(All, Limits, ::testing::ValuesIn(rows()), [](const auto &row) {
  std::string name = row.param.what;
  for (char &c : name)
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  return name;
});

TEST(Limits, MappingsAtTheEndsOf64Bits)
{
  // Every combination of offsets and sizes at the ends: a spec or a message, and then translations.
  const std::vector<std::string> ends = {
      "0", "1", "0x7FFFFFFFFFFFFFFF", "-1", "(-0x7FFFFFFFFFFFFFFF - 1)", "0x100000000"};
  for (const std::string &offset : ends)
    for (const std::string &size : ends)
      for (const std::string mau : {"8", "16", "24", "64"}) {
        const std::string text =
            "architecture a { space s { id = 1; mau = 8; map (dest = bus:b, src_offset = " +
            offset + ", dest_offset = " + size + ", size = " + size + "); } bus b { mau = " + mau +
            "; width = " + mau +
            "; } }\nderivative d { core c { architecture = a; } memory mem1 { mau = " + mau +
            "; type = ram; size = 0x7FFFFFFFFFFFFFFF; map (dest = bus:c:b, dest_offset = " +
            offset + ", size = 0x1000); } }\n";
        EXPECT_FALSE(outcome(text).empty());
      }
}

TEST(Limits, UnusualUnitsAreRefusedOrAnswered)
{
  for (const std::string mau : {"-8", "0", "1", "3", "63", "65", "65536", "32768", "0x80000000",
                                "-2147483648", "0x100000008"})
    for (const std::string width : {"-8", "0", "1", "64", "65536", "0x7FFFFFFF"}) {
      const std::string text =
          "architecture a { space s { id = 1; mau = " + mau +
          "; map (dest = bus:b, size = 16, src_dbits = -3..70, dest_dbits = 5..2); } bus b { mau "
          "= " +
          mau + "; width = " + width + "; } }\nmemory mem1 { mau = " + mau +
          "; type = ram; size = 4; map (dest = bus:far, size = 4); } bus far { mau = 8; width = 8; "
          "}\n";
      outcome(text);
    }
}

TEST(Limits, BinaryFilesAndDirectoriesAreRefused)
{
  std::string bytes;
  for (int i = 0; i < 4096; ++i) bytes += static_cast<char>(i * 7 % 256);
  EXPECT_NE(outcome(bytes).find("unexpected char"), std::string::npos);

  tdm_init(nullptr);
  const std::string folder = fs::temp_directory_path().string();
  const char *name = folder.c_str();
  tdm_arr files = {sizeof(char *), 1, 1, &name};
  tdm_arr none = {sizeof(char *), 0, 0, nullptr};
  EXPECT_EQ(tdm_parse_file(&files, &none), nullptr);
  EXPECT_EQ(tdm_get_last_error(), "cannot open \"" + folder + "\"");
  tdm_cleanup();
}

TEST(Limits, FailuresThatLeaveTheLastErrorTextAreCounted)
{
  tdm_init(nullptr);
  const fs::path path =
      fs::temp_directory_path() / ("tdm_limits_" + std::to_string(getpid()) + ".tdm");
  std::ofstream(path)
      << "architecture a { space s { id = 1; mau = 8; map (dest = bus:b, size = 1); }"
         " bus b { mau = 8; width = 128; } }\n";
  const std::string file = path.string();
  const char *name = file.c_str();
  tdm_arr files = {sizeof(char *), 1, 1, &name};
  tdm_arr none = {sizeof(char *), 0, 0, nullptr};
  const std::string before = tdm_get_last_error();
  const auto count = tdm_inspect_failure_count();
  EXPECT_EQ(tdm_parse_file(&files, &none), nullptr);
  EXPECT_EQ(tdm_get_last_error(), before);
  EXPECT_EQ(tdm_inspect_failure_count(), count + 1);
  EXPECT_EQ(std::string(tdm_inspect_failure_text()),
            "Maximum mapping width (64) exceeded. Use the mau size as bus width unless use of "
            "source_dbits and/or dest_dbits is necessary.");
  fs::remove(path);
  tdm_cleanup();
}

} // namespace
