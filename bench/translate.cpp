// The cost of a translation: one address over one mapping, over four hops, and past a thousand
// mappings that don't match.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <tdm_c/tdm.h>

namespace {

const char *const text = R"(
architecture arch {
  space direct { id = 1; mau = 8; map (dest = bus:local, size = 64k); }
  space far { id = 2; mau = 8; map (dest = space:direct, size = 64k); }
  bus local { mau = 8; width = 32; map (dest = bus:inner, size = 16M); }
  bus inner { mau = 8; width = 32; }
  space wide { id = 3; mau = 8; map (dest = bus:inner, size = 16M); }
}
derivative chip {
  core c { architecture = arch; }
  memory near { mau = 8; size = 64k; type = ram; map (dest = bus:c:inner, size = 64k); }
)";

/// A description with one memory that is found and many on the same bus that are not.
std::string description(int others)
{
  std::string whole = text;
  for (int i = 0; i < others; ++i)
    whole += "  memory m" + std::to_string(i) +
             " { mau = 8; size = 4k; type = ram; map (dest = bus:c:inner, dest_offset = " +
             std::to_string(0x20000 + i * 0x1000) + ", size = 4k); }\n";
  return whole + "}\nprocessor p { derivative = chip; }\n";
}

class Description {
public:
  explicit Description(int others)
  {
    const std::string path = "/tmp/bench_translate_" + std::to_string(getpid()) + ".tdm";
    std::ofstream(path) << description(others);
    const char *name = path.c_str();
    tdm_arr files = {sizeof(char *), 1, 1, &name};
    tdm_arr none = {sizeof(char *), 0, 0, nullptr};
    tdm_init(nullptr);
    spec_ = tdm_parse_file(&files, &none);
    std::remove(path.c_str());
    if (spec_ == nullptr) {
      std::fprintf(stderr, "%s\n", tdm_get_last_error());
      std::exit(1);
    }
  }
  ~Description()
  {
    tdm_spec_free(spec_);
    tdm_cleanup();
  }
  Description(const Description &) = delete;
  Description &operator=(const Description &) = delete;

  [[nodiscard]] const tdm_space *space(const char *name) const
  {
    return tdm_core_get_space_by_name(
        tdm_processor_get_core(tdm_spec_get_processor(spec_, "p"), "c"), name);
  }

private:
  tdm_spec *spec_;
};

void one_step(benchmark::State &state)
{
  const Description description(0);
  const tdm_space *space = description.space("direct");
  const tdm_addressvalue address = {0x1234, 0, 8, -1};
  for (auto step : state) {
    tdm_arr *results = nullptr;
    benchmark::DoNotOptimize(tdm_space_map_addressvalue_forward(space, &address, &results));
    tdm_arr_del(results);
  }
}
BENCHMARK(one_step);

void to_memory(benchmark::State &state)
{
  const Description description(static_cast<int>(state.range(0)));
  const tdm_space *space = description.space("far");
  const tdm_addressvalue address = {0x1234, 0, 8, -1};
  for (auto step : state) {
    tdm_arr *results = nullptr;
    benchmark::DoNotOptimize(
        tdm_space_map_addressvalue_forward_to_memory(space, &address, &results));
    tdm_arr_del(results);
  }
}
BENCHMARK(to_memory)->Arg(0)->Arg(1000)->Arg(3000);

void interval_to_memory(benchmark::State &state)
{
  const Description description(0);
  const tdm_space *space = description.space("far");
  const tdm_interval interval = {{0x100, 0, 8, -1}, {0x200, 0, 8, -1}, 1, 1, 0x10000, 0x10000};
  for (auto step : state) {
    tdm_arr *results = nullptr;
    benchmark::DoNotOptimize(tdm_space_map_interval_forward_to_memory(space, &interval, &results));
    tdm_arr_del(results);
  }
}
BENCHMARK(interval_to_memory);

} // namespace

BENCHMARK_MAIN();
