// The environment inside a group: what is inherited, what replaces it, and which rules don't agree.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "common/failures.h"
#include "expressions/applications.h"
#include "layout/group.h"
#include "layout/statement_env.h"

namespace {

/// A space that nothing is mapped to.
class Space final : public tdm::LayoutSpace, public TDMMapSource, public TDMMapDestination {
public:
  [[nodiscard]] const TDMMapSource &source() const override { return *this; }
  [[nodiscard]] const TDMMapDestination &destination() const override { return *this; }
  [[nodiscard]] int32_t page_size() const override { return page_size_; }
  [[nodiscard]] const std::vector<std::unique_ptr<TDMRange>> &page_ranges() const override
  {
    return page_ranges_;
  }
  [[nodiscard]] const tdm::LayoutSpace *address_literal_space() const override { return nullptr; }

  int get_mau_size() const override { return 16; }
  void get_full_name(std::string &out) const override { out = "c:k:s"; }
  void add_outgoing_mapping(TDMMapping *) override {}
  void add_incoming_mapping(TDMMapping *) override {}
  const std::vector<TDMMapping *> &outgoing_mappings() const override { return none_; }
  const std::vector<TDMMapping *> &incoming_mappings() const override { return none_; }

  int32_t page_size_ = 0;

private:
  std::vector<std::unique_ptr<TDMRange>> page_ranges_;
  std::vector<TDMMapping *> none_;
};

std::unique_ptr<TDMExpression> number(int64_t value)
{
  return std::make_unique<TDMNumber>(value);
}

const Space space;

std::unique_ptr<TDMGroupLocation> at_address()
{
  auto location = std::make_unique<TDMGroupLocation>(space);
  location->address = number(0x100);
  return location;
}

std::unique_ptr<TDMGroupLocation> in_ranges()
{
  auto location = std::make_unique<TDMGroupLocation>(space);
  auto &range = location->ranges.emplace_back();
  range.low = number(0);
  range.high = number(8);
  return location;
}

/// Sets the property on a group as its text would: `run_addr`, `run_range` and so on stand for
/// locations of either form.
void set(TDMGroup &group, const std::string &property)
{
  if (property == "contiguous") group.contiguous = true;
  if (property == "ordered") group.ordered = true;
  if (property == "clustered") group.clustered = true;
  if (property == "overlay") group.overlay = true;
  if (property == "copy") group.copy = true;
  if (property == "nocopy") group.nocopy = true;
  if (property == "page" || property == "page=2") group.paged = true;
  if (property == "page=2") group.page_number = number(2);
  if (property == "run_addr") group.location = at_address();
  if (property == "run_range") group.location = in_ranges();
  group.is_run_address = group.is_run_address || property.rfind("run_", 0) == 0;
  if (property == "load_addr") group.load_time = true;
  if (property == "load_addr=") group.location = at_address();
  if (property == "load_range") group.location = in_ranges();
  if (property == "g") group.name = "g";
}

std::unique_ptr<TDMGroup> make_group(const std::vector<std::string> &properties)
{
  auto group = std::make_unique<TDMGroup>();
  const char *keys[] = {"group",      "contiguous",  "ordered", "clustered", "paged",
                        "runAddress", "loadAddress", "copy",    "nocopy"};
  int column = 0;
  for (const char *key : keys) group->sourceLocations.store(key, {"f", 1, column++});
  for (const std::string &property : properties) set(*group, property);
  return group;
}

struct Row {
  std::vector<std::vector<std::string>> groups; ///< from the outermost inwards
  const char *failure;                          ///< null if the rules agree
};

/// The failure of the innermost group, with the column that stands for its key, or "".
std::string failure_of(const Row &row, const Space &in)
{
  std::vector<std::unique_ptr<TDMGroup>> groups;
  std::unique_ptr<TDMStatementEnv> env = std::make_unique<TDMStatementEnv>();
  for (const auto &properties : row.groups) {
    groups.push_back(make_group(properties));
    try {
      env = tdm::inner_environment(*groups.back(), *env, in);
    } catch (TDMSyntaxException *failure) {
      const std::string text = failure->text();
      delete failure;
      EXPECT_EQ(groups.size(), row.groups.size()) << "an outer group fails: " << text;
      return text.substr(std::string("[\"f\" 1/").size());
    }
  }
  return "";
}

TEST(InnerEnvironment, RulesThatDontAgree)
{
  const Row rows[] = {
      {{{"ordered", "contiguous"}}, nullptr},
      {{{"contiguous", "clustered"}},
       "3] syntax error: trying to set contiguous restriction for clustered group"},
      {{{"ordered", "clustered", "contiguous"}},
       "3] syntax error: trying to set ordered restriction for clustered group"},
      {{{"clustered"}, {"contiguous", "g"}},
       "1] syntax error: trying to set clustered restriction for contiguous group"},
      {{{"clustered"}, {"ordered"}},
       "2] syntax error: trying to set clustered restriction for ordered group"},
      {{{"ordered"}, {"g"}, {"clustered"}},
       "3] syntax error: trying to set ordered restriction for clustered group"},

      {{{"ordered"}, {"page", "g"}},
       "4] syntax error: trying to set page restriction with ordered parent for group g"},
      {{{"contiguous"}, {"page"}},
       "4] syntax error: trying to set page restriction with contiguous parent for group"},
      {{{"clustered"}, {"page"}},
       "4] syntax error: trying to set page restriction with clustered parent for group"},
      {{{"ordered", "contiguous"}, {"page=2"}},
       "4] syntax error: trying to set absolute page restriction with ordered parent for group"},
      {{{"contiguous"}, {"page=2", "g"}},
       "4] syntax error: trying to set absolute page restriction with contiguous parent for group "
       "g"},
      {{{"clustered"}, {"page=2"}},
       "4] syntax error: trying to set absolute page restriction with clustered parent for group"},
      {{{"page", "ordered", "contiguous"}}, nullptr},
      {{{"page=2", "g"}},
       "4] syntax error: using page restriction without setting page size for space c:k:s"},

      {{{"run_addr"}}, "5] syntax error: absolute address set for unordered group"},
      {{{"load_addr=", "g"}}, "6] syntax error: absolute address set for unordered group g"},
      {{{"run_addr", "ordered"}}, nullptr},
      {{{"ordered"}, {"run_addr"}}, nullptr},
      {{{"ordered", "run_addr"}, {"run_addr", "g"}},
       "5] syntax error: trying to set address twice for group g"},
      {{{"ordered"}, {"run_range"}},
       "5] syntax error: trying to set range restriction with ordered parent for group"},
      {{{"contiguous"}, {"load_range", "g"}},
       "6] syntax error: trying to set range restriction with contiguous parent for group g"},
      {{{"clustered"}, {"run_range"}},
       "5] syntax error: trying to set range restriction with clustered parent for group"},
      {{{"run_range", "ordered"}}, nullptr},
      {{{"load_addr"}, {"run_range", "g"}},
       "5] syntax error: trying to set runtime address for loadtime group g"},
      {{{"load_addr", "run_range"}}, nullptr},
      {{{"load_addr"}, {"load_range"}}, nullptr},

      {{{"nocopy"}, {"copy", "g"}},
       "7] syntax error: trying to set copy attribute for group with inherited nocopy attribute g"},
      {{{"copy"}, {"copy"}}, "7] syntax error: trying to set copy attribute twice for group"},
      {{{"overlay"}, {"g"}, {"copy"}},
       "7] syntax error: trying to set copy attribute for overlay group"},
      {{{"load_addr", "copy"}},
       "7] syntax error: trying to set copy attribute for load-time group"},
      {{{"copy"}, {"nocopy"}},
       "8] syntax error: trying to set nocopy attribute for group with inherited copy attribute"},
      {{{"nocopy"}, {"nocopy", "g"}},
       "8] syntax error: trying to set nocopy attribute twice for group g"},
      {{{"overlay", "nocopy"}},
       "8] syntax error: trying to set nocopy attribute for overlay group"},
      {{{"load_addr"}, {"nocopy"}},
       "8] syntax error: trying to set nocopy attribute for load-time group"},
      {{{"copy"}, {"g"}}, nullptr},
  };
  for (const Row &row : rows)
    EXPECT_EQ(failure_of(row, space), row.failure != nullptr ? row.failure : "");

  Space paged;
  paged.page_size_ = 256;
  EXPECT_EQ(failure_of({{{"page=2"}}, nullptr}, paged), "");
}

TEST(InnerEnvironment, TakesOverAndReplaces)
{
  TDMStatementEnv outer;
  outer.page_size = 64;
  outer.direction = 2;
  auto group = make_group({"g", "ordered", "load_addr", "overlay", "page"});
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
  const auto plain = make_group({});
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
  EXPECT_EQ(inner->page_ranges->front().start, AddressValue(0, 0, 16));

  plain->pages.emplace_back(number(4), number(6));
  inner = tdm::inner_environment(*plain, outer, space);
  EXPECT_EQ(inner->page_ranges->front().start, AddressValue(4, 0, 16));
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
  const auto inner = tdm::inner_environment(*make_group({}), Derived(), space);
  EXPECT_NE(dynamic_cast<Derived *>(inner.get()), nullptr);
}

} // namespace
