// What the guard makes of everything that can be thrown below an exported function: the result that
// says "nothing", a count, and the right texts. The sanitizer build sees whether a failure leaks.
#include "interface/guard.h"

#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <string>

#include "common/failures.h"
#include "interface/tdm.h"
#include "interface/tdm_inspect.h"
#include "mapping/interval_set.h"

namespace {

struct Thrown {
  const char *name;
  std::function<void()> raise;
  const char *text;
  bool in_family; ///< below TDMFileException
};

const char *long_text = "a text that doesn't fit into a short string, and so has memory of its own";

const Thrown all_thrown[] = {
    {"file failure", [] { throw new TDMFileException(long_text); }, long_text, true},
    {"derived failure", [] { throw new TDMCannotOpenFileException("a"); }, "cannot open \"a\"",
     true},
    {"positioned failure",
     [] {
       throw new TDMSemanticException({"a", 1, 2}, "b");
     },
     "[\"a\" 1/2] b", true},
    {"file failure by value", [] { throw TDMSyntaxError(long_text); }, long_text, true},
    {"arguments", [] { throw new TDMTooManyArgumentsException(); }, "too many arguments", false},
    {"arguments by value", [] { throw TDMTooFewArgumentsException(); }, "too few arguments", false},
    {"pattern", [] { throw new Interval::PatternOverflowException(long_text); }, long_text, false},
    {"pattern by value", [] { throw Interval::PatternOverflowException("p"); }, "p", false},
    {"mau", [] { throw new AddressValue::MauException(); },
     "addresses in MAUs of different sizes don't go together", false},
    {"mau by value", [] { throw AddressValue::MauException(); },
     "addresses in MAUs of different sizes don't go together", false},
    {"overlap", [] { throw new IntervalSet::OverlapException(Interval()); }, "intervals overlap",
     false},
    {"overlap by value", [] { throw IntervalSet::OverlapException(Interval()); },
     "intervals overlap", false},
    {"arithmetic", [] { throw new MauLibException(); }, "address arithmetic failed", false},
    {"arithmetic by value", [] { throw MauLibException(); }, "address arithmetic failed", false},
    {"memory", [] { throw std::bad_alloc(); }, "std::bad_alloc", false},
    {"standard pointer", [] { throw new std::runtime_error(long_text); }, long_text, false},
    {"a number", [] { throw 42; }, "unknown failure", false},
};

int raise_and_answer(const Thrown &thrown)
{
  thrown.raise();
  return 1;
}

TEST(Guard, KeepsTheTextOfEveryFailure)
{
  for (const Thrown &thrown : all_thrown) {
    const int64_t before = tdm_inspect_failure_count();
    EXPECT_EQ(tdm::guarded([&] { return raise_and_answer(thrown); }), 0) << thrown.name;
    EXPECT_STREQ(tdm_get_last_error(), thrown.text) << thrown.name;
    EXPECT_STREQ(tdm_inspect_failure_text(), thrown.text) << thrown.name;
    EXPECT_EQ(tdm_inspect_failure_count(), before + 1) << thrown.name;
  }
}

TEST(Guard, LeavesTheLastErrorTextAloneWhereOnlyTheFamilyCounts)
{
  for (const Thrown &thrown : all_thrown) {
    tdm::keep_failure("before", tdm::Tell::last_error);
    const int64_t before = tdm_inspect_failure_count();
    const auto otherwise = [] { return 7; };
    EXPECT_EQ(tdm::guarded([&] { return raise_and_answer(thrown); }, otherwise,
                           tdm::Tell::inspection_only),
              7)
        << thrown.name;
    EXPECT_STREQ(tdm_get_last_error(), thrown.in_family ? thrown.text : "before") << thrown.name;
    EXPECT_STREQ(tdm_inspect_failure_text(), thrown.text) << thrown.name;
    EXPECT_EQ(tdm_inspect_failure_count(), before + 1) << thrown.name;
  }
}

TEST(Guard, GivesAnEmptyArrayOfTheRightKind)
{
  tdm_arr *arr =
      tdm::guarded_array<tdm_map_interval_result>([]() -> tdm_arr * { throw std::bad_alloc(); });
  ASSERT_NE(arr, nullptr);
  EXPECT_EQ(arr->element_size, sizeof(tdm_map_interval_result));
  EXPECT_EQ(arr->capacity, 32U);
  EXPECT_EQ(arr->count, 0U);
  tdm_arr_del(arr);
}

TEST(Guard, TextsOutliveTheStartedPeriod)
{
  tdm_init(nullptr);
  tdm::keep_failure(std::string("cut\0here", 8), tdm::Tell::last_error);
  const char *pooled = tdm_get_last_error();
  EXPECT_STREQ(pooled, "cut");
  EXPECT_EQ(pooled, tdm_get_last_error());
  tdm_cleanup();
  EXPECT_STREQ(tdm_get_last_error(), "cut");
}

/// An array's capacity is 32, doubled until all elements fit, and what isn't used is zero.
TEST(Arrays, Grow)
{
  for (const size_t count : {0U, 1U, 31U, 32U, 33U, 64U, 65U, 1000U}) {
    const std::vector<int32_t> numbers(count, -1);
    tdm_arr *arr = tdm::array_of(numbers, [](int32_t number) { return number; });
    size_t capacity = 32;
    while (capacity < count) capacity *= 2;
    EXPECT_EQ(arr->capacity, capacity);
    EXPECT_EQ(arr->count, count);
    const auto *items = static_cast<const int32_t *>(arr->items);
    for (size_t i = 0; i < capacity; ++i) ASSERT_EQ(items[i], i < count ? -1 : 0);
    tdm_arr_del(arr);
  }
}

} // namespace
