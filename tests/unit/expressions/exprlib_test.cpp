// The operators of Exprlib: which types each takes, what it makes of them, what it refuses and what
// it leaves open.
#include <gtest/gtest.h>

#include <cmath>

#include "exprlib_support.h"

namespace {

using Node = ExprlibNode *;

TEST(Exprlib, RowsOfTheOperatorTable)
{
  // For each code the highest value type with an evaluation; -1 for none. 1 stands for operand.
  const int highest_type[52] = {6,  6,  6,  6,  5,  5,  3,  3,  4,  3,  3,  6,  4,
                                6,  5,  5,  3,  3,  3,  3,  3,  5,  3,  6,  6,  6,
                                6,  6,  6,  5,  6,  6,  6,  6,  6,  -1, -1, -1, -1,
                                -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  const Trees t;
  for (int code = 2; code < 52; ++code) {
    if (code == 31 || code == 32) continue; // not made of operand cells
    for (int type = 0; type < 7; ++type) {
      const Node tree = t.op(code, {t.of_type(type), t.of_type(type), t.of_type(type)});
      const std::string result = t.eval(tree);
      EXPECT_EQ(result == "! unknown operand", type > highest_type[code])
          << code << " " << type << " " << result;
    }
  }
  for (const int code : {-1, 52, 255, 256, 100000})
    EXPECT_EQ(t.eval(t.op(code, {t.i(1)})), "! unknown operand") << code;
  EXPECT_EQ(t.eval(t.op(30, {})), "! internal error");
  EXPECT_EQ(t.eval(t.op(33, {})), "! internal error");
  EXPECT_EQ(t.eval(t.op(5, {t.i(1)})), "! internal error");
  EXPECT_EQ(t.eval(t.op(15, {})), "! internal error");
  EXPECT_EQ(t.context->live_nodes, 0);
}

TEST(Exprlib, Results)
{
  const Trees t;
  const double nan = std::nan("");
  struct Row {
    Node tree;
    const char *expected;
  };
  const Row rows[] = {
      {t.op(2, {}), "int/8 -1"},
      {t.op(3, {}), "int/8 0"},
      {t.op(4, {t.i(-5)}), "int/32 5"},
      {t.op(4, {t.u(~0ULL)}), "unsigned int/32 0xffffffffffffffff"},
      {t.op(4, {t.d(-2.5)}), "double/64 2.5"},
      {t.op(4, {t.f({0xC0, 0})}), "fract/16 4000"},
      {t.op(5, {t.i(2, EXPRLIB_INT, 8), t.i(3)}), "int/32 5"},
      {t.op(5, {t.u(2), t.u(3)}), "unsigned int/32 5"},
      {t.op(5, {t.u(2), t.i(-3)}), "int/32 -1"},
      {t.op(5, {t.i(2, EXPRLIB_VOID), t.i(3, EXPRLIB_VOID)}), "void/32 5"},
      {t.op(5, {t.d(1.5), t.d(2)}), "double/64 3.5"},
      {t.op(5, {t.f({0x40}), t.f({0x40})}), "fract/8 80"},
      {t.op(5, {t.f({0x10}), t.f({0x20, 0x33})}), "fract/16 3033"},
      {t.op(6, {t.i(12), t.i(10)}), "int/32 8"},
      {t.op(7, {t.i(5)}), "int/32 -6"},
      {t.op(7, {t.u(0)}), "unsigned int/32 0xffffffffffffffff"},
      {t.op(8, {t.d(1), t.d(4)}), "double/64 0.25"},
      {t.op(9, {t.i(2), t.i(0, EXPRLIB_INT, 16)}), "int/32 0"},
      {t.op(9, {t.u(2), t.i(-1)}), "int/32 1"},
      {t.op(10, {t.i(0), t.u(0)}), "int/32 0"},
      {t.op(11, {t.i(-1), t.u(1)}), "unsigned int/32 1"},
      {t.op(11, {t.s("ab"), t.s("abc")}), "string/0 \"abc\""},
      {t.op(12, {t.i(-7), t.i(3)}), "int/32 -1"},
      {t.op(13, {t.d(1), t.d(-1)}), "double/64 -1"},
      {t.op(13, {t.f({0x81}), t.f({0x7F, 1})}), "fract/8 81"},
      {t.op(14, {t.i(6, EXPRLIB_INT, 4), t.i(7, EXPRLIB_INT, 8)}), "int/32 42"},
      {t.op(14, {t.i(6), t.i(7)}), "int/64 42"},
      {t.op(14, {t.d(1.5), t.d(3)}), "double/64 4.5"},
      {t.op(15, {t.i(5)}), "int/32 -5"},
      {t.op(15, {t.f({0x80, 0})}), "fract/16 7fff"},
      {t.op(16, {t.i(0)}), "int/8 1"},
      {t.op(16, {t.u(3)}), "int/8 0"},
      {t.op(17, {t.i(12), t.i(3)}), "int/32 15"},
      {t.op(18, {t.u(3), t.i(61)}), "unsigned int/32 6917529027641081856"},
      {t.op(18, {t.i(1), t.i(64)}), "int/32 0"},
      {t.op(18, {t.i(1, EXPRLIB_VOID), t.i(1)}), "open (1 << 1)"},
      {t.op(19, {t.i(-1), t.i(63)}), "int/32 1"},
      {t.op(20, {t.i(-5), t.i(1)}), "int/32 -3"},
      {t.op(20, {t.i(-5), t.i(1000)}), "int/32 -1"},
      {t.op(20, {t.u(~0ULL), t.i(60)}), "unsigned int/32 0xffffffffffffffff"},
      {t.op(18, {t.i(3), t.i(0x100000001)}), "int/32 6, overflow"},
      {t.op(18, {t.i(3), t.i(-1)}), "! not supported"},
      {t.op(21, {t.u(2), t.u(3)}), "unsigned int/32 0xffffffffffffffff"},
      {t.op(21, {t.f({0x20}), t.f({0x10, 0x01})}), "fract/16 0fff"},
      {t.op(22, {t.i(5), t.u(~0ULL)}), "int/32 -6"},
      {t.op(23, {t.i(-1), t.u(~0ULL)}), "int/8 0"},
      {t.op(23, {t.s("abc"), t.s("abc")}), "int/8 1"},
      {t.op(24, {t.s("abc"), t.s("abd")}), "int/8 1"},
      {t.op(24, {t.d(nan), t.d(nan)}), "int/8 1"},
      {t.op(25, {t.d(nan), t.d(nan)}), "int/8 0"},
      {t.op(25, {t.d(-0.0), t.d(0)}), "int/8 1"},
      {t.op(26, {t.f({0x40}), t.f({0x40, 0})}), "int/8 1"},
      {t.op(27, {t.s("\xFF"), t.s("a")}), "int/8 1"},
      {t.op(28, {t.i(-1), t.u(1)}), "int/8 1"},
      {t.op(28, {t.i(-3), t.i(-2)}), "int/8 1"},
      {t.op(28, {t.f({0x80}), t.f({0xC0})}), "int/8 1"},
      {t.op(28, {t.d(-1), t.d(nan)}), "int/8 1"}, // the signs decide
      {t.op(29, {t.i(3), t.s("then"), t.d(1)}), "string/0 \"then\""},
      {t.op(29, {t.d(0), t.s("then"), t.d(1)}), "double/64 1"},
      {t.op(29, {t.d(nan), t.i(1), t.i(2)}), "int/32 1"},
      {t.op(29, {t.i(1), t.i(9), t.op(8, {t.i(1), t.i(0)})}), "int/32 9"},
      {t.op(34, {t.i(0), t.s("fine"), t.i(7)}), "string/0 \"fine\""},
      // Division of integers: small, by size, long.
      {t.op(8, {t.i(-7), t.i(2)}), "int/32 -3"},
      {t.op(8, {t.i(-2147483648LL), t.i(-1)}), "int/32 2147483648"},
      {t.op(8, {t.i(0x80000000, EXPRLIB_UNSIGNED_INT), t.u(2)}), "unsigned int/32 1073741824"},
      {t.op(8, {t.i(-(1LL << 40)), t.i(3)}), "int/32 -366503875925"},
      {t.op(12, {t.i(-(1LL << 40)), t.i(3)}), "int/32 -1"},
      {t.op(12, {t.i(5), t.i(-(1LL << 40))}), "int/32 5"},
      {t.op(8, {t.u(~0ULL), t.u(~0ULL)}), "unsigned int/32 1"},
      {t.op(8, {t.u(~0ULL), t.i(-1)}), "int/32 1"}, // 2^64 - 1 over -1, wrapped
      // Marks.
      {t.op(5, {t.relocated(t.i(1)), t.i(2)}), "int/32 3@"},
      {t.op(23, {t.i(1), t.relocated(t.i(2))}), "int/8 0@"},
      {t.op(29, {t.relocated(t.i(1)), t.i(2), t.i(3)}), "int/32 2@"},
      {t.op(29, {t.i(1), t.i(2), t.relocated(t.i(3))}), "int/32 2"},
      {t.op(11, {t.relocated(t.i(1)), t.i(2)}), "int/32 2@"},
      {t.op(15, {t.relocated(t.i(1))}), "int/32 -1@"},
  };
  for (const Row &row : rows) EXPECT_EQ(t.eval(row.tree), row.expected) << (&row - rows);
  EXPECT_EQ(t.context->live_nodes, 0);
  EXPECT_EQ(t.context->strings, nullptr);
}

TEST(Exprlib, Failures)
{
  const Trees t;
  struct Row {
    Node tree;
    const char *expected;
  };
  const Row rows[] = {
      {t.op(5, {t.i(1), t.d(1)}), "! incompatible types"},
      {t.op(23, {t.f({1}), t.d(1)}), "! incompatible types"},
      {t.op(28, {t.s("a"), t.i(1)}), "! incompatible types"},
      {t.op(11, {t.i(1), t.d(1)}), "! incompatible types"},
      {t.op(8, {t.i(1), t.i(0)}), "! divide by zero"},
      {t.op(8, {t.d(1), t.d(-0.0)}), "! divide by zero"},
      {t.op(12, {t.d(1), t.d(2)}), "! not supported"},
      {t.op(6, {t.i(1, EXPRLIB_VOID), t.i(1)}), "! unknown type"},
      {t.op(9, {t.i(1), t.i(1, EXPRLIB_UNKNOWN)}), "! unknown type"},
      {t.op(14, {t.f({0x80}), t.f({0x80, 0})}), "! overflow"},
      {t.op(34, {t.i(1), t.i(2), t.i(7)}), "! evaluation error"},
      {t.op(34, {t.d(0), t.i(2), t.i(7)}), "! evaluation error"},
      {t.v(0), "! no value"},
      {t.v(99), "! no value"},
      {t.op(6, {t.v(0), t.i(1)}), "! unknown type"},
      {t.op(10, {t.i(1), t.v(0)}), "! unknown type"},
      {t.op(5, {t.i(1), t.op(8, {t.i(1), t.i(0)})}), "! divide by zero"},
      {t.op(29, {t.s("x"), t.i(1), t.i(2)}), "! unknown operand"},
      {t.cast(EXPRLIB_FRACT, t.i(1)), "! cannot convert"},
      {t.cast(EXPRLIB_STRING, t.i(1)), "! cannot convert"},
      {t.cast(EXPRLIB_INT, t.f({1})), "! cannot convert"},
      {t.cast(EXPRLIB_INT, t.s("1")), "! unknown type"},
      {t.cast(EXPRLIB_INT, t.i(1, EXPRLIB_VOID)), "! unknown type"},
      {t.cast(EXPRLIB_UNSIGNED_INT, t.d(-1)), "! cannot convert"},
      {t.cast(EXPRLIB_UNSIGNED_INT, t.d(std::ldexp(2.1, 64))), "! cannot convert"},
      {t.cast(EXPRLIB_INT, t.d(std::ldexp(1.1, 64))), "! cannot convert"},
      {t.cast(EXPRLIB_INT, t.d(HUGE_VAL)), "! cannot convert"},
      {t.cast(EXPRLIB_FRACT, t.d(std::nan(""))), "! cannot convert"},
  };
  for (const Row &row : rows) EXPECT_EQ(t.eval(row.tree), row.expected) << (&row - rows);
  EXPECT_EQ(t.context->live_nodes, 0);

  const char *texts[] = {"no error",
                         "internal error",
                         "overflow",
                         "too big",
                         "out of memory",
                         "free",
                         "unknown operand",
                         "unknown type",
                         "incompatible types",
                         "no value",
                         "divide by zero",
                         "cannot convert",
                         "domain error",
                         "fractional saturation error",
                         "relocation function evaluation error",
                         "evaluation error",
                         "not supported",
                         "unknown error"};
  for (int code = 0; code < 18; ++code) EXPECT_STREQ(exprlib_error_text(code), texts[code]);
  EXPECT_STREQ(exprlib_error_text(-1), "unknown error");
  // A success starts anew.
  EXPECT_EQ(t.eval(t.op(5, {t.i(1), t.i(1)})), "int/32 2");
}

TEST(Exprlib, Casts)
{
  const Trees t;
  struct Row {
    Node tree;
    const char *expected;
  };
  const Row rows[] = {
      {t.cast(EXPRLIB_UNSIGNED_INT, t.i(-1)), "unsigned int/32 0xffffffffffffffff"},
      {t.cast(EXPRLIB_VOID, t.i(5)), "void/32 5"},
      {t.cast(EXPRLIB_DOUBLE, t.i(-5)), "double/64 -5"},
      {t.cast(EXPRLIB_DOUBLE, t.u(~0ULL)), "double/64 1.8446744073709552e+19"},
      {t.cast(EXPRLIB_DOUBLE, t.i((1LL << 53) + 1)), "double/64 9007199254740992"},
      {t.cast(EXPRLIB_INT, t.d(-3.9)), "int/64 -3"},
      {t.cast(EXPRLIB_INT, t.d(std::ldexp(1, 63))), "int/64 -9223372036854775808"},
      {t.cast(EXPRLIB_UNSIGNED_INT, t.d(std::ldexp(1, 63))), "unsigned int/64 0x8000000000000000"},
      {t.cast(EXPRLIB_DOUBLE, t.d(0.1)), "double/64 0.10000000000000001"},
      {t.cast(EXPRLIB_FRACT, t.d(0.5)), "fract/64 4000000000000000"},
      {t.cast(EXPRLIB_FRACT, t.d(-0.5)), "fract/64 c000000000000000"},
      {t.cast(EXPRLIB_FRACT, t.d(1.0)), "fract/64 7fffffffffffffff, fractional saturation error"},
      {t.cast(EXPRLIB_FRACT, t.d(-1.0)), "fract/64 8000000000000000"},
      {t.cast(EXPRLIB_FRACT, t.d(-1.5)), "fract/64 8000000000000000, fractional saturation error"},
      {t.cast(EXPRLIB_DOUBLE, t.f({0x80, 0})), "double/64 -1"},
      {t.cast(EXPRLIB_DOUBLE, t.f({0xC0, 0, 0})), "double/64 -0.5"},
      {t.cast(EXPRLIB_FRACT, t.f({0x12, 0x34})), "fract/16 1234"},
      {t.cast(EXPRLIB_DOUBLE, t.relocated(t.i(1))), "double/64 1@"},
      {t.cast(EXPRLIB_DOUBLE, t.v(0)), "open (double) $0"},
  };
  for (const Row &row : rows) EXPECT_EQ(t.eval(row.tree), row.expected) << (&row - rows);
  EXPECT_EQ(t.context->live_nodes, 0);
  const Trees wide(200); // more bytes than the range of doubles
  EXPECT_EQ(wide.eval(wide.cast(EXPRLIB_INT, wide.d(-70000.5))), "int/1600 -70000");
}

TEST(Exprlib, OpenOperandsAreFoldedLater)
{
  struct Row {
    int code;
    bool first; // the open operand
    const char *open;
    const char *folded; // with the value 6
  };
  const Row rows[] = {
      {5, true, "($0 + 3)", "int/32 9"},      {5, false, "(3 + $0)", "int/32 9"},
      {21, true, "($0 - 3)", "int/32 3"},     {14, true, "($0 * 3)", "int/64 18"},
      {8, true, "($0 / 3)", "int/32 2"},      {12, true, "($0 % 3)", "int/32 0"},
      {18, false, "(3 << $0)", "int/32 192"}, {19, true, "($0 >> 3)", "int/32 0"},
      {20, true, "($0 >> 3)", "int/32 0"},    {23, true, "($0 == 3)", "int/8 0"},
      {28, false, "(3 < $0)", "int/8 1"},     {11, true, "max($0, 3)", "int/32 6"},
      {13, true, "min($0, 3)", "int/32 3"},   {15, true, "-$0", "int/32 -6"},
      {4, true, "abs($0)", "int/32 6"},       {7, true, "~$0", "int/32 -7"},
      {16, true, "!$0", "int/8 0"},
  };
  for (const Row &row : rows) {
    const Trees t;
    const bool single = row.code == 15 || row.code == 4 || row.code == 7 || row.code == 16;
    const Node tree = single      ? t.op(row.code, {t.v(0)})
                      : row.first ? t.op(row.code, {t.v(0), t.i(3)})
                                  : t.op(row.code, {t.i(3), t.v(0)});
    const Node sum = t.op(5, {tree, t.op(5, {t.i(1), t.i(1)})});
    ASSERT_EQ(exprlib_eval(sum), 0) << row.code;
    EXPECT_EQ(printed(sum), std::string("(") + row.open + " + 2)");
    EXPECT_EQ(exprlib_error(t.context), 0);

    t.rows[0].value = t.i(6);
    const Node inner = exprlib_child(sum, 0);
    ASSERT_EQ(exprlib_eval(inner), 0);
    EXPECT_EQ(t.described(inner), row.folded) << row.code;
    ASSERT_EQ(exprlib_eval(sum), 0);
    EXPECT_EQ(sum->op, 0);
    exprlib_release(sum);
    exprlib_release(t.rows[0].value);
    EXPECT_EQ(t.context->live_nodes, 0);
  }
}

TEST(Exprlib, ConditionalOfOpenParts)
{
  const Trees t;
  EXPECT_EQ(t.eval(t.op(29, {t.v(0), t.i(1), t.i(2)})), "int/32 1");
  EXPECT_EQ(t.eval(t.op(29, {t.i(1), t.op(5, {t.v(0), t.i(1)}), t.i(2)})), "open ($0 + 1)");
  EXPECT_EQ(t.eval(t.op(29, {t.i(1), t.v(3), t.i(2)})), "open $3");
  EXPECT_EQ(t.eval(t.op(29, {t.i(1), t.cast(EXPRLIB_DOUBLE, t.v(1)), t.i(2)})), "open (double) $1");
  EXPECT_EQ(t.eval(t.op(34, {t.v(0), t.i(1), t.i(2)})), "! evaluation error");
  EXPECT_EQ(t.context->live_nodes, 0);
}

TEST(Exprlib, Variables)
{
  const Trees t;
  t.rows[0].value = t.op(5, {t.relocated(t.i(1)), t.i(2)});
  t.rows[1].value = t.v(0);
  t.rows[2].value = t.op(5, {t.v(3), t.i(2)});
  EXPECT_EQ(t.eval(t.op(14, {t.v(1), t.v(0)})), "int/64 9@");
  EXPECT_EQ(t.described(t.rows[1].value), "int/32 3@");
  EXPECT_EQ(t.eval(t.v(2)), "! internal error"); // its value stays open

  // A variable whose value leads back to it, at once or through an operator.
  t.rows[3].value = t.v(2);
  EXPECT_EQ(t.eval(t.v(2)), "! internal error");
  EXPECT_EQ(t.eval(t.op(5, {t.v(3), t.i(1)})), "! internal error");

  // A type that only shows with the value is tested then.
  const Node text = t.s("text");
  std::swap(t.rows[0].value, const_cast<Node &>(text));
  EXPECT_EQ(t.eval(t.op(5, {t.v(0), t.i(1)})), "! incompatible types");
  EXPECT_EQ(t.eval(t.op(5, {t.v(0), t.v(0)})), "! unknown operand");
  EXPECT_EQ(t.eval(t.op(16, {t.v(0)})), "! unknown operand");
  EXPECT_EQ(t.eval(t.op(23, {t.v(0), t.v(0)})), "int/8 1");
  exprlib_release(text);
  // The cycle is given up by hand, as its owner would.
  for (ExprlibSymbolRow &row : t.rows)
    if (row.value != nullptr) exprlib_release(row.value);
  EXPECT_EQ(t.context->live_nodes, 0);
}

TEST(Exprlib, FunctionsOfTheCaller)
{
  const Trees t(16);
  static std::string log;
  log.clear();
  t.context->error_hook = [](std::uint32_t number, Node node) {
    log += std::to_string(number) + printed(node) + exprlib_error_text(node->context->error) + ";";
  };
  EXPECT_EQ(t.eval(t.op(34, {t.i(1), t.op(5, {t.v(0), t.i(2)}), t.i(0x700000007)})),
            "! evaluation error");
  EXPECT_EQ(t.eval(t.op(34, {t.i(1), t.i(2), t.i(-1)})), "! evaluation error");
  EXPECT_EQ(log, "7($0 + 2)no error;42949672952overflow;");

  Node relocation = nullptr;
  Node child = t.op(5, {t.i(1), t.i(2)});
  int base = 1000;
  exprlib_make_relocation(t.context, &relocation, &base, child);
  EXPECT_EQ(exprlib_eval(relocation), 1);
  EXPECT_EQ(exprlib_error(t.context), EXPRLIB_RELOCATION_ERROR);
  t.context->relocation_evaluator = [](void *, Node) { return 0; };
  EXPECT_EQ(exprlib_eval(relocation), 1); // the child is no constant
  EXPECT_EQ(exprlib_error(t.context), EXPRLIB_INTERNAL_ERROR);
  t.context->relocation_evaluator = [](void *argument, Node node) {
    if (exprlib_eval(node) != 0) return 1;
    Node offset = nullptr;
    exprlib_make_int32(node->context, &offset, *static_cast<int *>(argument));
    Node sum = offset;
    exprlib_make_operator(node->context, &sum, EXPRLIB_ADD, 2, offset, node);
    const int result = exprlib_eval(sum) || exprlib_become(node, sum);
    node->relocatable = 1;
    exprlib_release(sum);
    return result;
  };
  EXPECT_EQ(t.eval(relocation), "int/32 1003@");
  exprlib_release(child);

  const auto first_doubled = [](Node node, void *closure) {
    Node operand = exprlib_child(node, 0);
    if (exprlib_eval(operand) != 0) return 1;
    ++*static_cast<int *>(closure);
    exprlib_bytes(operand)[0] = static_cast<std::uint8_t>(2 * exprlib_bytes(operand)[0]);
    return exprlib_become(node, operand);
  };
  int calls = 0;
  const ExprlibUserOperator operators[] = {{300, first_doubled, &calls}};
  t.context->user_operators = operators;
  t.context->user_operator_count = 1;
  EXPECT_EQ(t.eval(t.op(5, {t.op(300, {t.op(14, {t.i(3), t.i(4)}), t.d(1)}), t.i(1)})),
            "int/128 25");
  EXPECT_EQ(t.eval(t.op(300, {t.op(8, {t.i(1), t.i(0)})})), "! divide by zero");
  EXPECT_EQ(t.eval(t.op(301, {t.i(1)})), "! unknown operand");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(t.context->live_nodes, 0);
}

TEST(Exprlib, ReferencesOfOperands)
{
  const Trees t;
  const Trees other(4);
  Node shared = t.i(3);
  Node node = shared;
  ASSERT_EQ(exprlib_make_operator(t.context, &node, EXPRLIB_MULTIPLY, 2, shared, shared), 0);
  EXPECT_EQ(shared->references, 2); // one was handed over
  ASSERT_EQ(exprlib_make_operator(t.context, &node, EXPRLIB_NEGATE, 1, node), 0);
  EXPECT_EQ(t.eval(node), "int/64 -9");
  EXPECT_EQ(t.context->live_nodes, 0);

  node = nullptr;
  shared = other.i(1);
  EXPECT_EQ(exprlib_make_operator(t.context, &node, EXPRLIB_NEGATE, 1, shared), 1);
  EXPECT_EQ(exprlib_make_cast(t.context, &node, EXPRLIB_INT, shared), 1);
  EXPECT_EQ(exprlib_error(t.context), EXPRLIB_INTERNAL_ERROR);
  exprlib_release(shared);

  const std::uint8_t long_fract[100] = {};
  EXPECT_EQ(exprlib_make_fract(t.context, &node, long_fract, sizeof long_fract), 1);
  EXPECT_EQ(exprlib_error(t.context), EXPRLIB_TOO_BIG);
  EXPECT_EQ(exprlib_make_integer(t.context, &node, EXPRLIB_DOUBLE, long_fract, 1, 8), 1);
  EXPECT_EQ(exprlib_error(t.context), EXPRLIB_UNKNOWN_TYPE);
  for (const std::uint32_t size : {0U, 8192U}) {
    ExprlibContext *context = nullptr;
    EXPECT_EQ(exprlib_make_context(&context, size, 0), 1);
    EXPECT_EQ(context, nullptr);
  }
}

TEST(Exprlib, Printing)
{
  const Trees t(16);
  struct Row {
    Node tree;
    const char *text;
  };
  const Row rows[] = {
      {t.op(29, {t.op(16, {t.v(1)}), t.d(0.5), t.f({0xC0})}), "(!$1 ? 0.5 : -0.5r)"},
      {t.op(34, {t.op(2, {}), t.s("a\"b\\"), t.op(30, {})}), "error(true, \"a\\\"b\\\\\", (nop))"},
      {t.op(36, {t.op(300, {t.i(1), t.i(2)})}), "asin(operator300(1, 2))"},
      {t.op(33, {}), "operator33()"},
      {t.op(18, {t.u(1), t.op(5, {t.i(1), t.i(-2)})}), "(1 << (1 + -2))"},
      {t.cast(EXPRLIB_FRACT, t.op(7, {t.v(0)})), "(fract) ~$0"},
      {t.op(18, {t.op(2, {}), t.i(70)}), "(true << 70)"},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(printed(row.tree), row.text);
    exprlib_release(row.tree);
  }
  EXPECT_EQ(t.eval(t.op(18, {t.i(1), t.i(70)})), "int/32 0x400000000000000000");
  EXPECT_EQ(t.eval(t.op(18, {t.i(-1), t.i(70)})), "int/32 -0x400000000000000000");
}

} // namespace
