// Ends the process when two threads are inside the library at a time, which only the sanitizer
// build looks for. There the compiler calls the two functions below around each function of the
// files that hold the exported ones, so that none can be forgotten and the release knows nothing of
// it. A thread is inside from its first call to that call's end; what a callback calls is part of
// it.
#ifdef TDM_WATCH_THREADS

#include <cstdio>
#include <cstdlib>

#define TDM_UNWATCHED __attribute__((no_instrument_function))

namespace {

/// Its address is the name of the thread.
thread_local char own;

const void *inside; ///< the thread that is, or null
int depth;          ///< its calls, one inside the other

/// With the compiler's own atomics: an inline function may be one that is watched.
TDM_UNWATCHED void enter()
{
  const void *const self = &own;
  if (__atomic_load_n(&inside, __ATOMIC_RELAXED) != self) {
    const void *nobody = nullptr;
    if (!__atomic_compare_exchange_n(&inside, &nobody, self, false, __ATOMIC_ACQUIRE,
                                     __ATOMIC_RELAXED)) {
      std::fputs("tdm_c: a second thread calls while a call of the first is under way\n", stderr);
      std::abort();
    }
  }
  ++depth;
}

TDM_UNWATCHED void leave()
{
  if (--depth == 0) __atomic_store_n(&inside, nullptr, __ATOMIC_RELEASE);
}

} // namespace

extern "C" {

TDM_UNWATCHED void __cyg_profile_func_enter(void *, void *);
TDM_UNWATCHED void __cyg_profile_func_exit(void *, void *);

void __cyg_profile_func_enter(void *, void *)
{
  enter();
}

void __cyg_profile_func_exit(void *, void *)
{
  leave();
}

} // extern "C"

#endif
