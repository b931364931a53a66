// What a caller asks a spec.
#include "interface/guard.h"
#include "interface/tdm.h"
#include "interface/values.h"
#include "model/spec.h"

using tdm::guarded;
using tdm::guarded_array;

void tdm_spec_free(tdm_spec *spec)
{
  delete spec;
}

tdm_arr *tdm_spec_get_processors(const tdm_spec *spec)
{
  return guarded_array<void *>([&] { return tdm::array_of_pointers(spec->processors); });
}

tdm_processor *tdm_spec_get_processor(const tdm_spec *spec, const char *name)
{
  return guarded([&] { return name != nullptr ? spec->find_processor(name) : nullptr; });
}

tdm_arr *tdm_spec_get_memories(const tdm_spec *spec)
{
  return guarded_array<void *>([&] { return tdm::array_of_pointers(spec->memories); });
}

tdm_memory *tdm_spec_get_memory(const tdm_spec *spec, const char *name)
{
  return guarded([&] { return name != nullptr ? spec->find_memory(name) : nullptr; });
}

tdm_arr *tdm_spec_get_file_dependencies(const tdm_spec *spec)
{
  return guarded_array<void *>([&] {
    return tdm::array_of(spec->file_dependencies,
                         [](const std::string &file) { return tdm::text_result(file); });
  });
}
