// The parser: what each construct leaves in its record, with places. What it refuses is among the
// cases, tests/cases/grammar.
#include <gtest/gtest.h>

#include "common/failures.h"
#include "language/parse_driver.h"
#include "preprocessor/string_pool.h"
#include "record_dump.h"
#include "text_stream.h"
#include "unit/rows.h"

namespace {

using tdm_test::Row;
using tdm_test::rows;

/// The records of the text, or the words of the failure.
std::string outcome(const std::string &text)
{
  TextStream stream(text);
  try {
    return dump(*parse_target_file(stream));
  } catch (TDMFileException *failure) {
    const std::unique_ptr<TDMFileException> owner(failure);
    return failure->text();
  }
}

class Parser : public testing::Test {
protected:
  void SetUp() override { tdm::string_pool_start(); }
};

TEST_F(Parser, KeepsWhatIsWritten)
{
  for (const char *table : {"KeepsMemories", "KeepsBuses", "KeepsMappings", "KeepsArchitectures",
                            "KeepsDerivatives", "KeepsSpaces", "KeepsSetups", "KeepsVectorTables",
                            "KeepsStatements", "KeepsLayoutHeads", "KeepsGroups"})
    for (const Row &row : rows("language/records.json", table))
      EXPECT_EQ(outcome(row[0]), row[1]) << row[0];
}

TEST_F(Parser, GroupsExpressions)
{
  for (const Row &row : rows("language/records.json", "GroupsExpressions"))
    EXPECT_EQ(outcome("memory aa { area = " + row[0] + "; }"),
              "memory(name=aa area=" + row[1] + ")<name@1/8>")
        << row[0];
}

TEST_F(Parser, KeepsPlacesOfExpressions)
{
  TextStream stream(
      "memory aa { area = -bb + (\"cc\" * 1k) - checksum(crc32w, 11, addressof(mem:dd))"
      " / sizeof(group:ee); }");
  const auto result = parse_target_file(stream);
  const TDMFileExpression &area = *result->memories.front()->hardware->area;
  EXPECT_EQ(dump_with_places(area),
            "(- (+ (neg bb<name@1/21>)<op@1/21> (par (* \"cc\"<name@1/27> "
            "1024<number@1/34>))<op@1/27>) (/ (checksum:0 11<number@1/57> "
            "addressof:2:dd<addressof@1/71 objType@1/71 objName@1/71>)<checksum@1/49 "
            "algo@1/49 start@1/57 end@1/61> sizeof:2:ee<sizeof@1/89 objType@1/89 "
            "objName@1/95>))");
  EXPECT_EQ(dump_with_places(*area.clone()), dump(area)); // a copy has no places
}

} // namespace
