// map: where an address of a space leads, where a place in a memory is seen from, and what a space
// holds.
#include <iostream>
#include <vector>

#include "find.h"
#include "map_output.h"
#include "memory_map.h"
#include "verbs.h"

namespace tool {

namespace {

std::vector<const tdm_space *> wanted_spaces(const Options &options, const tdm_spec *spec)
{
  if (!options.space.empty()) return {find_space(spec, options.space)};
  std::vector<const tdm_space *> spaces;
  for (const tdm_processor *processor : processors_of(spec))
    for (const tdm_core *core : cores_of(processor))
      for (const tdm_space *space : spaces_of(core))
        if (!is_placeholder(space)) spaces.push_back(space);
  return spaces;
}

int map_tables(const Options &options, const tdm_spec *spec, std::ostream &out)
{
  const MemoryMap memory_map(spec);
  std::vector<SpaceTable> tables;
  for (const tdm_space *space : wanted_spaces(options, spec))
    tables.push_back({space, rows_of(space, memory_map.of(space))});
  const Units units(options.unit);
  if (options.json)
    write_json(tables, units, out);
  else
    write_text(tables, units, out);
  for (const std::string &failure : memory_map.failures())
    std::cerr << "tdm: error: not shown: " << failure << '\n';
  return memory_map.failures().empty() ? exit_ok : exit_errors;
}

int map_place(const Options &options, const Session &session, std::ostream &out)
{
  const Answer answer =
      options.space.empty()
          ? routes_from(find_memory(session.spec(), options.memory), options.place)
          : routes_from(find_space(session.spec(), options.space), *options.place);
  const Units units(options.unit);
  if (options.json)
    write_json(answer, session, units, out);
  else
    write_text(answer, session, units, out);
  return answer.routes.empty() ? exit_no_route : exit_ok;
}

} // namespace

int map(const Options &options, const Session &session, std::ostream &out)
{
  const bool wants_table = !options.place.has_value() && options.memory.empty();
  return wants_table ? map_tables(options, session.spec(), out) : map_place(options, session, out);
}

} // namespace tool
