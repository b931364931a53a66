// Scopes: binding parameters, passing arguments on, variables that lead astray; and the depth that
// all loops over expressions stand.
#include <gtest/gtest.h>

#include <deque>

#include "expressions/applications.h"
#include "preprocessor/string_pool.h"
#include "support.h"

namespace {

/// Scopes refer to parameters and arguments, as records that outlive them.
template <class List> List &kept(List list)
{
  static std::deque<List> lists;
  return lists.emplace_back(std::move(list));
}

const tdm::FileParameters &parameters(std::initializer_list<const char *> names,
                                      int defaults_from = 99)
{
  tdm::FileParameters list;
  for (const char *name : names) {
    const bool has_default = static_cast<int>(list.size()) >= defaults_from;
    list.push_back({name, has_default ? binary(4, var("a"), num(1)) : nullptr});
  }
  return kept(std::move(list));
}

tdm::Arguments arguments(std::initializer_list<std::int64_t> values)
{
  ExpressionList list;
  for (const std::int64_t value : values) list.push_back(num(value));
  return tdm::arguments_of(kept(std::move(list)));
}

TEST(Scope, BindsArgumentsAndDefaults)
{
  tdm::ArgumentScope scope;
  scope.bind(parameters({"a", "b"}, 1), arguments({5}));
  EXPECT_EQ(tdm::evaluate(*var("b"), scope, here), 6);
  scope.bind(parameters({"a", "b"}, 1), arguments({5, 50}));
  EXPECT_EQ(tdm::evaluate(*var("b"), scope, here), 50);
  EXPECT_EQ(failure_of([&] {
              scope.bind(parameters({"a"}, 0), arguments({1, 2}));
            }),
            "too many arguments");
  EXPECT_EQ(failure_of([&] {
              scope.bind(parameters({"a", "c"}), arguments({1}));
            }),
            "too few arguments");
}

TEST(Scope, ReportsNamesWithoutARecord)
{
  const std::string at_place = "[\"file\" 7/9] syntax error: ";
  const std::string at_record = "[\"file\" 7/20] syntax error: ";
  tdm::ArgumentScope scope;
  scope.bind("indirect", var("missing"));
  scope.bind("a", binary(4, var("b"), num(1)));
  scope.bind("b", unary(5, var("a")));
  scope.bind("self", var("self"));
  struct Row {
    ExpressionPtr record;
    std::string text;
  };
  const Row rows[] = {
      {var("missing", true), at_record + "TDM variable \"missing\" is used but not defined"},
      {var("missing"), at_place + "TDM variable \"missing\" is used but not defined"},
      {var("indirect", true), at_place + "TDM variable \"missing\" is used but not defined"},
      {conditional(num(1), num(2), var("missing")),
       at_place + "TDM variable \"missing\" is used but not defined"},
      {binary(4, var("first"), var("second")),
       at_place + "TDM variable \"first\" is used but not defined"},
      {address_of(2, "cpu:ram", true),
       at_record + "could not resolve memory reference \"cpu:ram\" in addressof expression"},
      {size_of(4, "ram"),
       at_place + "could not resolve memory reference \"ram\" in sizeof expression"},
      {var("a", true), at_place + "TDM variable \"a\" is defined by itself"},
      {var("b", true), at_place + "TDM variable \"b\" is defined by itself"},
      {var("self", true), at_place + "TDM variable \"self\" is defined by itself"},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(failure_of([&] { (void)tdm::evaluate(*row.record, scope, here); }), row.text);
    EXPECT_EQ(failure_of([&] { (void)translated(*row.record, scope); }), row.text);
  }
  // What an argument says counts as written where its parameter is used.
  ExpressionList elsewhere;
  elsewhere.push_back(binary(4, num(1), var("missing", true)));
  elsewhere.push_back(unary(5, symbol("s", true)));
  tdm::ArgumentScope receiver;
  receiver.bind(parameters({"x", "y"}), tdm::arguments_of(elsewhere));
  EXPECT_EQ(failure_of([&] { (void)translated(*binary(4, var("x"), num(1)), receiver); }),
            at_place + "TDM variable \"missing\" is used but not defined");
  EXPECT_EQ(translated(*var("y"), receiver)->location("name"), nullptr);
  EXPECT_NE(translated(*elsewhere[1], receiver)->location("name"), nullptr);
  // The second use of a variable is no cycle.
  scope.bind("c", num(4));
  EXPECT_EQ(translated(*binary(1, var("c"), var("c")), scope)->value(), 16);
}

TEST(Scope, MemoriesAreAskedForOnce)
{
  struct Memories final : tdm::MemoryReferences {
    std::optional<std::int64_t> memory_address(const std::string &memory) override
    {
      ++asked;
      return memory == "ram" ? std::optional<std::int64_t>(0x400) : std::nullopt;
    }
    std::optional<std::int64_t> memory_size(const std::string &) override { return 0x100; }
    int asked = 0;
  } memories;
  tdm::ArgumentScope outer;
  outer.bind("a", address_of(2, "ram"));
  const tdm::ArgumentScope scope(outer, memories);
  EXPECT_EQ(tdm::evaluate(*binary(4, var("a"), size_of(4, "ram")), scope, here), 0x500);
  EXPECT_EQ(tdm::evaluate(*address_of(2, "ram"), scope, here), 0x400);
  EXPECT_EQ(memories.asked, 1);
  EXPECT_EQ(failure_of([&] { (void)tdm::evaluate(*address_of(2, "rom"), scope, here); }),
            "[\"file\" 7/9] syntax error: could not resolve memory reference \"rom\" in addressof "
            "expression");
}

TEST(Scope, SubstitutesVariablesOnce)
{
  tdm::ArgumentScope inner;
  inner.bind("a", num(1));
  inner.bind("b", binary(4, var("a"), num(1)));
  ExpressionList list;
  list.push_back(var("b"));
  list.push_back(binary(1, var("a"), conditional(var("b"), size_of(4, "m"), num(3))));
  tdm::ArgumentScope receiver;
  receiver.bind(parameters({"x", "y"}), inner.substitute(list, here));
  EXPECT_EQ(failure_of([&] { (void)tdm::evaluate(*var("x"), receiver, here); }),
            "[\"file\" 7/9] syntax error: TDM variable \"a\" is used but not defined");
  receiver.bind("a", num(100));
  receiver.bind("__mem_size:m", num(7));
  EXPECT_EQ(tdm::evaluate(*var("x"), receiver, here), 101);
  EXPECT_EQ(tdm::evaluate(*var("y"), receiver, here), 7); // its own `a` was replaced by 1

  ExpressionList unknown;
  unknown.push_back(binary(4, num(1), var("z", true)));
  EXPECT_EQ(failure_of([&] { (void)inner.substitute(unknown, here); }),
            "[\"file\" 7/20] syntax error: TDM variable \"z\" is used but not defined");
}

/// The name of a parameter.
tdm::Text numbered(int i)
{
  return tdm::pooled_text("p" + std::to_string(i));
}

const std::string too_large =
    "[\"file\" 7/9] syntax error: expression too large, the limit is 1000000 terms";

TEST(Scope, EndsExplosions)
{
  tdm::ArgumentScope doubling;
  doubling.bind("p0", num(1));
  for (int i = 1; i <= 60; ++i) {
    const tdm::Text below = numbered(i - 1);
    doubling.bind(numbered(i), binary(4, var(below), var(below)));
  }
  EXPECT_EQ(tdm::evaluate(*var("p12"), doubling, here), 4096);
  EXPECT_EQ(failure_of([&] { (void)tdm::evaluate(*var("p60"), doubling, here); }), too_large);

  tdm::Arguments passed = arguments({1});
  const std::string text = failure_of([&] {
    for (int i = 0; i < 60; ++i) {
      tdm::ArgumentScope scope;
      scope.bind(parameters({"a"}), std::move(passed));
      ExpressionList next;
      next.push_back(binary(4, var("a"), var("a")));
      passed = scope.substitute(next, here);
    }
  });
  EXPECT_EQ(text, too_large);
}

constexpr int depth = 100'000;

ExpressionPtr deep(int shape)
{
  ExpressionPtr record = symbol("s");
  for (int i = 0; i < depth; ++i) switch (shape) {
    case 0:
      record = binary(4, std::move(record), num(1));
      break;
    case 1:
      record = binary(4, num(1), std::move(record));
      break;
    case 2:
      record = unary(i % 2 == 0 ? 3 : 5, std::move(record));
      break;
    case 3:
      record = conditional(std::move(record), num(1), num(0));
      break;
    case 4:
      record = conditional(num(0), num(1), std::move(record));
      break;
    default:
      record = std::make_unique<TDMExprMax>(num(0), std::move(record));
      break;
    }
  return record;
}

void run_through_deep_trees()
{
  const std::int64_t expected[] = {depth + 1, depth + 1, 1, 1, 1, 1};
  for (int shape = 0; shape < 6; ++shape) {
    LoggingEnv env(4);
    env.values = {{"s", 1}};
    ExpressionPtr record = deep(shape);
    std::unique_ptr<TDMExpression> expression = translated(*record);
    record.reset();
    EXPECT_EQ(expression->value(&env), expected[shape]);
    std::unique_ptr<TDMExpression> copy = expression->clone();
    expression->clear_cached();
    expression->forget();
    expression.reset();
    EXPECT_TRUE(copy->refers_to_defined(&env));
    EXPECT_TRUE(copy->refers_to_any({"s"}));
    TDMExpression::DataRanges ranges;
    copy->collect_data_ranges(&env, ranges);
    ExprlibNode *node = copy->to_exprlib(&env);
    EXPECT_GT(printed(node).size(), static_cast<std::size_t>(depth / 2));
    EXPECT_EQ(exprlib_eval(node), 0);
    EXPECT_EQ(exprlib_int64(node), expected[shape]);
    exprlib_release(node);
    node = copy->to_exprlib(&env);
    exprlib_release(node);
    EXPECT_EQ(env.context->live_nodes, 0);
  }
}

void run_through_long_chains()
{
  tdm::ArgumentScope scope;
  for (int i = 0; i < depth; ++i) scope.bind(numbered(i), var(numbered(i + 1)));
  scope.bind(numbered(depth), num(3));
  EXPECT_EQ(tdm::evaluate(*var("p0"), scope, here), 3);
  scope.bind(numbered(depth), var("p1"));
  EXPECT_NE(failure_of([&] { (void)tdm::evaluate(*var("p0"), scope, here); }), "");

  ExpressionList list;
  list.push_back(deep(0));
  list.push_back(deep(1));
  list.push_back(binary(4, deep(0), var("p0")));
  EXPECT_EQ(scope.substitute(list, here).size(), 3U);
}

TEST(Depth, TreesOnASmallStack)
{
  on_small_stack(run_through_deep_trees);
}

TEST(Depth, ChainsOnASmallStack)
{
  on_small_stack(run_through_long_chains);
}

} // namespace
