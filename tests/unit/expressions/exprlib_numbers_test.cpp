// Exprlib's arithmetic against numbers that are wide enough, and the pools behind its trees.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "expressions/exprlib/fract.h"
#include "expressions/exprlib/integer.h"
#include "expressions/exprlib/pool.h"
#include "exprlib_support.h"

#if defined(__SANITIZE_ADDRESS__)
#define WITH_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define WITH_SANITIZER 1
#endif
#endif

#if !defined(WITH_SANITIZER)
// Counts what reaches the general allocator, and lets it run dry.
static std::size_t allocations;
static std::size_t allocations_left = SIZE_MAX;
extern "C" void *__libc_malloc(std::size_t size);
extern "C" void *malloc(std::size_t size)
{
  ++allocations;
  if (allocations_left == 0) return nullptr;
  --allocations_left;
  return __libc_malloc(size);
}
#endif

namespace {

using Node = ExprlibNode *;

/// Numbers of `size` bytes as this test counts: modulo 2^(8 * size).
struct Numbers {
  explicit Numbers(std::size_t bytes) : size(bytes) {}

  [[nodiscard]] UnsignedWide cut(UnsignedWide value) const
  {
    return size == 16 ? value : value & ((UnsignedWide{1} << (8 * size)) - 1);
  }
  [[nodiscard]] bool negative(UnsignedWide value) const { return (value >> (8 * size - 1)) != 0; }
  /// The value as a sign and a magnitude.
  [[nodiscard]] UnsignedWide magnitude(UnsignedWide value, bool is_signed) const
  {
    return is_signed && negative(value) ? cut(-value) : value;
  }
  /// -1, 0 or 1.
  [[nodiscard]] int order(UnsignedWide a, bool a_signed, UnsignedWide b, bool b_signed) const
  {
    const bool a_negative = a_signed && negative(a);
    const bool b_negative = b_signed && negative(b);
    if (a_negative != b_negative) return a_negative ? -1 : 1;
    return a < b ? -1 : a > b ? 1 : 0;
  }

  [[nodiscard]] UnsignedWide apply(int op, UnsignedWide a, bool a_signed, UnsignedWide b,
                                   bool b_signed) const
  {
    const UnsignedWide x = magnitude(a, a_signed);
    const UnsignedWide y = magnitude(b, b_signed);
    const bool a_negative = a_signed && negative(a);
    const bool b_negative = b_signed && negative(b);
    switch (op) {
    case EXPRLIB_ADD:
      return cut(a + b);
    case EXPRLIB_SUBTRACT:
      return cut(a - b);
    case EXPRLIB_MULTIPLY:
      return cut(a * b);
    case EXPRLIB_DIVIDE:
      return cut(a_negative != b_negative ? -(x / y) : x / y);
    case EXPRLIB_REMAINDER:
      return cut(a_negative ? -(x % y) : x % y);
    case EXPRLIB_AND:
      return a & b;
    case EXPRLIB_OR:
      return a | b;
    case EXPRLIB_XOR:
      return a ^ b;
    case EXPRLIB_EQUAL:
      return order(a, a_signed, b, b_signed) == 0;
    case EXPRLIB_LESS:
      return order(a, a_signed, b, b_signed) < 0;
    case EXPRLIB_GREATER_EQUAL:
      return order(a, a_signed, b, b_signed) >= 0;
    case EXPRLIB_MAX:
      return order(a, a_signed, b, b_signed) < 0 ? b : a;
    default:
      return order(a, a_signed, b, b_signed) > 0 ? b : a;
    }
  }

  std::size_t size;
};

Node make(const Trees &t, UnsignedWide value, bool is_signed)
{
  std::uint8_t bytes[16];
  for (int i = 0; i < 16; ++i) bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
  Node node = nullptr;
  exprlib_make_integer(t.context, &node, is_signed ? EXPRLIB_INT : EXPRLIB_UNSIGNED_INT, bytes,
                       t.context->value_size, 8);
  return node;
}

UnsignedWide read(Node node)
{
  UnsignedWide value = 0;
  for (std::uint32_t i = node->context->value_size; i > 0; --i)
    value = (value << 8) | exprlib_bytes(node)[i - 1];
  return value;
}

TEST(ExprlibNumbers, IntegersOfEachSize)
{
  std::mt19937_64 random(1);
  for (const std::size_t size : {1U, 4U, 8U, 10U, 16U}) {
    const Trees t(static_cast<std::uint32_t>(size));
    const Numbers numbers(size);
    const UnsignedWide top = UnsignedWide{1} << (8 * size - 1);
    std::vector<UnsignedWide> values = {0,
                                        1,
                                        2,
                                        3,
                                        7,
                                        100,
                                        numbers.cut(-UnsignedWide{1}),
                                        numbers.cut(-UnsignedWide{7}),
                                        top,
                                        top - 1,
                                        top + 1};
    for (const unsigned bits : {31U, 32U, 33U, 63U, 64U})
      if (bits < 8 * size)
        for (const int off : {-1, 0, 1})
          values.push_back(numbers.cut((UnsignedWide{1} << bits) + static_cast<UnsignedWide>(off)));
    for (int i = 0; i < 12; ++i) {
      const UnsignedWide any = (UnsignedWide{random()} << 64) | random();
      values.push_back(numbers.cut(any >> (random() % 128)));
    }
    for (const int op : {5, 21, 14, 8, 12, 6, 17, 22, 23, 28, 26, 11, 13})
      for (const UnsignedWide a : values)
        for (const UnsignedWide b : values)
          for (int signs = 0; signs < 4; ++signs) {
            const bool a_signed = (signs & 1) != 0;
            const bool b_signed = (signs & 2) != 0;
            if ((op == EXPRLIB_DIVIDE || op == EXPRLIB_REMAINDER) && b == 0) continue;
            const Node tree = t.op(op, {make(t, a, a_signed), make(t, b, b_signed)});
            ASSERT_EQ(exprlib_eval(tree), 0);
            ASSERT_TRUE(read(tree) == numbers.apply(op, a, a_signed, b, b_signed))
                << size << " op " << op << " " << static_cast<std::int64_t>(a) << " "
                << static_cast<std::int64_t>(b) << " signs " << signs;
            exprlib_release(tree);
          }
    for (const UnsignedWide a : values)
      for (unsigned count = 0; count < 8 * size + 9; ++count) {
        if (size == 1 && count > 127) continue;
        const bool out = count >= 8 * size;
        const UnsignedWide fill = numbers.negative(a) ? numbers.cut(~UnsignedWide{0}) : 0;
        const UnsignedWide logical = out ? 0 : a >> count;
        const UnsignedWide expected[] = {
            numbers.cut(out ? 0 : a << count), logical,
            out ? fill : logical | numbers.cut(count == 0 ? 0 : fill << (8 * size - count))};
        for (int code = 18; code <= 20; ++code) {
          const Node tree = t.op(code, {make(t, a, true), make(t, count, true)});
          ASSERT_EQ(exprlib_eval(tree), 0);
          ASSERT_TRUE(read(tree) == expected[code - 18]) << size << " " << code << " " << count;
          exprlib_release(tree);
        }
      }
    EXPECT_EQ(t.context->live_nodes, 0);
  }
}

TEST(ExprlibNumbers, DoublesOfIntegers)
{
  std::mt19937_64 random(2);
  for (int i = 0; i < 20000; ++i) {
    UnsignedWide any = ((UnsignedWide{random()} << 64) | random()) >> (random() % 128);
    // Between two doubles, or just above.
    if (i % 4 == 0)
      any = (((any & 0xFFFF) * 2 + (1ULL << 53) + 1) << (i % 70)) + (i % 8 == 0 ? 1U : 0U);
    std::uint8_t bytes[16];
    for (int n = 0; n < 16; ++n) bytes[n] = static_cast<std::uint8_t>(any >> (8 * n));
    ASSERT_EQ(exprlib::unsigned_to_double(bytes, 16), static_cast<double>(any));

    const Trees t(10);
    const double value = std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())),
                                    static_cast<int>(random() % 70) - 54);
    const Node tree = t.cast(EXPRLIB_INT, t.d(value));
    ASSERT_EQ(exprlib_eval(tree), 0);
    const Numbers numbers(10);
    ASSERT_TRUE(read(tree) ==
                numbers.cut(static_cast<UnsignedWide>(static_cast<Wide>(std::trunc(value)))))
        << value;
    exprlib_release(tree);
  }
}

/// The value of one or two bytes in units of 2^-15.
int units(exprlib::Fract f)
{
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(f.at(0) << 8 | f.at(1)));
}

TEST(ExprlibNumbers, FractsOfOneByteWithAllOfOneByte)
{
  using exprlib::Byte;
  for (int x = 0; x < 256; ++x)
    for (int y = 0; y < 256; ++y) {
      const Byte a_bytes[] = {static_cast<Byte>(x)};
      const Byte b_bytes[] = {static_cast<Byte>(y)};
      const exprlib::Fract a = {a_bytes, 1};
      const exprlib::Fract b = {b_bytes, 1};
      const int p = units(a) / 256; // in units of 1/128
      const int q = units(b) / 256;
      Byte out[1];
      Byte work[2];
      exprlib::fract_add(out, a, b);
      ASSERT_EQ(out[0], static_cast<Byte>(x + y));
      exprlib::fract_subtract(out, a, b);
      ASSERT_EQ(out[0], static_cast<Byte>(x - y));
      if ((p < 0) == (q < 0)) {
        const int order = exprlib::fract_compare(a, b);
        ASSERT_EQ(order, p < q ? -1 : p > q ? 1 : 0);
      }
      if (p == -128 && q == -128) continue;
      exprlib::fract_multiply(out, a, b, work);
      const int got = static_cast<std::int8_t>(out[0]);
      if (p == -128 || q == -128) {
        ASSERT_EQ(got, std::min(127, -(p == -128 ? q : p)));
        continue;
      }
      // Each bit of the multiplier costs less than one unit of magnitude, and the sign is exact.
      const double exact = p * q / 128.0;
      const int bits = __builtin_popcount(static_cast<unsigned>(std::abs(q)));
      ASSERT_LE(std::abs(got), std::fabs(exact)) << p << " " << q;
      ASSERT_LE(std::fabs(exact - got), bits) << p << " " << q;
      ASSERT_TRUE(got == 0 || (got < 0) == (exact < 0)) << p << " " << q;
    }
}

TEST(ExprlibNumbers, FractsMeetDoublesExactly)
{
  using exprlib::Byte;
  for (int value = -32768; value < 32768; ++value) {
    const Byte bytes[] = {static_cast<Byte>(value >> 8), static_cast<Byte>(value)};
    ASSERT_EQ(exprlib::fract_to_double({bytes, 2}), value / 32768.0);
    // Half a unit of magnitude rounds away from zero, less rounds toward it.
    for (const double part : {0.0, 0.25, 0.5, 0.75}) {
      const double magnitude = std::abs(value) + part;
      const double wanted = std::floor(magnitude + 0.5);
      const double number = (value < 0 ? -magnitude : magnitude) / 32768.0;
      Byte out[2];
      const bool fits = exprlib::fract_from_double(out, 2, number);
      const bool in_range = value < 0 ? (wanted < 32768 || number == -1.0) : wanted < 32768;
      ASSERT_EQ(fits, in_range) << number;
      const double expected = value < 0 ? -wanted : wanted;
      ASSERT_EQ(units({out, 2}), std::max(-32768.0, std::min(32767.0, expected))) << number;
    }
  }
  // Only the first 20 bytes count.
  std::vector<Byte> longest(40, 0);
  longest[19] = 3;
  longest[20] = 0xFF;
  EXPECT_EQ(exprlib::fract_to_double({longest.data(), 40}), std::ldexp(3.0, -159));
  longest[19] = 0;
  EXPECT_EQ(exprlib::fract_to_double({longest.data(), 40}), 0.0);
}

// ---- Pools ----

TEST(ExprlibPool, BlocksComeAndGo)
{
  constexpr std::size_t size = 1000; // eight to a block
  ASSERT_TRUE(exprlib::add_pool(size));
  std::vector<void *> elements;
  const auto release_one = [&] {
    exprlib::release(elements.back(), size);
    elements.pop_back();
  };
  for (int i = 0; i < 17; ++i) elements.push_back(exprlib::allocate(size));
  for (void *element : elements) std::memset(element, 0x5A, size);
  EXPECT_EQ(exprlib::pool_state(size).live, 17U);
  EXPECT_EQ(exprlib::pool_state(size).blocks, 3U);
  void *last = elements.back();
  release_one();
  elements.push_back(exprlib::allocate(size));
  EXPECT_EQ(elements.back(), last);
  while (!elements.empty()) release_one();
  EXPECT_EQ(exprlib::pool_state(size).blocks, 0U);
  elements.push_back(exprlib::allocate(size));
  release_one();
  EXPECT_EQ(exprlib::pool_state(size).blocks, 1U);

  // An element too large for four to a block gets a block of four; a size of its own none.
  ASSERT_TRUE(exprlib::add_pool(5000));
  for (int i = 0; i < 5; ++i) elements.push_back(exprlib::allocate(5000));
  EXPECT_EQ(exprlib::pool_state(5000).blocks, 2U);
  for (void *element : elements) exprlib::release(element, 5000);
  void *alone = exprlib::allocate(3000);
  EXPECT_EQ(exprlib::pool_state(3000).blocks, 0U);
  exprlib::release(alone, 3000);
}

Node long_sum(const Trees &t, int terms)
{
  Node sum = t.i(0);
  for (int i = 1; i <= terms; ++i) {
    Node next = sum;
    const Node term = i % 7 == 0 ? t.v(0) : t.i(1);
    exprlib_make_operator(t.context, &next, EXPRLIB_ADD, 2, sum, term);
    exprlib_release(term);
    sum = next;
  }
  return sum;
}

TEST(ExprlibPool, BuildingAndFoldingDoesNotAllocate)
{
#if defined(WITH_SANITIZER)
  GTEST_SKIP() << "the allocator is the sanitizer's";
#else
  for (const std::uint32_t size : {8U, 100U}) {
    const Trees t(size);
    t.rows[0].value = t.i(1);
    const auto round = [&t] {
      exprlib_release(long_sum(t, 100));
      const Node sum = long_sum(t, 100);
      const int failed = exprlib_eval(sum);
      const bool right = exprlib_int64(sum) == 100;
      exprlib_release(sum);
      const Node text = t.op(11, {t.s("abc"), t.s("abd")});
      const int failed_text = exprlib_eval(text);
      exprlib_release(text);
      return failed == 0 && failed_text == 0 && right;
    };
    EXPECT_TRUE(round());
    const std::size_t before = allocations;
    bool right = true;
    for (int i = 0; i < 20; ++i) right = round() && right;
    const std::size_t after = allocations;
    EXPECT_TRUE(right);
    EXPECT_EQ(before, after);
    exprlib_release(t.rows[0].value);
  }
#endif
}

#if !defined(WITH_SANITIZER)
/// Builds and folds what needs each kind of memory; true if it came to its end.
bool build_and_fold(const Trees &t, std::vector<Node> &many)
{
  const char text[100] = {}; // too long for the pools
  Node strings[2] = {};
  Node chosen = nullptr;
  bool done = true;
  for (Node &string : strings)
    done = done && !exprlib_make_string_constant(t.context, &string, text, sizeof text);
  done = done && !exprlib_make_operator_of(t.context, &chosen, EXPRLIB_MAX, 2, strings) &&
         !exprlib_eval(chosen);
  // Many operands, of which the first is handed over, and a copy of their list.
  for (Node &node : many) done = done && !exprlib_make_int32(t.context, &node, 1);
  Node user = many[0];
  Node copy = nullptr;
  if (done && !exprlib_make_operator_of(t.context, &user, 300,
                                        static_cast<std::uint32_t>(many.size()), many.data())) {
    many[0] = user;
    done = !exprlib_alloc_node(t.context, &copy) && !exprlib_become(copy, user);
  } else {
    done = false;
  }
  for (Node node : {strings[0], strings[1], chosen, copy}) exprlib_release(node);
  for (Node node : many) exprlib_release(node);
  return done;
}

TEST(ExprlibPool, RunningOutOfMemoryIsAFailure)
{
  const Trees t(8, 2000); // four nodes to a block
  std::size_t refused = 0;
  for (bool done = false; !done; ++refused) {
    t.context->error = 0;
    std::vector<Node> many(600);
    allocations_left = refused;
    done = build_and_fold(t, many);
    allocations_left = SIZE_MAX;
    ASSERT_EQ(exprlib_error(t.context), done ? 0 : EXPRLIB_OUT_OF_MEMORY) << refused;
    ASSERT_EQ(t.context->live_nodes, 0) << refused;
    ASSERT_EQ(t.context->strings, nullptr) << refused;
  }
  EXPECT_GT(refused, 150U);
}
#endif

TEST(ExprlibPool, LongSumsOnASmallStack)
{
  on_small_stack([] {
    const Trees t;
    const Node sum = long_sum(t, 100'000);
    EXPECT_EQ(exprlib_eval(sum), 0);
    EXPECT_NE(sum->op, 0);
    t.rows[0].value = t.i(1);
    EXPECT_EQ(exprlib_eval(sum), 0);
    EXPECT_EQ(exprlib_int64(sum), 100'000);
    exprlib_release(sum);
    // Variables whose values are variables: one after the other.
    std::vector<ExprlibSymbolRow> rows(100'000);
    const ExprlibSymbolTable table = {rows.data(), static_cast<std::uint32_t>(rows.size())};
    for (std::uint32_t i = 0; i + 1 < rows.size(); ++i)
      exprlib_make_variable(t.context, &rows[i].value, EXPRLIB_INT, &table, i + 1);
    EXPECT_EQ(exprlib_eval(rows[0].value), 1);
    EXPECT_EQ(exprlib_error(t.context), EXPRLIB_NO_VALUE);
    rows.back().value = t.i(5);
    EXPECT_EQ(exprlib_eval(rows[0].value), 0);
    for (const ExprlibSymbolRow &row : rows) exprlib_release(row.value);
    exprlib_release(t.rows[0].value);
    EXPECT_EQ(t.context->live_nodes, 0);
  });
}

} // namespace
