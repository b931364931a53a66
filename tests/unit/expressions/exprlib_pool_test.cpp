// The pools behind the trees of Exprlib, and how little stack its loops need. Its arithmetic is held
// against numbers without end in tests/exprlib.
#include <gtest/gtest.h>


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
