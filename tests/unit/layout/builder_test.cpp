// What building a layout or a vector table leaves behind that no caller of the C interface sees:
// the names that it mentions; and the faults of records that no text gives.
#include <gtest/gtest.h>
#include <set>

#include <memory>
#include <string>

#include "common/failures.h"
#include "empty_space.h"
#include "expressions/argument_scope.h"
#include "language/records.h"
#include "layout/bank_def.h"
#include "layout/layout_builder.h"
#include "layout/section_names.h"

namespace {

class Building : public testing::Test {
protected:
  const tdm::ArgumentScope scope{};
  const EmptySpace space{};
  tdm::SectionNames names;
  const tdm::LayoutContext context{scope, space, nullptr, names, {"c", "k"}};
};

using Texts = std::vector<std::string>;

Texts texts(const tdm::PooledVector<tdm::Text> &list)
{
  return {list.begin(), list.end()};
}

tdm::ExpressionPtr number(int64_t value)
{
  return std::make_unique<TDMExprNumber>(value);
}

std::unique_ptr<TDMFileSelectSectionStatement> select(const char *pattern)
{
  auto record = std::make_unique<TDMFileSelectSectionStatement>();
  record->sectionName = pattern;
  return record;
}

template <class Call> std::string failure_of(Call call)
{
  try {
    call();
  } catch (TDMSyntaxException *failure) {
    std::string text = failure->text();
    delete failure;
    return text;
  }
  return "";
}

TEST_F(Building, LayoutsMentionSymbolsSectionsAndGroups)
{
  TDMFileSectionLayout layout;
  layout.locateDirection = tdm::kHighToLow;
  layout.statement = std::make_unique<TDMFileBlock>();
  for (const auto op : {tdm::kAssign, tdm::kAssignColon}) {
    auto assignment = std::make_unique<TDMFileAssignment>();
    assignment->symbolName = op == tdm::kAssign ? "x" : "y";
    assignment->op = op;
    assignment->value = number(1);
    layout.statement->statements.push_back(std::move(assignment));
  }
  for (const char *pattern : {"a", "b*", "c\\*"})
    layout.statement->statements.push_back(select(pattern));
  auto group = std::make_unique<TDMFileGroup>();
  group->name = "g";
  group->statement = select("d");
  layout.statement->statements.push_back(std::move(group));

  const auto built = tdm::build_section_layout(layout, context);
  EXPECT_EQ(built->locate_direction, 2);
  const auto &statements = built->statement->statements;
  ASSERT_EQ(statements.size(), 6U);
  EXPECT_TRUE(dynamic_cast<TDMAssignment &>(*statements[0]).plain);
  EXPECT_FALSE(dynamic_cast<TDMAssignment &>(*statements[1]).plain);
  EXPECT_EQ(texts(names.assigned_symbols), (Texts{"x", "y"}));
  EXPECT_EQ(texts(names.referenced_names), (Texts{"a", "c*", "d"}));
  EXPECT_EQ(texts(names.group_names.names()), (Texts{"g"}));

  EXPECT_EQ(failure_of([&] { static_cast<void>(tdm::build_section_layout(layout, context)); }),
            "[\"\" 0/0] syntax error: group g defined more than once for core c:k");
}

TEST_F(Building, InputModificationsMentionNothing)
{
  const auto built = tdm::build_selection(*select("a"));
  EXPECT_EQ(*built->literal_section_name(), "a");
  EXPECT_TRUE(names.referenced_names.empty());
}

std::unique_ptr<TDMFileVectorValue> symbol(const char *name)
{
  auto value = std::make_unique<TDMFileVectorValue>();
  value->type = tdm::kVectorSymbol;
  value->symbolName = name;
  return value;
}

TEST_F(Building, VectorTablesRequireSymbols)
{
  TDMFileVectorTable table;
  table.name = "vt";
  table.vectorSize = number(4);
  table.size = number(4);
  table.templateName = "t";
  table.templateSymbolName = "ts";
  table.idSymbolPrefix = "_v";
  table.defaultValue = symbol("default");
  for (const bool optional : {false, true}) {
    auto vector = std::make_unique<TDMFileVector>();
    vector->ids.add(5, 7);
    vector->ids.add(1, 1);
    vector->value = symbol(optional ? "may" : "must");
    vector->optional = optional;
    table.vectors.push_back(std::move(vector));
  }
  const auto built = tdm::build_vector_table(table, context);
  using Ids = tdm::ObjectList<std::pair<int32_t, int32_t>>;
  EXPECT_EQ(built->vectors[0]->ids, (Ids{{1, 1}, {5, 7}}));
  EXPECT_TRUE(built->vectors[1]->optional);
  EXPECT_EQ(texts(names.referenced_names), (Texts{"t"}));
  EXPECT_EQ(texts(names.optional_symbols), (Texts{"may"}));
  ASSERT_EQ(names.required_symbols.size(), 3U);
  EXPECT_EQ(names.required_symbols[0].name, "default");
  EXPECT_EQ(names.required_symbols[1].name, "must");
  EXPECT_EQ(names.required_symbols[1].count, 0);
  EXPECT_EQ(names.required_symbols[2].name, "_v");
  EXPECT_EQ(names.required_symbols[2].count, 4); // _v0 to _v3

  table.size = number(0);
  names.required_symbols.clear();
  static_cast<void>(tdm::build_vector_table(table, context));
  EXPECT_EQ(names.required_symbols.size(), 2U);
}

TEST_F(Building, RefusesRecordsThatNoTextGives)
{
  EXPECT_EQ(failure_of(
                [&] { static_cast<void>(tdm::build_vector_table(TDMFileVectorTable(), context)); }),
            "[\"\" 0/0] syntax error: no name specified for vector table");
  TDMFileSectionLayout layout;
  layout.statement = std::make_unique<TDMFileBlock>();
  auto group = std::make_unique<TDMFileGroup>();
  group->runAddress = std::make_unique<TDMFileGroupLocation>();
  group->statement = select("d");
  layout.statement->statements.push_back(std::move(group));
  EXPECT_EQ(failure_of([&] { static_cast<void>(tdm::build_section_layout(layout, context)); }),
            "[\"\" 0/0] syntax error: group location without address or range");
}

TEST(BankDef, KindDependsOnTheSwitchAndNumbersAscend)
{
  TDMFileBankDef record;
  record.spaceName = "other";
  const auto single = make_bank_def(record, "s", "c:k:s");
  EXPECT_STREQ(single->kind_name(), "jstub");
  EXPECT_EQ(single->name, "c:k:s:bank");
  for (const int32_t bank : {3, 1, 2}) single->add_bank(bank, {});
  EXPECT_EQ(single->banks, (tdm::ObjectSet<int32_t>{1, 2, 3}));
  record.switchTemplate = "t";
  EXPECT_STREQ(make_bank_def(record, "s", "c:k:s")->kind_name(), "bar");
}

} // namespace
