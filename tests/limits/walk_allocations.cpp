// A walk costs memory for each scope that it enters, and none for a statement: counted, over
// layouts that have few and many of each.
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <tdm_c/tdm.h>
#include <unistd.h>

#include "allocations.h"

namespace {

namespace fs = std::filesystem;

/// A layout that has the statement so many times, `#` standing for a number of its own.
std::string description(const std::string &statement, int times)
{
  std::string text = "architecture a { space s { id = 1; mau = 8; map (dest = bus:b, size = 1M); }"
                     " bus b { mau = 8; width = 8; } }\nsection_layout ::s {\n";
  for (int i = 0; i < times; ++i) {
    std::string one = statement;
    for (std::size_t at; (at = one.find('#')) != std::string::npos;)
      one.replace(at, 1, std::to_string(i));
    text += one + "\n";
  }
  return text + "}\n";
}

struct Met {
  std::size_t statements = 0;
};

template <class... Arguments> void count_in(void (*&entry)(Arguments...))
{
  entry = [](Arguments... arguments) {
    void *user = nullptr;
    ((user = const_cast<void *>(static_cast<const void *>(arguments))), ...); // the last one
    ++static_cast<Met *>(user)->statements;
  };
}

/// How many allocations a walk over the layout makes, the second time that it is walked.
std::size_t of_a_walk(const std::string &text, std::size_t at_least)
{
  const std::string path =
      (fs::temp_directory_path() / ("tdm_walk_" + std::to_string(getpid()) + ".tdm")).string();
  std::ofstream(path) << text;
  const char *name = path.c_str();
  tdm_arr files = {sizeof(char *), 1, 1, &name};
  tdm_arr none = {sizeof(char *), 0, 0, nullptr};
  tdm_init(nullptr);
  tdm_spec *spec = tdm_parse_file(&files, &none);
  fs::remove(path);
  EXPECT_NE(spec, nullptr) << tdm_get_last_error();
  std::size_t count = 0;
  if (spec != nullptr) {
    tdm_arr *processors = tdm_spec_get_processors(spec);
    tdm_arr *cores = tdm_processor_get_cores(*static_cast<tdm_processor **>(processors->items));
    tdm_arr *spaces = tdm_core_get_spaces(*static_cast<tdm_core **>(cores->items));
    tdm_space *space = *static_cast<tdm_space **>(spaces->items);
    for (tdm_arr *array : {processors, cores, spaces}) tdm_arr_del(array);
    tdm_walk_callbacks calls{};
    count_in(calls.assignment);
    count_in(calls.block_begin);
    count_in(calls.if_begin);
    count_in(calls.create_section_begin);
    count_in(calls.group_begin);
    count_in(calls.reserved_statement);
    count_in(calls.selection);
    count_in(calls.stack_statement);
    const tdm_expression_callbacks yes = {[](const char *, void *) { return 1; }, nullptr};
    Met met;
    tdm_space_walk(space, &calls, &met, &yes, nullptr);
    EXPECT_GE(met.statements, at_least) << tdm_get_last_error();
    const std::size_t before = allocations();
    tdm_space_walk(space, &calls, &met, &yes, nullptr);
    count = allocations() - before;
  }
  tdm_spec_free(spec);
  tdm_cleanup();
  return count;
}

TEST(WalkAllocations, AreMadeForScopesAndNotForStatements)
{
  constexpr std::size_t few = 10, many = 1000;
  struct Row {
    const char *statement;
    std::size_t scopes; ///< of each
  };
  const Row rows[] = {
      {"select \".text.n#*\" (attributes = +x);", 0},
      {"\"_sym#\" := sizeof(sect:\"n#\") + 1;", 0},
      {"reserved \"gap#\" (size = 16, attributes = r, fill = 0);", 0},
      {"stack \"s#\" (size = 16);", 0},
      {"if (exists(\"n#\") && # >= 0) select \"n#\"; else select;", 0},
      {"{ select; select; }", 1},
      {"group g# (ordered, run_addr = 0x#) select;", 1},
      {"group (ordered, align = 4) { group (align = 8) select; }", 2},
      {"section \"n#\" (size = 64, attributes = rw) { select; select; }", 1},
  };
  for (const Row &row : rows) {
    const std::size_t small = of_a_walk(description(row.statement, few), few);
    const std::size_t large = of_a_walk(description(row.statement, many), many);
    constexpr std::size_t for_a_scope = 2;
    EXPECT_LE(large, small + (many - few) * row.scopes * for_a_scope) << row.statement;
  }
  // The count counts.
  EXPECT_GT(allocations(), 10 * many);
}

} // namespace
