// The cost of a question about the model: a name, and the object of a name.
//
//     bench_query [--count] FILE
//
// A unit is one call. Names that are looked up are copies: the caller's text, not one of the pool.
#include <benchmark/benchmark.h>

#include "measured.h"

namespace {

constexpr std::size_t calls = 1000;

template <class Object, class Function>
bench::Case asking(const char *name, const std::vector<Object> &objects, Function function)
{
  return {name, objects.size(), [&objects, function] {
            for (const Object &object : objects) benchmark::DoNotOptimize(function(object));
          }};
}

template <class T>
std::vector<std::string> names(const std::vector<T *> &all, const char *(*name)(const T *))
{
  std::vector<std::string> texts;
  for (const T *each : all) texts.emplace_back(name(each));
  return texts;
}

/// So many of them as there are calls, in an order that isn't that of the model.
template <class T> std::vector<T> asked(const std::vector<T> &all)
{
  std::vector<T> mixed;
  for (std::size_t i = 0; i < calls; ++i) mixed.push_back(all[i * 7919 % all.size()]);
  return mixed;
}

} // namespace

int main(int argc, char **argv)
{
  const bench::Program program(argc, argv);
  bench::require(program.arguments().size() == 1, "bench_query [--count] FILE");
  const bench::Description description(program.arguments()[0]);
  const tdm_spec *spec = description.spec();
  const auto memories = asked(bench::sample(description.memories(), calls));
  const auto processors = asked(bench::taken<tdm_processor>(tdm_spec_get_processors(spec)));
  const auto spaces = asked(description.spaces());
  const auto memory_names = names(memories, tdm_memory_get_name);
  const auto processor_names = names(processors, tdm_processor_get_name);
  const tdm_core *core = description.cores().front();
  const auto space_names =
      names(asked(bench::taken<tdm_space>(tdm_core_get_spaces(core))), tdm_space_get_name);

  program.run({
      asking("name of a memory", memories, tdm_memory_get_name),
      asking("full name of a memory", memories, tdm_memory_get_full_name),
      asking("name of a processor", processors, tdm_processor_get_name),
      asking("full name of a space", spaces, tdm_space_get_full_name),
      asking("memory by name", memory_names,
             [spec](const std::string &name) { return tdm_spec_get_memory(spec, name.c_str()); }),
      asking(
          "processor by name", processor_names,
          [spec](const std::string &name) { return tdm_spec_get_processor(spec, name.c_str()); }),
      asking("space by name", space_names,
             [core](const std::string &name) {
               return tdm_core_get_space_by_name(core, name.c_str());
             }),
  });
}
