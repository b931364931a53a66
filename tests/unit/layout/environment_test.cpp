// The environment inside a group: what is inherited and what replaces it. Which rules don't agree
// is shown by cases.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "empty_space.h"
#include "expressions/applications.h"
#include "layout/group.h"
#include "layout/statement_env.h"

namespace {

std::unique_ptr<TDMExpression> number(int64_t value)
{
  return std::make_unique<TDMNumber>(value);
}

const EmptySpace space;

TEST(InnerEnvironment, TakesOverAndReplaces)
{
  TDMStatementEnv outer;
  outer.page_size = 64;
  outer.direction = 2;
  auto group = std::make_unique<TDMGroup>();
  group->name = "g";
  group->ordered = group->load_time = group->overlay = group->paged = true;
  group->alignment = number(4);
  group->attributes = TDMAttributes{.w = true};
  group->priority = 5;
  group->cross_references = true;
  group->output_section_name = "out";
  const auto first = tdm::inner_environment(*group, outer, space);
  EXPECT_TRUE(first->ordered && first->overlay && first->load_time && first->paged);
  EXPECT_EQ(first->alignment->value(), 4);
  EXPECT_TRUE(first->attributes->w);
  EXPECT_EQ(first->priority, 5);
  EXPECT_TRUE(first->allow_cross_references);
  EXPECT_EQ(*first->output_section_name, "out");
  EXPECT_EQ(*first->group_name, "g");
  EXPECT_EQ(first->page_size, 64);
  EXPECT_EQ(first->direction, 2);
  EXPECT_EQ(first->overlay_depth, 0);
  EXPECT_FALSE(outer.ordered || outer.load_time);

  // Without a word of its own a group has what is around it; priority 1 is no word.
  std::unique_ptr<TDMStatementEnv> inner;
  const TDMStatementEnv *around = first.get();
  const auto plain = std::make_unique<TDMGroup>();
  plain->page_size = number(32);
  for (int depth = 1; depth <= 3; ++depth) {
    inner = tdm::inner_environment(*plain, *around, space);
    around = inner.get();
    EXPECT_EQ(inner->overlay_depth, depth);
  }
  EXPECT_EQ(inner->priority, 5);
  EXPECT_EQ(inner->alignment, first->alignment);
  EXPECT_EQ(*inner->group_name, "g");
  EXPECT_EQ(inner->page_size, 32);
  ASSERT_EQ(inner->page_ranges->size(), 1U);
  EXPECT_EQ(inner->page_ranges->front().size, 32);
  EXPECT_EQ(inner->page_ranges->front().start, AddressValue(0, 0, 8));

  plain->pages.emplace_back(number(4), number(6));
  inner = tdm::inner_environment(*plain, outer, space);
  EXPECT_EQ(inner->page_ranges->front().start, AddressValue(4, 0, 8));
  EXPECT_EQ(inner->page_ranges->front().size, 2);
}

TEST(InnerEnvironment, KeepsTheDynamicType)
{
  struct Derived final : TDMStatementEnv {
    Derived() = default;
    std::unique_ptr<TDMStatementEnv> clone() const override
    {
      return std::unique_ptr<TDMStatementEnv>(new Derived(*this));
    }
  };
  const auto inner = tdm::inner_environment(TDMGroup(), Derived(), space);
  EXPECT_NE(dynamic_cast<Derived *>(inner.get()), nullptr);
}

} // namespace
