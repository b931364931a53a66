// The two processes share one page of memory: there the child notes what it was reading when it
// ran out of time or memory or met a fault, and whether it came to its end. It has no other way
// to say so: the library ends the process where memory ends, and a handler of a signal may do next
// to nothing.
#include "supervision.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <new>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fmt/format.h>
#include <tdm_c/tdm_inspect.h>

#include "format.h"
#include "session.h"

#if defined(__SANITIZE_ADDRESS__)
#define TDM_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TDM_SANITIZED 1
#endif
#endif

namespace tool {

namespace {

#ifdef TDM_SANITIZED
/// Sanitizers reserve address space without bounds, and tell of faults themselves.
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

enum Outcome : int { still_running, finished, out_of_time, out_of_memory };

struct Page {
  volatile int outcome;
  volatile int line;           ///< 0 while the file is being opened
  std::array<char, 4096> file; ///< as the library names it; "" for none
};

// ---- in the child

/// Where handlers find what they need.
struct {
  Page *page;
  int64_t ticks_left;
  volatile std::sig_atomic_t clock_stops;
  std::array<char, 4096> library_words; ///< of its last line, which is said better by the parent
  std::array<char, 32768> signal_stack; ///< for faults that exhausted the other one
} child;

void note_place()
{
  Page &page = *child.page;
  tdm_srcpos reading;
  page.file[0] = '\0';
  if (tdm_inspect_reading(&reading) == 0) return;
  std::strncpy(page.file.data(), reading.file, page.file.size() - 1);
  page.line = reading.line;
}

[[noreturn]] void stop(Outcome outcome)
{
  note_place();
  child.page->outcome = outcome;
  _exit(EXIT_FAILURE);
}

/// A pipe that is full, or a terminal that is held.
bool nobody_takes(int descriptor)
{
  pollfd output{descriptor, POLLOUT, 0};
  return poll(&output, 1, 0) == 0;
}

void on_tick(int)
{
  if (child.page->outcome != still_running) return;
  const int kept = errno;
  note_place(); // in case that the system ends the process
  const bool waits =
      child.clock_stops > 0 || nobody_takes(STDOUT_FILENO) || nobody_takes(STDERR_FILENO);
  if (!waits && --child.ticks_left <= 0) stop(out_of_time);
  errno = kept;
}

void on_fault(int signal)
{
  note_place();
  std::raise(signal); // for which there is no handler any more
}

/// The library ends the process with 2 where memory ends, in the midst of what it does.
void on_exit_of_library(int status, void *)
{
  if (child.page->outcome != still_running) return;
  note_place();
  if (status == 2) child.page->outcome = out_of_memory;
  _exit(status);
}

void handle(int signal, void (*handler)(int), int flags)
{
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

/// Ticks count the time, so that a process that was held meanwhile isn't ended at once.
void limit_time(double seconds)
{
  if (seconds <= 0) return;
  const double tick = std::clamp(seconds / 20, 0.001, 0.5);
  child.ticks_left = static_cast<int64_t>(std::ceil(seconds / tick));
  handle(SIGALRM, on_tick, SA_RESTART);
  const timeval interval{0, static_cast<suseconds_t>(tick * 1e6)};
  const itimerval timer{interval, interval};
  setitimer(ITIMER_REAL, &timer, nullptr);
}

/// What a limit of the user and the one of the system come to; 0 for none.
rlim_t memory_limit(const Options &options)
{
  rlimit known{};
  getrlimit(RLIMIT_AS, &known);
  const auto own = static_cast<rlim_t>(options.max_memory);
  if (known.rlim_cur == RLIM_INFINITY) return own;
  return own == 0 ? known.rlim_cur : std::min(own, known.rlim_cur);
}

/// The stack grows as it is used, and to find no room for that is a fault. One page that is used
/// makes room for all above it: for more than the work takes, if the system allows that much.
[[gnu::noinline]] void make_room_for_stack()
{
  constexpr rlim_t wanted = rlim_t{384} << 10;
  constexpr rlim_t in_use = rlim_t{64} << 10;
  rlimit stack{};
  getrlimit(RLIMIT_STACK, &stack);
  if (stack.rlim_cur <= in_use) return;
  auto *room =
      static_cast<volatile char *>(__builtin_alloca(std::min(wanted, stack.rlim_cur - in_use)));
  *room = 0;
}

void limit_memory(const Options &options)
{
  if (sanitized) return;
  make_room_for_stack();
  std::set_new_handler([] { stop(out_of_memory); });
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  if (const rlim_t size = memory_limit(options); size != 0) limit.rlim_cur = size;
  setrlimit(RLIMIT_AS, &limit);
}

void watch_for_faults()
{
  if (sanitized) return;
  stack_t stack{};
  stack.ss_sp = child.signal_stack.data();
  stack.ss_size = child.signal_stack.size();
  sigaltstack(&stack, nullptr);
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
    handle(signal, on_fault, static_cast<int>(SA_ONSTACK | SA_RESETHAND));
}

int run_in_child(const Options &options, const std::function<int()> &work, pid_t parent)
{
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) return exit_fault; // which ended before that was said
  std::setvbuf(stderr, child.library_words.data(), _IOFBF, child.library_words.size());
  on_exit(on_exit_of_library, nullptr);
  watch_for_faults();
  limit_time(options.timeout);
  limit_memory(options);
  const int result = work();
  child.page->outcome = finished;
  return result;
}

// ---- in the parent

std::string reading(const Page &page, const Options &options)
{
  if (page.file[0] == '\0') return "";
  const std::string name = names_of(options).shown(page.file.data());
  const int line = page.line;
  return line == 0 ? ", opening " + name : fmt::format(", reading {}:{}", name, line);
}

int tell(const std::string &what, int exit_code)
{
  std::cerr << "tdm: error: " << what << '\n';
  return exit_code;
}

int tell_time(const Options &options, const std::string &place)
{
  return tell(
      fmt::format("stopped after {:g} s{}; --timeout sets the limit", options.timeout, place),
      exit_timeout);
}

int tell_memory(const Options &options, const std::string &place)
{
  const auto limit = static_cast<int64_t>(memory_limit(options));
  if (limit == 0) return tell("out of memory" + place, exit_memory);
  return tell("more memory needed than " + human_size(limit, 8) + place +
                  (limit == options.max_memory ? "; --max-memory sets the limit"
                                               : ", which is what the system allows"),
              exit_memory);
}

/// For what the user did, this process goes the same way: whoever waits for it sees what happened.
int tell_signal(int signal, const std::string &place)
{
  switch (signal) {
  case SIGSEGV:
  case SIGBUS:
  case SIGFPE:
  case SIGILL:
  case SIGABRT:
    return tell(std::string("ended by a fault of its own (") + strsignal(signal) + ")" + place,
                exit_fault);
  case SIGKILL:
    return tell("killed from outside, as systems do that run out of memory" + place, exit_memory);
  default:
    handle(signal, SIG_DFL, 0);
    std::raise(signal);
    return exit_fault;
  }
}

int tell_end(const Page &page, int status, const Options &options)
{
  const std::string place = reading(page, options);
  if (WIFSIGNALED(status)) return tell_signal(WTERMSIG(status), place);
  switch (page.outcome) {
  case out_of_time:
    return tell_time(options, place);
  case out_of_memory:
    return tell_memory(options, place);
  default:
    return tell("ended by a fault of its own" + place, exit_fault);
  }
}

} // namespace

int supervised(const Options &options, const std::function<int()> &work)
{
  void *shared =
      mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  const pid_t parent = getpid();
  const pid_t id = shared != MAP_FAILED ? fork() : -1;
  if (id < 0) return tell("cannot start a process to work in", exit_fault);
  child.page = static_cast<Page *>(shared);
  if (id == 0) return run_in_child(options, work, parent);
  int status = 0;
  while (waitpid(id, &status, 0) < 0 && errno == EINTR) continue;
  const Page &page = *child.page;
  if (WIFEXITED(status) && page.outcome == finished) return WEXITSTATUS(status);
  return tell_end(page, status, options);
}

ClockStop::ClockStop()
{
  child.clock_stops = child.clock_stops + 1;
}

ClockStop::~ClockStop()
{
  child.clock_stops = child.clock_stops - 1;
}

} // namespace tool
