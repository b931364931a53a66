// Times or counts the cases of a benchmark program.
#include "measured.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <benchmark/benchmark.h>

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#endif

namespace bench {

namespace {

/// The first time fills what is kept for later times; the second is the one that counts.
void count(const Case &counted)
{
  counted.work();
#ifdef CALLGRIND_START_INSTRUMENTATION
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
  counted.work();
  CALLGRIND_DUMP_STATS_AT(counted.name.c_str());
  CALLGRIND_STOP_INSTRUMENTATION;
#endif
  std::printf("%s %zu\n", counted.name.c_str(), counted.units);
  std::fflush(stdout);
}

void time(const Case &timed)
{
  benchmark::RegisterBenchmark(timed.name.c_str(), [&timed](benchmark::State &state) {
    for (auto round : state) timed.work();
    state.SetItemsProcessed(static_cast<int64_t>(timed.units) *
                            static_cast<int64_t>(state.iterations()));
  });
}

} // namespace

Program::Program(int argc, char **argv)
{
  benchmark::Initialize(&argc, argv);
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], "--count") == 0)
      count_ = true;
    else
      arguments_.emplace_back(argv[i]);
}

void Program::run(const std::vector<Case> &cases) const
{
  if (count_) {
    for (const Case &each : cases) count(each);
    return;
  }
  for (const Case &each : cases) time(each);
  benchmark::RunSpecifiedBenchmarks();
}

Description::Description(const std::string &path)
{
  const char *name = path.c_str();
  tdm_arr files = {sizeof(char *), 1, 1, &name};
  tdm_arr none = {sizeof(char *), 0, 0, nullptr};
  tdm_init(nullptr);
  spec_ = tdm_parse_file(&files, &none);
  require(spec_ != nullptr, tdm_get_last_error());
}

Description::~Description()
{
  tdm_spec_free(spec_);
  tdm_cleanup();
}

std::vector<tdm_memory *> Description::memories() const
{
  return taken<tdm_memory>(tdm_spec_get_memories(spec_));
}

std::vector<tdm_core *> Description::cores() const
{
  std::vector<tdm_core *> all;
  for (const tdm_processor *processor : taken<tdm_processor>(tdm_spec_get_processors(spec_)))
    for (tdm_core *core : taken<tdm_core>(tdm_processor_get_cores(processor))) all.push_back(core);
  return all;
}

std::vector<tdm_space *> Description::spaces() const
{
  std::vector<tdm_space *> all;
  for (const tdm_core *core : cores())
    for (tdm_space *space : taken<tdm_space>(tdm_core_get_spaces(core))) all.push_back(space);
  return all;
}

void require(bool condition, std::string_view words)
{
  if (condition) return;
  std::fprintf(stderr, "%.*s\n", static_cast<int>(words.size()), words.data());
  std::exit(1);
}

} // namespace bench
