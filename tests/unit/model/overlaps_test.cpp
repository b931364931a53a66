// Mappings of a space that overlap: the check that refuses them, the parse that keeps the failure,
// and the list of all pairs.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/failures.h"
#include "model/overlaps.h"
#include "model/spec.h"
#include "preprocessor/preprocessor.h"

namespace {

namespace fs = std::filesystem;

class Overlaps : public ::testing::Test {
protected:
  void SetUp() override { tdm::preprocessor_start(); }
  void TearDown() override
  {
    tdm::preprocessor_end();
    fs::remove(path_);
  }

  std::unique_ptr<TDMSpec> parse(const std::string &text, TDMSpec::Checks checks)
  {
    std::ofstream(path_) << text;
    return std::make_unique<TDMSpec>(std::vector<std::string>{path_.string()}, checks);
  }

  /// What ends the parse, without its position; "" for nothing.
  std::string failure_of(const std::string &text, TDMSpec::Checks checks)
  {
    try {
      parse(text, checks);
      return "";
    } catch (TDMFileException *failure) {
      const std::unique_ptr<TDMFileException> owned(failure);
      return owned->text().substr(owned->text().find("] ") + 2);
    } catch (Interval::PatternOverflowException *failure) {
      const std::unique_ptr<Interval::PatternOverflowException> owned(failure);
      return owned->text().substr(0, 29);
    } catch (MauLibException *failure) {
      delete failure;
      return "arithmetic";
    }
  }

  const fs::path path_ = fs::temp_directory_path() / ("overlaps_" + std::to_string(getpid()));
};

std::string description(const std::string &maps, const std::string &rest = "")
{
  return "architecture arc { bus b { mau = 16; width = 16; }\nspace lin { id = 1; mau = 16; " +
         maps + " }\n" + rest + " }\nderivative d { core c { architecture = arc; } }\n";
}

std::string chip_with(const std::string &memory)
{
  return "derivative e { core c { architecture = arc; } " + memory +
         " }\nprocessor p { derivative = d; } processor q { derivative = e; }\n";
}

/// The mappings of a space as numbers: where from, how many, in which bank, on which lines.
std::string random_maps(std::mt19937 &random, int count)
{
  const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
  std::string maps;
  for (int i = 0; i < count; ++i) {
    const int line = below(16);
    maps += "map (dest = bus:b, src_offset = " + std::to_string(below(200) - 50) +
            ", size = " + std::to_string(below(12));
    if (below(4) == 0) maps += ", bank = " + std::to_string(below(2));
    if (below(3) != 0)
      maps += ", src_dbits = " + std::to_string(line) + " .. " + std::to_string(line + below(6));
    maps += ");\n";
  }
  return maps;
}

using Told = std::tuple<const TDMMapping *, const TDMMapping *, int64_t, int64_t>;

std::vector<Told> pairs_by_comparing_all(const TDMSpace &space)
{
  std::vector<Told> pairs;
  const auto &mappings = space.outgoing_mappings();
  for (size_t second = 0; second < mappings.size(); ++second)
    for (size_t first = 0; first < second; ++first) {
      const Interval &a = mappings[first]->source_interval();
      const Interval &b = mappings[second]->source_interval();
      Interval shared;
      if (a.is_empty() || b.is_empty() || !a.intersect(b, shared)) continue;
      pairs.emplace_back(mappings[first], mappings[second], shared.low.value, shared.high.value);
    }
  return pairs;
}

TEST_F(Overlaps, AllPairsAreFoundAndFailTheCheck)
{
  std::mt19937 random(7);
  int refused = 0;
  for (int round = 0; round < 150; ++round) {
    const std::string text = description(random_maps(random, 2 + round / 4));
    const auto spec = parse(text, TDMSpec::Checks::kept_for_reading);
    const TDMSpace &space = *spec->processors.front()->cores.front()->spaces.front();
    std::vector<Told> told;
    for (const tdm::MappingOverlap &overlap : tdm::find_mapping_overlaps(*spec)) {
      EXPECT_EQ(overlap.space, &space);
      EXPECT_GT(overlap.bits, 0);
      told.emplace_back(overlap.first, overlap.second, overlap.range.low.value,
                        overlap.range.high.value);
    }
    EXPECT_EQ(told, pairs_by_comparing_all(space)) << text;
    EXPECT_EQ(spec->check_failure.has_value(), !told.empty()) << text;
    EXPECT_EQ(failure_of(text, TDMSpec::Checks::refused).empty(), told.empty()) << text;
    refused += told.empty() ? 0 : 1;
  }
  EXPECT_GT(refused, 50);
  EXPECT_LT(refused, 145);
}

/// What fails behind the check, in the model or in the arithmetic, is never told: the overlap has
/// failed before.
TEST_F(Overlaps, TheFirstFailureIsTheOneThatIsTold)
{
  const std::string overlap = "map (size = 4, dest = bus:b); map (size = 1, dest = bus:b); ";
  const std::string in_order = "map (size = 4, dest = bus:b); ";
  const std::string two_starts = "start_address (symbol = \"a\"); ";
  const std::string second = "space two { id = 2; mau = 16; " + in_order + two_starts + "}";
  const struct {
    std::string text; ///< behind the mappings of the space
    std::string rest; ///< of the architecture
    std::string behind;
    const char *failure; ///< without the overlap
  } cases[] = {
      {two_starts, second, "",
       "syntax error: start address for core d:c defined in more than one space"},
      {"", "", "memory m1 { size = 1; }", "syntax error: no mau size set for memory m1"},
      {"", "",
       chip_with("memory m1 { mau = 8; size = 1; type = ram; map (size = 1, dest = bus:b); }"),
       "syntax error: could not find bus destination \"q:b\" in mapping from memory q:m1"},
      {"", "",
       "bus wide { mau = 8; width = 128; }\n"
       "memory m1 { mau = 8; size = 1; type = ram; map (size = 1, dest = bus:wide); }",
       "Maximum mapping width (64) ex"},
      {"", "", "section_layout ::nosp { }",
       "syntax error: could not find space nosp for section layout"},
  };
  for (const auto &one : cases) {
    const std::string sound = description(in_order + one.text, one.rest) + one.behind;
    EXPECT_EQ(failure_of(sound, TDMSpec::Checks::refused), one.failure);
    EXPECT_EQ(failure_of(sound, TDMSpec::Checks::kept_for_reading), one.failure);
    const std::string text = description(overlap + one.text, one.rest) + one.behind;
    for (const auto checks : {TDMSpec::Checks::refused, TDMSpec::Checks::kept_for_reading})
      EXPECT_EQ(failure_of(text, checks), "syntax error: space lin has overlapping mappings")
          << text;
  }
}

/// Data lines of 12 and of 32 bits have no pattern together that an interval could hold.
TEST_F(Overlaps, WhatCannotBeComparedHidesNoOther)
{
  const auto memory = [](const std::string &name, int mau, int offset) {
    return "memory " + name + " { type = ram; mau = " + std::to_string(mau) +
           "; size = 4; map (size = 4, dest = bus:c:b, dest_offset = " + std::to_string(offset) +
           "); }\n";
  };
  const auto spec = parse("architecture arc { bus b { mau = 12; width = 12; }\n"
                          "space lin { id = 1; mau = 12; map (size = 64, dest = bus:b); } }\n"
                          "derivative d { core c { architecture = arc; }\n" +
                              memory("m1", 12, 8) + memory("m2", 12, 10) + memory("m3", 32, 12) +
                              memory("m4", 12, 30) + memory("m5", 12, 33) + "}\n",
                          TDMSpec::Checks::kept_for_reading);
  ASSERT_TRUE(spec->check_failure.has_value());
  std::string told;
  for (const tdm::Overlap &overlap : tdm::find_overlaps(*spec))
    told += overlap.first->name + " " + overlap.second->name + " " + std::to_string(overlap.bits) +
            "\n";
  EXPECT_EQ(told, "m1 m2 24\nm4 m5 12\n");
}

/// A space of many mappings: what never ends and holds nothing, lanes beside each other, and at the
/// end one that meets many. Comparing all would take minutes.
TEST_F(Overlaps, ManyMappingsAreNotComparedEachWithEach)
{
  constexpr int count = 60'000;
  std::string maps;
  for (int i = 0; i < count; ++i) {
    maps += "map (dest = bus:b, size = 1G, src_dbits = 16 .. 17);\n"
            "map (dest = bus:b, size = 4, src_dbits = 0 .. 7, src_offset = " +
            std::to_string(8 * i) + ");\n";
  }
  const auto before = std::chrono::steady_clock::now();
  const auto quiet = parse(description(maps), TDMSpec::Checks::kept_for_reading);
  EXPECT_TRUE(tdm::find_mapping_overlaps(*quiet).empty());
  EXPECT_FALSE(quiet->check_failure.has_value());
  maps += "map (dest = bus:b, size = 16, src_offset = 100);\nmap (dest = bus:b, size = 512k);\n";
  const auto loud = parse(description(maps), TDMSpec::Checks::kept_for_reading);
  EXPECT_EQ(tdm::find_mapping_overlaps(*loud).size(), tdm::most_overlaps);
  EXPECT_TRUE(loud->check_failure.has_value());
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(60));
}

} // namespace
