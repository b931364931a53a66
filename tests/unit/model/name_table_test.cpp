// The table behind lookups by name.
#include <gtest/gtest.h>

#include "common/name_table.h"

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
  tdm::NameTable table;
  EXPECT_EQ(table.find("x"), tdm::NameTable::none);
  for (uint32_t i = 0; i < 5000; ++i) table.add(name_of(i), i);
  for (uint32_t i = 0; i < 5000; ++i) {
    const uint32_t found = table.find(name_of(i));
    ASSERT_LE(found, i);
    ASSERT_EQ(name_of(found), name_of(i));
    ASSERT_EQ(table.find(name_of(i) + "y"), tdm::NameTable::none);
  }
  EXPECT_EQ(table.find(""), tdm::NameTable::none);
  table.add("", 7);
  table.add("", 8);
  EXPECT_EQ(table.find(""), 7U);
}

} // namespace
