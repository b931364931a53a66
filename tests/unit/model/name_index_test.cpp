// The table behind lookups by name.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "common/name_set.h"
#include "model/name_index.h"

namespace {

/// Names of all lengths up to 40, many of which differ in one place only.
std::string name_of(uint32_t number)
{
  std::string name(number % 41, 'x');
  name.insert(number % (name.size() + 1), std::to_string(number / 3));
  return name;
}

TEST(NameTable, FindsTheFirstOfEachName)
{
  std::vector<std::string> names;
  const auto name_at = [&](uint32_t place) -> std::string_view { return names[place]; };
  std::map<std::string_view, uint32_t> expected;
  for (uint32_t i = 0; i < 5000; ++i) names.push_back(name_of(i));
  for (const uint32_t room : {0U, 20U, 5000U}) {
    tdm::NameTable table;
    table.reserve(room, name_at);
    EXPECT_EQ(table.find(std::string_view("x"), name_at), tdm::NameTable::none);
    expected.clear();
    for (uint32_t i = 0; i < 5000; ++i) {
      const uint32_t first = expected.emplace(names[i], i).first->second;
      ASSERT_EQ(table.append(name_at), first);
      ASSERT_EQ(table.find(std::string_view(names[i / 2]), name_at), expected.at(names[i / 2]));
      ASSERT_EQ(table.find(std::string_view(names[i] + "y"), name_at), tdm::NameTable::none);
    }
    EXPECT_EQ(table.find(std::string_view(), name_at), tdm::NameTable::none);
    EXPECT_EQ(table.size(), 5000U);
  }
}

TEST(NameSet, KnowsWhatItHasMet)
{
  tdm::NameSet set;
  for (int round = 0; round < 2; ++round)
    for (const char *name : {"a", "b", "", "ab", "ba", "c", "d", "e", "f", "g", "h"})
      EXPECT_EQ(set.add(name), round == 0) << name;
}

} // namespace
