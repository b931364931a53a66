// The sanitizer build ends a process whose threads call at the same time, and lets calls go from
// one thread to the next.
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "expressions/exprlib/exprlib.h"
#include "interface/tdm.h"

namespace {

/// Calls from a second thread while the first one is inside, in a function of the caller.
void call_from_two_threads()
{
  ExprlibContext *context = nullptr;
  ExprlibNode *node = nullptr;
  exprlib_make_context(&context, 8, 0);
  exprlib_make_int32(context, &node, 1);
  exprlib_print(
      node,
      [](const char *, std::size_t, void *) {
        std::thread([] { (void)tdm_get_last_error(); }).join();
      },
      nullptr);
  exprlib_release(node);
  exprlib_end_context(context);
}

TEST(ThreadWatch, one_thread_at_a_time)
{
#ifdef TDM_WATCH_THREADS
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(call_from_two_threads(), "a second thread calls while a call of the first");
#else
  call_from_two_threads();
#endif
}

TEST(ThreadWatch, calls_go_from_thread_to_thread)
{
  tdm_init(nullptr);
  const tdm_arr none = {sizeof(char *), 0, 0, nullptr};
  // A failure passes through the guard on its way.
  EXPECT_EQ(tdm_parse_file(&none, &none), nullptr);
  EXPECT_EQ(std::async(std::launch::async, [&] { return tdm_parse_file(&none, &none); }).get(),
            nullptr);
  std::thread(tdm_cleanup).join();
  EXPECT_STREQ(tdm_get_last_error(), "no target-description file given");
}

} // namespace
