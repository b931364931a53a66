// Memory that runs out at every single request of a parse and of the questions behind it, once for
// that request alone and once for all behind it too. It ends in a failure that the caller is told
// of, or in the orderly stop: exit code 2 and its words. Then nothing is left behind, and the next
// parse answers as ever.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "counting.h"
#include "use.h"

namespace {

bool in_child = false;

} // namespace

// An orderly stop ends the process in the middle of its work: what is in use there is no leak. What
// is left behind by a run that goes on is counted.
extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off()
{
  return in_child ? 1 : 0;
}

namespace {

/// What the child tells: where it is, and how a run went wrong.
struct Progress {
  std::size_t number;
  bool over;
  char fault[200];
};

class Exhaustion : public ::testing::Test {
protected:
  Exhaustion()
      : progress_(static_cast<Progress *>(mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE,
                                               MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
  {
  }
  ~Exhaustion() override { munmap(progress_, sizeof(Progress)); }

  static std::uint64_t answers_of(const char *file)
  {
    Answers answers;
    tdm_init(nullptr);
    parse_and_ask(file, answers);
    tdm_cleanup();
    return answers.value();
  }

  /// One run in which requests are refused from that one on; a fault, or null.
  const char *run(const char *file, std::uint64_t expected, counting::Refuse which)
  {
    const std::size_t before = counting::live();
    Answers answers;
    counting::refuse(which, progress_->number);
    tdm_init(nullptr);
    parse_and_ask(file, answers);
    tdm_cleanup();
    counting::refuse(counting::Refuse::none);
    progress_->over = !counting::refused();
    if (progress_->over && answers.value() != expected) return "other answers without a refusal";
    if (counting::live() != before) return "something is left behind";
    // A request that nothing hangs on is allowed, and none is taken for an answer.
    return answers_of(file) == expected ? nullptr : "other answers afterwards";
  }

  /// In a child: runs from the present number on until one stops the process.
  [[noreturn]] void go_on(const char *file, counting::Refuse which, const std::string &output)
  {
    in_child = true;
    if (std::freopen(output.c_str(), "w", stderr) == nullptr) _exit(99);
    // The text of the last failure stays, and its room with it.
    (void)answers_of(("/" + std::string(300, 'x')).c_str());
    const std::uint64_t expected = answers_of(file);
    for (; !progress_->over; ++progress_->number)
      if (const char *fault = run(file, expected, which)) {
        std::snprintf(progress_->fault, sizeof progress_->fault, "%s", fault);
        _exit(98);
      }
    _exit(0);
  }

  /// All requests in turn; how many of them stopped the process in order.
  int all(const char *text, counting::Refuse which)
  {
    const std::string file = written("tdm_exhaustion", text);
    const std::string output = file + ".err";
    *progress_ = {};
    int stops = 0;
    while (!progress_->over) {
      const pid_t child = fork();
      if (child == 0) go_on(file.c_str(), which, output);
      int status = 0;
      waitpid(child, &status, 0);
      std::ifstream stream(output);
      const std::string words{std::istreambuf_iterator<char>(stream),
                              std::istreambuf_iterator<char>()};
      if (WIFEXITED(status) && WEXITSTATUS(status) == 0) break;
      if (!WIFEXITED(status) || WEXITSTATUS(status) != 2) {
        ADD_FAILURE() << "request " << progress_->number << ": " << progress_->fault << ", status "
                      << status << "\n"
                      << words;
        break;
      }
      EXPECT_TRUE(words == "c-memory.c: Cannot allocate memory.\n" ||
                  words == "hashtab_calloc: Cannot allocate memory.\n")
          << "request " << progress_->number << ": " << words;
      ++stops;
      ++progress_->number;
    }
    EXPECT_GT(progress_->number, 50U) << "requests";
    std::filesystem::remove(file);
    std::filesystem::remove(output);
    return stops;
  }

  Progress *progress_;
};

TEST_F(Exhaustion, OneRequestOfAParseAndOfQuestions)
{
  EXPECT_GT(all(whole_text, counting::Refuse::one), 0);
}

TEST_F(Exhaustion, AllRequestsBehindOne)
{
  EXPECT_GT(all(whole_text, counting::Refuse::all_behind), 0);
}

TEST_F(Exhaustion, OneRequestOfAFailingParse)
{
  EXPECT_GT(all(broken_text, counting::Refuse::one), 0);
}

} // namespace
