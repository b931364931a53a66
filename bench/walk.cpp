// The cost of reading the layouts of a description, with callbacks that count.
//
//     bench_walk [--count] FILE
//
// A unit is one statement. Conditions ask the caller whether sections exist, and hear no.
#include "measured.h"

namespace {

struct Met {
  std::size_t statements = 0;
  std::size_t others = 0; ///< definitions, and the ends of statements
};

template <std::size_t Met::*counter, class... Arguments> void count_in(void (*&entry)(Arguments...))
{
  entry = [](Arguments... arguments) {
    void *user = nullptr;
    ((user = const_cast<void *>(static_cast<const void *>(arguments))), ...); // the last one
    ++(static_cast<Met *>(user)->*counter);
  };
}

tdm_walk_callbacks counting()
{
  tdm_walk_callbacks calls{};
  count_in<&Met::statements>(calls.assignment);
  count_in<&Met::statements>(calls.block_begin);
  count_in<&Met::statements>(calls.if_begin);
  count_in<&Met::statements>(calls.create_section_begin);
  count_in<&Met::statements>(calls.group_begin);
  count_in<&Met::statements>(calls.heap_statement);
  count_in<&Met::statements>(calls.memory_copy);
  count_in<&Met::statements>(calls.reserved_statement);
  count_in<&Met::statements>(calls.selection);
  count_in<&Met::statements>(calls.stack_statement);
  count_in<&Met::statements>(calls.struct_statement);
  count_in<&Met::statements>(calls.table_statement);
  count_in<&Met::others>(calls.stack_def);
  count_in<&Met::others>(calls.heap_def);
  count_in<&Met::others>(calls.vector_table_begin);
  count_in<&Met::others>(calls.vector_table_end);
  count_in<&Met::others>(calls.copy_table);
  count_in<&Met::others>(calls.direct_init);
  count_in<&Met::others>(calls.reserved_range);
  count_in<&Met::others>(calls.section_layout_begin);
  count_in<&Met::others>(calls.section_layout_end);
  count_in<&Met::others>(calls.block_end);
  count_in<&Met::others>(calls.if_end);
  count_in<&Met::others>(calls.create_section_end);
  count_in<&Met::others>(calls.group_end);
  return calls;
}

} // namespace

int main(int argc, char **argv)
{
  const bench::Program program(argc, argv);
  bench::require(program.arguments().size() == 1, "bench_walk [--count] FILE");
  const bench::Description description(program.arguments()[0]);
  const std::vector<tdm_space *> spaces = description.spaces();
  const tdm_walk_callbacks calls = counting();
  const tdm_expression_callbacks none = {[](const char *, void *) { return 0; },
                                         [](const char *, void *) { return 0; }};
  Met met;
  const auto walk = [&] {
    met = {};
    for (tdm_space *space : spaces) tdm_space_walk(space, &calls, &met, &none, nullptr);
  };
  walk();
  bench::require(met.statements > 0, "no layouts");
  program.run({{"walk", met.statements, walk}});
}
