// The values of expressions, what evaluation asks the environment, what is kept, what fails.
#include <gtest/gtest.h>
#include <zlib.h>

#include "expressions/applications.h"
#include "expressions/checksum.h"
#include "expressions/queries.h"
#include "support.h"

namespace {

const std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
const std::int64_t highest = std::numeric_limits<std::int64_t>::max();
const std::int64_t values[] = {0,
                               1,
                               2,
                               3,
                               7,
                               31,
                               32,
                               33,
                               63,
                               64,
                               65,
                               -1,
                               -2,
                               -3,
                               0x7FFFFFFF,
                               0x80000000,
                               -32,
                               1LL << 32,
                               -2147483648LL,
                               12345678901,
                               lowest,
                               lowest + 1,
                               highest,
                               0x1FFFFFFFF};

std::int64_t wrapped(Wide value)
{
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(static_cast<UnsignedWide>(value)));
}

std::int64_t product(Wide x, Wide y)
{
  return wrapped(static_cast<Wide>(static_cast<UnsignedWide>(x) * static_cast<UnsignedWide>(y)));
}

/// Moves words and bits one after the other, as the rule for counts is put.
std::int64_t shifted(bool left, std::int64_t value, std::int64_t count_value)
{
  auto count = static_cast<std::uint32_t>(count_value);
  auto high = static_cast<std::int32_t>(value >> 32);
  auto low = static_cast<std::uint32_t>(value);
  if (count >= 32) {
    count %= 32;
    if (left) {
      high = static_cast<std::int32_t>(low);
      low = 0;
    } else {
      low = static_cast<std::uint32_t>(high);
      high = high < 0 ? -1 : 0;
    }
  }
  const Wide both = (static_cast<Wide>(high) << 32) + low;
  const Wide factor = static_cast<Wide>(1) << count;
  if (left) return product(both, factor);
  return wrapped(both >= 0 ? both / factor : -((-both + factor - 1) / factor));
}

std::int64_t reference(std::int32_t op, std::int64_t a, std::int64_t b)
{
  const Wide x = a;
  const Wide y = b;
  switch (op) {
  case 1:
    return product(x, y);
  case 2:
    return wrapped(x / y);
  case 3:
    return wrapped(x % y);
  case 4:
    return wrapped(x + y);
  case 5:
    return wrapped(x - y);
  case 6:
    return shifted(false, a, b);
  case 7:
    return shifted(true, a, b);
  case 8:
    return x == y;
  case 9:
    return x != y;
  case 10:
    return x > y;
  case 11:
    return x < y;
  case 12:
    return x >= y;
  case 13:
    return x <= y;
  case 14:
    return a & b;
  case 15:
    return a ^ b;
  case 16:
    return a | b;
  case 17:
    return a && b;
  case 18:
    return a || b;
  case 19:
    return std::min(a, b);
  default:
    return std::max(a, b);
  }
}

TEST(Evaluation, BinaryOperatorsMatchWideArithmetic)
{
  for (std::int32_t op = 1; op <= 20; ++op)
    for (const std::int64_t a : values)
      for (const std::int64_t b : values) {
        if ((op == 2 || op == 3) && b == 0) continue;
        const std::int64_t expected = reference(op, a, b);
        TDMBinaryApplication object(op, std::make_unique<TDMNumber>(a),
                                    std::make_unique<TDMNumber>(b));
        ASSERT_EQ(object.value(), expected) << a << " op " << op << " " << b;
        if (op > 18) continue;
        const ExpressionPtr record = binary(op, num(a), unary(5, num(b)));
        ASSERT_EQ(tdm::evaluate(*record, {}, here), expected) << a << " op " << op << " " << b;
      }
}

TEST(Evaluation, UnaryOperatorsAndForms)
{
  const auto absolute = [](std::int64_t value) {
    return std::make_unique<TDMExprAbsolute>(num(value));
  };
  struct Row {
    ExpressionPtr record;
    std::int64_t expected;
  };
  const Row rows[] = {
      {unary(1, num(0)), 1},
      {unary(1, num(-7)), 0},
      {unary(2, num(5)), -6},
      {unary(3, num(lowest)), lowest},
      {unary(3, num(7)), -7},
      {unary(5, num(7)), 7},
      {absolute(0x1FFFFFFFF), 1},
      {absolute(-5), 5},
      {absolute(0x180000005), 0x7FFFFFFB},
      {absolute(0x80000000), -2147483648LL},
      {absolute(1LL << 32), 0},
      {conditional(num(2), num(10), num(20)), 10},
      {conditional(num(0), num(10), num(20)), 20},
      {std::make_unique<TDMExprMax>(num(-1), num(3)), 3},
      {std::make_unique<TDMExprMin>(num(-1), num(3)), -1},
      {defined("x"), 0},
      {binary(4, var("a"), var("b")), 12},
  };
  tdm::ArgumentScope scope;
  scope.bind("a", num(5));
  scope.bind("b", binary(4, var("a"), num(2)));
  for (const Row &row : rows) {
    EXPECT_EQ(tdm::evaluate(*row.record, scope, here), row.expected) << (&row - rows);
    EXPECT_EQ(translated(*row.record, scope)->value(), row.expected) << (&row - rows);
  }
}

TEST(Evaluation, AsksFromLeftToRightAndNoMoreThanNeeded)
{
  LoggingEnv env;
  env.values = {{"yes", 1}};
  struct Row {
    ExpressionPtr record;
    std::int64_t expected;
    const char *log;
  };
  const Row rows[] = {
      {binary(17, exists("no"), exists("yes")), 0, "exists no;"},
      {binary(17, exists("yes"), exists("no")), 0, "exists yes;exists no;"},
      {binary(18, exists("yes"), exists("no")), 1, "exists yes;"},
      {binary(18, exists("no"), exists("yes")), 1, "exists no;exists yes;"},
      {binary(14, exists("no"), exists("yes")), 0, "exists no;exists yes;"},
      {conditional(exists("yes"), exists("a"), exists("b")), 0, "exists yes;exists a;"},
      {conditional(exists("no"), symbol("never"), exists("yes")), 1, "exists no;exists yes;"},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(translated(*row.record)->value(&env), row.expected) << (&row - rows);
    EXPECT_EQ(env.take_log(), row.log);
  }
}

TEST(Evaluation, QueriesOfTheEnvironment)
{
  LoggingEnv env;
  env.values = {{"s", 100}, {"g.begin", 40}, {"g.end", 52}, {"h.begin", 1}};
  struct Row {
    ExpressionPtr record;
    std::int64_t expected;
    const char *log;
  };
  const Row rows[] = {
      {symbol("s"), 100, "node s;symbol s;"},
      {address_of(0, "s", true), 100, "address s 20;"},
      {address_of(0, "s"), 100, "address s 9;"},
      {address_of(0, "none"), -1, "address none 9;"},
      {address_of(1, "g"), 40, "symbol g.begin;"},
      {address_of(1, "none"), -1, "symbol none.begin;"},
      {address_of(9, "s"), -1, ""},
      {size_of(1, "s", true), 100, "size s 20;"},
      {size_of(1, "none"), -1, "size none 9;"},
      {size_of(2, "g"), 12, "symbol g.begin;symbol g.end;"},
      {size_of(2, "h"), -1, "symbol h.begin;symbol h.end;"},
      {exists("s"), 1, "exists s;"},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(translated(*row.record)->value(&env), row.expected) << (&row - rows);
    EXPECT_EQ(env.take_log(), row.log);
  }
  EXPECT_EQ(env.context->live_nodes, 0);
}

TEST(Evaluation, KeepsValuesUntilTheyAreCleared)
{
  LoggingEnv env;
  env.values = {{"a", 1}};
  const auto sum = translated(*binary(4, binary(4, exists("a"), exists("b")), exists("c")));
  EXPECT_EQ(sum->compute(&env), 1);
  EXPECT_FALSE(sum->has_value());
  EXPECT_EQ(env.take_log(), "exists a;exists b;exists c;");
  EXPECT_EQ(sum->value(&env), 1);
  EXPECT_TRUE(sum->has_value());
  EXPECT_EQ(env.take_log(), "");

  // Clearing leaves the object's own value, and everything below a child that has none.
  env.values = {{"a", 1}, {"b", 1}};
  sum->clear_cached();
  EXPECT_EQ(sum->value(&env), 1);
  EXPECT_EQ(sum->compute(&env), 2);
  EXPECT_EQ(env.take_log(), "exists a;exists b;exists c;");
  EXPECT_EQ(sum->clone()->value(&env), 2);
  EXPECT_EQ(env.take_log(), "exists a;exists b;exists c;");

  const auto failing = translated(*unary(1, binary(4, exists("a"), symbol("b", true))));
  env.values.erase("b");
  EXPECT_NE(failure_of([&] { failing->value(&env); }), "");
  EXPECT_EQ(env.take_log(), "exists a;node b;symbol b;");
  failing->clear_cached();
  EXPECT_NE(failure_of([&] { failing->value(&env); }), "");
  EXPECT_EQ(env.take_log(), "node b;symbol b;");
  failing->forget();
  EXPECT_NE(failure_of([&] { failing->value(&env); }), "");
  EXPECT_EQ(env.take_log(), "exists a;node b;symbol b;");
}

const std::string needed =
    "this expression can only be used in struct statements and/or symbol assignments";

TEST(Evaluation, Failures)
{
  LoggingEnv env;
  env.values = {{"zero", 0}};
  LoggingEnv no_data;
  no_data.available = false;
  const std::string at_place = "[\"file\" 7/9] ";
  const std::string at_record = "[\"file\" 7/20] ";
  struct Row {
    ExpressionPtr record;
    TDMExpressionEnv *env;
    std::string text;
  };
  const Row rows[] = {
      {binary(2, num(1), num(0)), nullptr, at_place + "division by zero"},
      {binary(3, num(1), symbol("zero")), &env, at_place + "division by zero"},
      {symbol("s", true), &env, at_record + "syntax error: could not find symbol s"},
      {symbol("s"), &env, at_place + "syntax error: could not find symbol s"},
      {symbol("s", true), &no_data, at_record + needed},
      {symbol("s"), nullptr, at_place + needed},
      {exists("s"), nullptr, at_place + needed},
      {address_of(0, "s", true), &no_data, at_record + needed},
      {address_of(1, "s"), nullptr, at_place + needed},
      {size_of(1, "s", true), &no_data, at_record + needed},
      {size_of(3, "s", true), &no_data, at_record + needed},
      {size_of(3, "s", true), &env,
       at_record + "syntax error: unsupported argument type for sizeof()"},
      {unary(0, num(1)), nullptr, at_place + "TDM unexpected error: illegal unary operator"},
      {binary(0, num(1), num(1)), nullptr, "int 0"},
      {binary(21, num(1), num(1)), nullptr, "int 0"},
  };
  for (const Row &row : rows) {
    const auto expression = translated(*row.record);
    EXPECT_EQ(failure_of([&] { expression->value(row.env); }), row.text) << (&row - rows);
    EXPECT_EQ(failure_of([&] { expression->clone()->value(row.env); }),
              row.record->kind() == tdm::kExprSymbolRef &&
                      row.text.find("7/20") != std::string::npos
                  ? at_place + row.text.substr(at_record.size()) // its clone keeps no locations
                  : row.text);
  }
}

TEST(Evaluation, ThrowsTheRightTypes)
{
  LoggingEnv env;
  env.available = false;
  EXPECT_THROW(
      try {
        translated(*symbol("s"))->value(&env);
      } catch (TDMDataNeededForExpressionException *e) {
        delete e;
        throw 1;
      },
      int);
  EXPECT_THROW(
      try { translated(*binary(2, num(1), num(0)))->value(); } catch (TDMSemanticException *e) {
        delete e;
        throw 1;
      },
      int);
}

TEST(Evaluation, References)
{
  LoggingEnv env;
  env.values = {{"known", 1}};
  struct Row {
    ExpressionPtr record;
    bool to_defined;
    bool to_any; // of known and other
    const char *log;
  };
  const Row rows[] = {
      {num(1), false, false, ""},
      {symbol("known"), true, true, "defined known;"},
      {symbol("unknown"), false, false, "defined unknown;"},
      {defined("known"), true, false, "defined known;"},
      {exists("known"), false, false, ""},
      {size_of(2, "known"), false, false, ""},
      {binary(4, symbol("x"), unary(3, symbol("known"))), true, true, "defined x;defined known;"},
      {binary(4, symbol("known"), symbol("x")), true, true, "defined known;"},
      {conditional(num(1), num(2), symbol("other")), false, true, "defined other;"},
      {checksum(num(1), symbol("other")), false, true, "defined other;"},
  };
  for (const Row &row : rows) {
    const auto expression = translated(*row.record);
    EXPECT_EQ(expression->refers_to_defined(&env), row.to_defined) << (&row - rows);
    EXPECT_EQ(env.take_log(), row.log);
    EXPECT_EQ(expression->refers_to_any({"known", "other"}), row.to_any) << (&row - rows);
    EXPECT_FALSE(expression->refers_to_any({}));
    EXPECT_FALSE(expression->refers_to_defined(nullptr));
  }
  TDMReferenced referenced("known");
  EXPECT_EQ(referenced.value(), 0);
  EXPECT_TRUE(referenced.clone()->refers_to_defined(&env));
}

/// A class of a client is a leaf to the library, which asks it through its virtual operations.
class Ticket final : public TDMExpression {
public:
  explicit Ticket(int *counter) : counter_(counter) {}
  ~Ticket() override { *counter_ -= 100; }
  void clear_cached() override { *counter_ += 1000; }
  std::int64_t compute(TDMExpressionEnv *) override { return ++*counter_; }
  ExprlibNode *to_exprlib(TDMExpressionEnv *) override { return nullptr; }
  bool refers_to_any(const std::set<std::string> &) override { return true; }
  std::unique_ptr<TDMExpression> clone() const override
  {
    return std::make_unique<Ticket>(counter_);
  }

private:
  int *counter_;
};

TEST(Evaluation, ClassesOfClients)
{
  int counter = 0;
  {
    TDMUnaryApplication twice(3, std::make_unique<Ticket>(&counter));
    EXPECT_EQ(twice.value(), -1);
    EXPECT_EQ(twice.value(), -1);
    twice.clear_cached();
    EXPECT_EQ(counter, 1001);
    EXPECT_TRUE(twice.refers_to_any({}));
    EXPECT_EQ(twice.clone()->value(), -1002);
    EXPECT_EQ(counter, 902);
  }
  EXPECT_EQ(counter, 802);
}

TEST(Evaluation, EnvironmentOfTheCInterface)
{
  std::string log;
  const auto answer = [](const char *name, void *user) {
    *static_cast<std::string *>(user) += name;
    return *name == 'y' ? -3 : 0;
  };
  const tdm_expression_callbacks table = {answer, answer};
  const tdm_expression_callbacks empty = {nullptr, nullptr};
  TDMExpressionEnvWrapper both(&table, &log);
  EXPECT_EQ(translated(*exists("yes"))->value(&both), 1);
  EXPECT_EQ(translated(*exists("no"))->value(&both), 0);
  EXPECT_TRUE(translated(*defined("yes"))->refers_to_defined(&both));
  EXPECT_EQ(log, "yesnoyes");
  EXPECT_NE(failure_of([&] { translated(*symbol("yes"))->value(&both); }), "");
  EXPECT_EQ(failure_of([&] { translated(*num(1))->to_exprlib(&both); }),
            "expression manipulation error: not supported");
  for (const tdm_expression_callbacks *callbacks :
       {&empty, static_cast<const tdm_expression_callbacks *>(nullptr)}) {
    TDMExpressionEnvWrapper none(callbacks, nullptr);
    EXPECT_EQ(translated(*exists("yes"))->value(&none), 0);
    EXPECT_FALSE(translated(*defined("yes"))->refers_to_defined(&none));
  }
}

// ---- Checksums ----

/// Units with numbers that fill them.
std::vector<std::uint32_t> units_of(int mau, std::size_t count)
{
  std::vector<std::uint32_t> units;
  std::uint64_t state = 0x9E3779B97F4A7C15ULL;
  for (std::size_t i = 0; i < count; ++i) {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    units.push_back(static_cast<std::uint32_t>(state >> (64 - mau)));
  }
  return units;
}

/// The bytes that the checksum is defined over: those of each word, from its top down. 1 is little
/// endian, 2 is big endian, and any other byte order gives words of zero.
std::vector<std::uint8_t> bytes_of(const std::vector<std::uint32_t> &data, int mau, int endianness)
{
  const std::size_t units = 32U / static_cast<unsigned>(mau);
  std::vector<std::uint8_t> bytes;
  for (std::size_t first = 0; first < data.size(); first += units) {
    std::uint64_t word = 0;
    for (std::size_t unit = 0; unit < units; ++unit) {
      const std::size_t position = endianness == 1 ? unit : units - 1 - unit;
      if (endianness == 1 || endianness == 2)
        word += static_cast<std::uint64_t>(data[first + unit])
                << (position * static_cast<unsigned>(mau));
    }
    for (int shift = 24; shift >= 0; shift -= 8)
      bytes.push_back(static_cast<std::uint8_t>(word >> shift));
  }
  return bytes;
}

TEST(Checksum, MatchesTheCrc32OfZlib)
{
  for (const int mau : {1, 2, 4, 8, 16, 32})
    for (const int endianness : {1, 2, 3})
      for (const std::size_t words : {1U, 2U, 5U, 300U}) {
        LoggingEnv env;
        env.mau = mau;
        env.endianness = endianness;
        const auto units = static_cast<std::int64_t>(32 / mau);
        env.data = units_of(mau, words * static_cast<std::size_t>(units));
        const std::vector<std::uint8_t> bytes = bytes_of(env.data, mau, endianness);
        const auto wanted =
            static_cast<std::int64_t>(crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
        const std::int64_t start = 3 * units, end = start + units * static_cast<int>(words);
        const auto record = checksum(num(start), num(end));
        EXPECT_EQ(translated(*record)->value(&env), wanted)
            << "MAU " << mau << ", byte order " << endianness << ", " << words << " words";
      }
}

TEST(Checksum, ChecksItsBoundsInOrder)
{
  const std::string at = "[\"file\" 7/9] syntax error: ";
  struct Row {
    std::int64_t start, end;
    int mau;
    bool has_data;
    std::string text;
    const char *log;
  };
  const Row rows[] = {
      {16, 16, 8, true, at + "checksum end address (0x10) must be higher than start address (0x10)",
       ""},
      {8, -4, 8, true,
       at + "checksum end address (0xfffffffffffffffc) must be higher than start address (0x8)",
       ""},
      {2, 8, 3, false,
       "[\"file\" 7/9] the expression needs located section data for the given address range, but "
       "not every location is filled",
       "data 2 8;"},
      {2, 8, 3, true, at + "MAU size 3 is not supported for crc32w checksum", "data 2 8;"},
      {2, 8, 0, true, at + "MAU size 0 is not supported for crc32w checksum", "data 2 8;"},
      {2, 8, 64, true, at + "MAU size 64 is not supported for crc32w checksum", "data 2 8;"},
      {2, 9, 8, true, at + "start address (0x2) for crc32w checksum must be aligned on 4",
       "data 2 9;"},
      {4, 9, 8, true, at + "end address (0x9) for crc32w checksum must be aligned on 4",
       "data 4 9;"},
      {-3, 9, 32, true, "", "data -3 9;"},
  };
  for (const Row &row : rows) {
    LoggingEnv env;
    env.mau = row.mau;
    if (row.has_data) env.data.assign(16, 1);
    const auto expression = translated(*checksum(num(row.start), num(row.end)));
    EXPECT_EQ(failure_of([&] { expression->value(&env); }), row.text);
    EXPECT_EQ(env.take_log(), row.log);
  }
  // Other kinds compute nothing, but only behind the checks.
  LoggingEnv env;
  env.data = {1};
  TDMChecksum other(1, std::make_unique<TDMNumber>(1), std::make_unique<TDMNumber>(2));
  EXPECT_EQ(other.value(&env), 0);
}

TEST(Checksum, EvaluatesItsBoundsBeforeItAsksForData)
{
  LoggingEnv env;
  env.available = false;
  const auto expression = translated(*checksum(exists("a"), exists("b")));
  EXPECT_EQ(failure_of([&] { expression->value(&env); }), "[\"file\" 7/9] " + needed);
  EXPECT_EQ(env.take_log(), "exists a;exists b;");
}

TEST(Checksum, CollectsRanges)
{
  LoggingEnv env;
  env.values = {{"s", 6}};
  const auto expression = translated(*conditional(checksum(num(1), num(2)),
                                                  binary(4, checksum(num(3), symbol("s")), num(4)),
                                                  unary(3, checksum(num(9), num(8)))));
  TDMExpression::DataRanges ranges;
  expression->collect_data_ranges(&env, ranges);
  EXPECT_EQ(ranges, (TDMExpression::DataRanges{{1, 2}, {3, 6}, {9, 8}}));
}

} // namespace
