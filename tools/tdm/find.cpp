#include "find.h"

#include <vector>

#include "session.h"
#include "usage_error.h"

namespace tool {

namespace {

template <class Object> struct Named {
  Object *object;
  std::string name;
  std::string full_name;
};

template <class Object>
Object *find_named(const std::vector<Named<Object>> &objects, const std::string &name,
                   const std::string &kind)
{
  std::string candidates;
  Object *found = nullptr;
  size_t matches = 0;
  for (const Named<Object> &one : objects) {
    if (one.full_name == name) return one.object;
    if (one.name != name) continue;
    ++matches;
    found = one.object;
    candidates += "\n  " + one.full_name;
  }
  if (matches == 1) return found;
  if (matches > 1)
    throw UsageError{"there is more than one " + kind + " \"" + name + "\":" + candidates};
  for (const Named<Object> &one : objects) candidates += "\n  " + one.full_name;
  if (name.empty()) throw UsageError{"--" + kind + " is needed; there are:" + candidates};
  throw UsageError{"there is no " + kind + " \"" + name + "\"; there are:" + candidates};
}

} // namespace

tdm_space *find_space(const tdm_spec *spec, const std::string &name)
{
  std::vector<Named<tdm_space>> spaces;
  for (const tdm_processor *processor : processors_of(spec))
    for (const tdm_core *core : cores_of(processor))
      for (tdm_space *space : spaces_of(core))
        if (!is_placeholder(space))
          spaces.push_back({space, tdm_space_get_name(space), tdm_space_get_full_name(space)});
  return find_named(spaces, name, "space");
}

tdm_memory *find_memory(const tdm_spec *spec, const std::string &name)
{
  std::vector<Named<tdm_memory>> memories;
  for (tdm_memory *memory : memories_of(spec))
    memories.push_back({memory, tdm_memory_get_name(memory), tdm_memory_get_full_name(memory)});
  return find_named(memories, name, "memory");
}

} // namespace tool
