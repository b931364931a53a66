// Expressions as Exprlib trees: the form of each class, and that folding gives what evaluation
// does.
#include <gtest/gtest.h>

#include "expressions/applications.h"
#include "expressions/queries.h"
#include "support.h"

namespace {

TEST(Rendering, FormsOfAllClasses)
{
  LoggingEnv env;
  env.values = {{"s", 5}, {"g.begin", 1}, {"g.end", 9}};
  const std::string not_supported = "expression manipulation error: not supported";
  struct Row {
    ExpressionPtr record;
    std::string text; // of the tree, "null", or of the failure
    const char *log;
  };
  const Row rows[] = {
      {num(-7), "-7", ""},
      {unary(1, num(3)), "!3", ""},
      {unary(2, num(3)), "(3 ^ 0xffffffffffffffff)", ""},
      {unary(3, num(3)), "-3", ""},
      {unary(5, num(3)), "3", ""},
      {std::make_unique<TDMExprAbsolute>(num(3)), "abs(3)", ""},
      {std::make_unique<TDMExprMin>(num(3), num(4)), "min(3, 4)", ""},
      {std::make_unique<TDMExprMax>(num(3), num(4)), "max(3, 4)", ""},
      {conditional(num(1), num(2), num(3)), "(1 ? 2 : 3)", ""},
      {symbol("s"), "5", "node s;"},
      {symbol("none"), "null", "node none;"},
      {address_of(0, "s", true), "5", "address_node s 20;"},
      {address_of(0, "s"), "5", "address_node s 9;"},
      {address_of(1, "g"), "1", "group_node g;"},
      {address_of(7, "g"), "null", ""},
      {size_of(1, "s", true), "5", "size_node s 20;"},
      {size_of(2, "g"), "(9 - 1)", "node g.end;node g.begin;"},
      {size_of(3, "g", true),
       "[\"file\" 7/20] syntax error: unsupported argument type for sizeof()", ""},
      {defined("s"), "null", ""},
      {exists("s"), "null", ""},
      {checksum(num(1), num(2)), "null", ""},
      {binary(4, num(1), exists("s")), not_supported, ""},
      {unary(3, defined("s")), not_supported, ""},
      {conditional(symbol("s"), num(1), symbol("none")), not_supported, "node s;node none;"},
      {binary(0, num(1), num(2)), "int 0", ""},
      {unary(0, num(1)), "int 0", ""},
  };
  for (const Row &row : rows) {
    std::string text;
    const std::string failure = failure_of([&] {
      ExprlibNode *node = translated(*row.record)->to_exprlib(&env);
      text = node == nullptr ? "null" : printed(node);
      if (node != nullptr) exprlib_release(node);
    });
    EXPECT_EQ(text + failure, row.text) << (&row - rows);
    EXPECT_EQ(env.take_log(), row.log) << (&row - rows);
    EXPECT_EQ(env.context->live_nodes, 0) << (&row - rows);
  }
  TDMReferenced referenced("s");
  EXPECT_EQ(referenced.to_exprlib(&env), nullptr);
  EXPECT_EQ(failure_of([&] { translated(*num(1))->to_exprlib(nullptr); }), not_supported);
}

TEST(Rendering, FoldingAgreesWithEvaluation)
{
  for (const std::uint32_t size : {8U, 10U, 16U}) {
    LoggingEnv env(size);
    for (std::int32_t op = 1; op <= 20; ++op)
      for (const std::int64_t a : {0LL, 1LL, 7LL, -9LL, 1LL << 40, -(1LL << 41)})
        for (const std::int64_t b : {1LL, 2LL, 7LL, -9LL, 33LL, 1LL << 35}) {
          if ((op == 6 || op == 7) && (b < 0 || b > 31 || (op == 6 && a < 0))) continue;
          if ((op == 1 || op == 7) && (a > 1000 || a < -1000) && (b > 20 || size > 8)) continue;
          TDMBinaryApplication sum(op, std::make_unique<TDMNumber>(a),
                                   std::make_unique<TDMNumber>(b));
          ExprlibNode *node = sum.to_exprlib(&env);
          ASSERT_EQ(exprlib_eval(node), 0) << op;
          EXPECT_EQ(exprlib_int64(node), sum.value()) << a << " op " << op << " " << b;
          exprlib_release(node);
        }
    for (const std::int64_t a : {0LL, 5LL, -9LL})
      for (std::int32_t op = 1; op <= 4; ++op) {
        TDMUnaryApplication unary_object(op, std::make_unique<TDMNumber>(a));
        ExprlibNode *node = unary_object.to_exprlib(&env);
        ASSERT_EQ(exprlib_eval(node), 0) << op;
        EXPECT_EQ(exprlib_int64(node), unary_object.value()) << op << " " << a;
        exprlib_release(node);
      }
  }
  // The right shift of a rendering is the logical one.
  LoggingEnv env;
  TDMBinaryApplication shift(6, std::make_unique<TDMNumber>(-1), std::make_unique<TDMNumber>(1));
  EXPECT_EQ(shift.value(), -1);
  ExprlibNode *node = shift.to_exprlib(&env);
  EXPECT_EQ(node->op, EXPRLIB_SHIFT_RIGHT_LOGICAL);
  EXPECT_EQ(exprlib_eval(node), 0);
  EXPECT_EQ(exprlib_int64(node), std::numeric_limits<std::int64_t>::max());
  exprlib_release(node);
}

} // namespace
